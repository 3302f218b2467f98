#include "tov/TOVLifecycleBusinessRules.h"

TOVLifecycleBusinessRules::TOVLifecycleBusinessRules() = default;

void TOVLifecycleBusinessRules::clearAllRules() {}

void TOVLifecycleBusinessRules::sortAllRules() {}

bool TOVLifecycleBusinessRules::existAnyRules() const {
    return false;
}

void TOVLifecycleBusinessRules::printContentsDBG(TOVLogger* /*logger*/) {}
