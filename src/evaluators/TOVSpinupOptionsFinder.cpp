#include "tov/TOVSpinupOptionsFinder.h"

TOVSpinupOptionsFinder::TOVSpinupOptionsFinder(const std::string& objectType,
                                               const AttributesMap& initialAttributes,
                                               const AttributesMap& targetAttributes,
                                               TOVCoreDataControllers* coreData)
    : TOVConflictsResolutionOptionsFinder(objectType, initialAttributes, targetAttributes,
                                          coreData) {}

TOVSpinupOptionsFinder::~TOVSpinupOptionsFinder() = default;

bool TOVSpinupOptionsFinder::foundConflictResolutionIsForcedViolation(TOVResponse& /*response*/) {
    return false;
}
