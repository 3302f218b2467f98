// The request functions. Each takes the request as JSON text (or, in its
// FromFile form, the path of a JSON file) and the caller's core data, and
// answers with a response by value. Calls on one core data must not overlap.
//
// A host starts here:
//
//   TOVCoreDataControllers coreData;
//   coreData.initializeByMalloc();
//   InitializeTOVRulesFromFile("rules.json", &coreData);
//   InitializeTOV_DMInfoFromFile("datamodel.json", &coreData);
//
//   std::string request;
//   composeSimpleTransitionJson("Part", {{"Status", "In Review"}},
//                               {{"Status", "Released"}}, request);
//   TOVResponse answer = EvaluateTOVEditAttempt(request, &coreData);
//   if (!answer.getGeneralResult()) {
//       std::cerr << answer.getGeneralResultComment() << "\n";
//   }
#ifndef TOV_ENTRY_POINTS_H_
#define TOV_ENTRY_POINTS_H_

#include <string>

#include "tov/TOVResponse.h"
#include "tov/export.h"

class TOVCoreDataControllers;

// "1.1"; needs no core data.
TOV_API std::string GetTOVVersion();

// Replace the rules, or the data-model information, with a document: all or
// nothing, so a failed load leaves that store empty.
TOV_API TOVResponse InitializeTOVRules(const std::string& input, TOVCoreDataControllers* coreData);
TOV_API TOVResponse InitializeTOVRulesFromFile(const std::string& input,
                                               TOVCoreDataControllers* coreData);
TOV_API TOVResponse InitializeTOV_DMInfo(const std::string& input,
                                         TOVCoreDataControllers* coreData);
TOV_API TOVResponse InitializeTOV_DMInfoFromFile(const std::string& input,
                                                 TOVCoreDataControllers* coreData);

// Judge an edit of an object's attributes; the BeforeConflictResolution forms
// leave conflict resolution rules out.
TOV_API TOVResponse EvaluateTOVEditAttempt(const std::string& input,
                                           TOVCoreDataControllers* coreData);
TOV_API TOVResponse EvaluateTOVEditAttemptFromFile(const std::string& input,
                                                   TOVCoreDataControllers* coreData);
TOV_API TOVResponse EvaluateTOVEditAttemptBeforeConflictResolution(
    const std::string& input, TOVCoreDataControllers* coreData);
TOV_API TOVResponse EvaluateTOVEditAttemptBeforeConflictResolutionFromFile(
    const std::string& input, TOVCoreDataControllers* coreData);

// Judge a save that uploads the representation file.
TOV_API TOVResponse EvaluateTOVSaveReprFileAttempt(const std::string& input,
                                                   TOVCoreDataControllers* coreData);
TOV_API TOVResponse EvaluateTOVSaveReprFileAttemptFromFile(const std::string& input,
                                                           TOVCoreDataControllers* coreData);
TOV_API TOVResponse EvaluateTOVSaveReprFileAttemptBeforeConflictResolution(
    const std::string& input, TOVCoreDataControllers* coreData);
TOV_API TOVResponse EvaluateTOVSaveReprFileAttemptBeforeConflictResolutionFromFile(
    const std::string& input, TOVCoreDataControllers* coreData);

// Judge the creation of a manual link between two objects.
TOV_API TOVResponse EvaluateTOVManualLinkCreation(const std::string& input,
                                                  TOVCoreDataControllers* coreData);
TOV_API TOVResponse EvaluateTOVManualLinkCreationFromFile(const std::string& input,
                                                          TOVCoreDataControllers* coreData);

// The conflict resolutions (overwrite, spin-up along a versioning attribute)
// that are proper for a change.
TOV_API TOVResponse EvaluateTOVProperConflictResolutionOptions(const std::string& input,
                                                               TOVCoreDataControllers* coreData);
TOV_API TOVResponse EvaluateTOVProperConflictResolutionOptionsFromFile(
    const std::string& input, TOVCoreDataControllers* coreData);

#endif  // TOV_ENTRY_POINTS_H_
