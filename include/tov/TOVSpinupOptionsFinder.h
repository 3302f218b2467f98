// The conflict resolution options finder without its first stage: no conflict
// resolution rule forces anything, so only the versioning selection rules
// narrow the options. The edit controller uses it to learn which versioning
// attribute an abstract trigger rule means.
#ifndef TOV_TOVSPINUPOPTIONSFINDER_H_
#define TOV_TOVSPINUPOPTIONSFINDER_H_

#include <string>

#include "tov/TOVConflictsResolutionOptionsFinder.h"
#include "tov/export.h"
#include "tov/vocabulary.h"

class TOV_API TOVSpinupOptionsFinder : public TOVConflictsResolutionOptionsFinder {
public:
    // Built in code only: there is no query document, so call evaluateRequest
    // directly and read the options from the response.
    TOVSpinupOptionsFinder(const std::string& objectType, const AttributesMap& initialAttributes,
                           const AttributesMap& targetAttributes, TOVCoreDataControllers* coreData);
    ~TOVSpinupOptionsFinder() override;

protected:
    // Never marks anything forced.
    bool foundConflictResolutionIsForcedViolation(TOVResponse& response) override;
};

#endif  // TOV_TOVSPINUPOPTIONSFINDER_H_
