// A trigger rule: when `attribute` is edited, `triggerInitialize` is to be set
// to `initializationValue`. The target may be the abstract word
// "Proper_Versioning_Attribute", resolved while the edit is handled.
#ifndef TOV_TOVTRIGGER_H_
#define TOV_TOVTRIGGER_H_

#include <string>

#include "tov/export.h"

class TOVLogger;

// What one trigger rule says, for tools that tell rules to people. A trigger
// has no sentence of its own, since it is never reported as a violation, so a
// tool words it from these four texts.
struct TOVTriggerDescription {
    std::string objectType;           // "<any>" for a rule listed under "ALL"
    std::string attribute;            // the watched attribute
    std::string triggerInitialize;    // the attribute to initialize, or the abstract word
    std::string initializationValue;  // the value it is to receive
};

// A trigger in a sentence like those of the other kinds, as tools tell it:
// "For Part: When Status is edited, ReleaseDate must be initialized to "Reset"".
TOV_API std::string expressTriggerInWords(const TOVTriggerDescription& trigger);

class TOV_API TOVTrigger {
public:
    TOVTrigger();
    TOVTrigger(const std::string& objectType, const std::string& attribute,
               const std::string& triggerInitialize, const std::string& initializationValue);

    // True when the target is exactly "Proper_Versioning_Attribute", case included.
    bool isAbstractVersioningReinitializationRule() const;
    // Appends the rule as a sentence (see expressTriggerInWords); the library
    // never reports a trigger as a violation, but a trace tells it.
    void expressRuleInWords(std::string& text) const;

    std::string getAttribute() const { return attribute; }
    std::string getTriggerInitialize() const { return triggerInitialize; }
    std::string getInitializationValue() const { return initializationValue; }

    // By object type, attribute, target; the value takes no part.
    bool operator<(const TOVTrigger& other) const;

private:
    friend class TOVLifecycleBusinessRules;

    // operator<'s fields folded once: keys in byte order sort as operator< does.
    void appendSortKey(std::string& key) const;

    void printContentsDBG(TOVLogger* logger) const;

    std::string getObjectType() const { return objectType; }
    void setObjectType(const std::string& value) { objectType = value; }
    void setAttribute(const std::string& value) { attribute = value; }
    void setTriggerInitialize(const std::string& value) { triggerInitialize = value; }
    void setInitializationValue(const std::string& value) { initializationValue = value; }

    std::string objectType;
    std::string attribute;
    std::string triggerInitialize;
    std::string initializationValue;
};

#endif  // TOV_TOVTRIGGER_H_
