// A conflict resolution rule: a transition of an attribute forces the user to
// overwrite the existing version or to spin up a new one, optionally only when
// the representation file is, or is not, updated.
#ifndef TOV_TOVCONFLICTRESOLUTION_H_
#define TOV_TOVCONFLICTRESOLUTION_H_

#include <cstdint>
#include <string>
#include <vector>

#include "tov/attribute_packets.h"
#include "tov/export.h"
#include "tov/vocabulary.h"

class TOVLogger;
class TOV_DMStructure;

class TOV_API TOVConflictResolution {
public:
    enum TOVConflictResolutionValues : std::int32_t {
        TOVConflictResolution_NoConstraint = 0,
        TOVConflictResolution_Overwrite = 1,
        TOVConflictResolution_Spinup = 2,
    };

    TOVConflictResolution();
    // `updatesFile` is "YES", "NO" or "N_A" and `conflictResolution` is
    // "overwrite" or "spinup", both exact in case.
    TOVConflictResolution(const std::string& objectType, const std::string& attribute,
                          const std::string& fromValue, const std::string& toValue,
                          const std::string& updatesFile, const std::string& conflictResolution,
                          bool hasDifferentPrimaries);

    // True when the resolution the edit took breaks the rule: changing one of
    // the versioning attributes is a spin-up, changing none an overwrite.
    bool shouldTransitionBeForbidden(const AttributesMap& initial, const AttributesMap& target,
                                     const std::vector<std::string>& versioningAttributes) const;
    // True, with the forced resolution in `value`, when the rule holds for this
    // object type and transition; `value` is untouched otherwise.
    bool doesThisTransitionHaveAConstrainedConflictResolution(
        const std::string& objectType, const AttributesMap& initial, const AttributesMap& target,
        const TOV_DMStructure* structure, TOVConflictResolutionValues& value) const;
    // True when the rule forces a resolution on this transition at all, the
    // object type aside: what the edit check asks before it looks at how the
    // edit resolved.
    bool appliesTo(const AttributesMap& initial, const AttributesMap& target) const;
    void expressRuleInWords(std::string& text) const;
    // By object type, attribute, from value, to value, then the file setting.
    bool operator<(const TOVConflictResolution& other) const;

private:
    friend class TOVLifecycleBusinessRules;

    // operator<'s fields folded once: keys in byte order sort as operator< does.
    void appendSortKey(std::string& key) const;

    bool doesThisTransitionHaveAConstrainedConflictResolutionNoType(
        const AttributesMap& initial, const AttributesMap& target,
        TOVConflictResolutionValues& value) const;
    // a minus b, but 0 when either is 0, the wildcard of the enumeration.
    int compareFileUpdatedVal1AndVal2AccountingAlsoAnyValue(TOVUpdateFileValues first,
                                                            TOVUpdateFileValues second) const;
    void expressConflictResolutionValueInWords(std::string& text) const;
    void expressFileUpdateInWords(std::string& text) const;
    void printContentsDBG(TOVLogger* logger) const;

    const std::string& getObjectType() const { return objectType; }
    const std::string& getAttribute() const { return attribute; }
    const std::string& getFromValue() const { return fromValue; }
    const std::string& getToValue() const { return toValue; }
    TOVUpdateFileValues isFileUpdated() const { return fileUpdated; }
    TOVConflictResolutionValues getConflictResolution() const { return conflictResolution; }
    void setObjectType(const std::string& value) { objectType = value; }
    void setAttribute(const std::string& value) { attribute = value; }
    void setFromValue(const std::string& value) { fromValue = value; }
    void setToValue(const std::string& value) { toValue = value; }
    void setFileUpdated(TOVUpdateFileValues value);
    // An unknown word leaves the field as it was.
    void setFileUpdated(const std::string& word);
    void setConflictResolution(TOVConflictResolutionValues value);
    // An unknown word sets no constraint.
    void setConflictResolution(const std::string& word);

    std::string objectType;
    std::string attribute;
    std::string fromValue;
    std::string toValue;
    TOVUpdateFileValues fileUpdated;
    TOVConflictResolutionValues conflictResolution;
    bool hasDifferentPrimaries;
};

#endif  // TOV_TOVCONFLICTRESOLUTION_H_
