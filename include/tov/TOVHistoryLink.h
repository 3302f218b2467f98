// A history link rule: once `attribute` reaches `toValue`, the entries of the same object family
// may hold only one of the acceptable values in that attribute.
#ifndef TOV_TOVHISTORYLINK_H_
#define TOV_TOVHISTORYLINK_H_

#include <string>
#include <vector>

#include "tov/export.h"
#include "tov/vocabulary.h"

class TOVLogger;

class TOV_API TOVHistoryLink {
public:
    TOVHistoryLink();
    // Sorts the acceptable values in byte order.
    TOVHistoryLink(const std::string& objectType, const std::string& attribute,
                   const std::string& fromValue, const std::string& toValue,
                   const std::vector<std::string>& acceptableHistoryLinkValues);

    // Finds the first packet whose value of `attribute` is not acceptable
    // (exact, case counts, no wildcard) and copies it to `offending`. Packets
    // without the attribute never offend.
    bool foundHistoryLinkObjectViolatingRule(const std::vector<AttributesMap>& packets,
                                             AttributesMap& offending) const;
    void expressRuleInWords(std::string& text) const;
    // By object type, attribute, from value, to value; case ignored, length first.
    bool operator<(const TOVHistoryLink& other) const;

private:
    friend class TOVLifecycleBusinessRules;

    // operator<'s fields folded once: keys in byte order sort as operator< does.
    void appendSortKey(std::string& key) const;

    bool isValueAmongstAcceptables(const std::string& value) const;
    void sortAcceptableValues();
    void printContentsDBG(TOVLogger* logger) const;

    const std::string& getObjectType() const { return objectType; }
    const std::string& getAttribute() const { return attribute; }
    const std::string& getFromValue() const { return fromValue; }
    const std::string& getToValue() const { return toValue; }
    const std::vector<std::string>& getAcceptableHistoryLinkValues() const {
        return acceptableHistoryLinkValues;
    }
    void setObjectType(const std::string& value) { objectType = value; }
    void setAttribute(const std::string& value) { attribute = value; }
    void setFromValue(const std::string& value) { fromValue = value; }
    void setToValue(const std::string& value) { toValue = value; }
    void setAcceptableHistoryLinkValues(const std::vector<std::string>& values);

    std::string objectType;
    std::string attribute;
    std::string fromValue;
    std::string toValue;
    // Always sorted in byte order: the walk searches it by halving.
    std::vector<std::string> acceptableHistoryLinkValues;
};

#endif  // TOV_TOVHISTORYLINK_H_
