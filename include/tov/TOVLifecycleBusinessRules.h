// The rule store: every loaded rule, by kind, and the lookups that select the
// rules concerning an object type and its attributes.
#ifndef TOV_TOVLIFECYCLEBUSINESSRULES_H_
#define TOV_TOVLIFECYCLEBUSINESSRULES_H_

#include "tov/export.h"

class TOVLogger;

class TOV_API TOVLifecycleBusinessRules {
  public:
    TOVLifecycleBusinessRules();

    void clearAllRules();
    void sortAllRules();
    // True when at least one rule of any kind is loaded.
    bool existAnyRules() const;

    void printContentsDBG(TOVLogger* logger);
};

#endif  // TOV_TOVLIFECYCLEBUSINESSRULES_H_
