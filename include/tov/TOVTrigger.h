// A trigger rule: when `attribute` is edited, `triggerInitialize` is to be set
// to `initializationValue`. The target may be the abstract word
// "Proper_Versioning_Attribute", resolved while the edit is handled.
#ifndef TOV_TOVTRIGGER_H_
#define TOV_TOVTRIGGER_H_

#include <string>

#include "tov/export.h"

class TOVLogger;

class TOV_API TOVTrigger {
public:
    TOVTrigger();
    TOVTrigger(const std::string& objectType, const std::string& attribute,
               const std::string& triggerInitialize, const std::string& initializationValue);

    // True when the target is exactly "Proper_Versioning_Attribute", case included.
    bool isAbstractVersioningReinitializationRule() const;

    std::string getAttribute() const;
    std::string getTriggerInitialize() const;
    std::string getInitializationValue() const;

    // By object type, attribute, target; the value takes no part.
    bool operator<(const TOVTrigger& other) const;

private:
    friend class TOVLifecycleBusinessRules;

    void printContentsDBG(TOVLogger* logger) const;

    std::string getObjectType() const;
    void setObjectType(const std::string& value);
    void setAttribute(const std::string& value);
    void setTriggerInitialize(const std::string& value);
    void setInitializationValue(const std::string& value);

    std::string objectType;
    std::string attribute;
    std::string triggerInitialize;
    std::string initializationValue;
};

#endif  // TOV_TOVTRIGGER_H_
