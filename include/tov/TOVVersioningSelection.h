// A versioning selection rule: when an object's attributes meet all of the
// rule's conditions, a new version must be spun up along one of the listed
// versioning attributes.
#ifndef TOV_TOVVERSIONINGSELECTION_H_
#define TOV_TOVVERSIONINGSELECTION_H_

#include <map>
#include <string>
#include <vector>

#include "tov/export.h"
#include "tov/vocabulary.h"

class TOVLogger;

class TOV_API TOVVersioningSelection {
public:
    // Two conditions; a condition missing its name or its values is left out.
    TOVVersioningSelection(const std::string& objectType, const std::string& conditionAttribute1,
                           const std::vector<std::string>& values1,
                           const std::string& conditionAttribute2,
                           const std::vector<std::string>& values2,
                           const std::vector<std::string>& versioningOptions);
    TOVVersioningSelection(const std::string& objectType, const std::string& conditionAttribute1,
                           const std::vector<std::string>& values1,
                           const std::vector<std::string>& versioningOptions);
    // Copies the conditions whole, also those with an empty list of values.
    TOVVersioningSelection(const std::string& objectType,
                           const std::map<std::string, std::vector<std::string>>& conditions,
                           const std::vector<std::string>& versioningOptions);

    // True when every condition holds for the packet: the attribute is there
    // and its value is listed exactly, or the list holds "<any>" exactly.
    bool mustSelectVersioningAttributesAccordingToRule(const AttributesMap& packet) const;
    const std::vector<std::string>& getVersioningOptions() const { return versioningOptions; }
    void expressRuleInWords(std::string& text) const;
    // By object type; then the rule with more conditions first; then the text
    // of the conditions in byte order.
    bool operator<(const TOVVersioningSelection& other) const;

private:
    friend class TOVLifecycleBusinessRules;

    // operator<'s fields folded once: keys in byte order sort as operator< does.
    void appendSortKey(std::string& key) const;

    bool isConditionMetByAttributesMap(const std::string& attributeName,
                                       const std::vector<std::string>& values,
                                       const AttributesMap& packet) const;
    void addConditionAttribute(const std::string& attributeName,
                               const std::vector<std::string>& values);
    void createComparisonKey();
    void printContentsDBG(TOVLogger* logger) const;

    const std::string& getObjectType() const { return objectType; }
    const std::map<std::string, std::vector<std::string>>& getConditionAttributesAndValues() const {
        return conditionAttributesAndValues;
    }
    const std::string& getConditionsComparisonKey() const { return conditionsComparisonKey; }
    void setObjectType(const std::string& value) { objectType = value; }
    void setConditionAttributesAndValues(
        const std::map<std::string, std::vector<std::string>>& conditions) {
        conditionAttributesAndValues = conditions;
    }
    void setVersioningOptions(const std::vector<std::string>& options) {
        versioningOptions = options;
    }

    std::string objectType;
    std::map<std::string, std::vector<std::string>> conditionAttributesAndValues;
    std::vector<std::string> versioningOptions;
    // The conditions as text, fixed at construction; it decides the sort.
    std::string conditionsComparisonKey;
};

#endif  // TOV_TOVVERSIONINGSELECTION_H_
