// A transition freeze rule: while `freezeConditionAttribute` equals
// `freezeConditionValue`, `attribute` must not change.
#ifndef TOV_TOVTRANSITIONFREEZE_H_
#define TOV_TOVTRANSITIONFREEZE_H_

#include <string>

#include "tov/export.h"
#include "tov/vocabulary.h"

class TOVLogger;

class TOV_API TOVTransitionFreeze {
public:
    TOVTransitionFreeze();
    TOVTransitionFreeze(const std::string& objectType, const std::string& attribute,
                        const std::string& freezeConditionAttribute,
                        const std::string& freezeConditionValue);

    // True when this rule freezes the named attribute in the packet from
    // before the edit. Names and values compare ignoring case, "<any>" matching.
    bool shouldPackageBeFrozen(const std::string& attributeName, const AttributesMap& packet) const;
    // True when the rule is about the named attribute, whatever its condition:
    // what the freeze check asks the rule for that attribute at all.
    bool concernsAttribute(const std::string& attributeName) const;
    void expressRuleInWords(std::string& text) const;
    // By object type, condition attribute, condition value; `attribute` takes
    // no part.
    bool operator<(const TOVTransitionFreeze& other) const;

private:
    friend class TOVLifecycleBusinessRules;

    // operator<'s fields folded once: keys in byte order sort as operator< does.
    void appendSortKey(std::string& key) const;

    void printContentsDBG(TOVLogger* logger) const;

    const std::string& getObjectType() const { return objectType; }
    const std::string& getAttribute() const { return attribute; }
    const std::string& getFreezeConditionAttribute() const { return freezeConditionAttribute; }
    const std::string& getFreezeConditionValue() const { return freezeConditionValue; }
    void setObjectType(const std::string& value) { objectType = value; }
    void setAttribute(const std::string& value) { attribute = value; }
    void setFreezeConditionAttribute(const std::string& value) { freezeConditionAttribute = value; }
    void setFreezeConditionValue(const std::string& value) { freezeConditionValue = value; }

    std::string objectType;
    std::string attribute;
    std::string freezeConditionAttribute;
    std::string freezeConditionValue;
};

#endif  // TOV_TOVTRANSITIONFREEZE_H_
