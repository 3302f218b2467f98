// Loads the rules document into the rule store: all or nothing.
#ifndef TOV_TOVINITIALIZERCONTROLLER_H_
#define TOV_TOVINITIALIZERCONTROLLER_H_

#include <map>
#include <string>

#include "tov/TOVActionController.h"
#include "tov/export.h"

class TOV_API TOVInitializerController : public TOVActionController {
public:
    // Empties the rule store at once, before the input is looked at.
    TOVInitializerController(const std::map<std::string, std::string>& labeledInput,
                             TOVCoreDataControllers* coreData);
    // The same, taking the input over, so that the request is held once.
    TOVInitializerController(std::map<std::string, std::string>&& labeledInput,
                             TOVCoreDataControllers* coreData);
    ~TOVInitializerController() override;

    // "All_TOV_rules".
    static std::string getInputDataLabelIdentifierForAllRules();
    // "Input_is_filepath".
    static std::string getInputDataLabelIdentifierForJsonFilepath();

protected:
    bool isInputDataSufficient() override;
    bool parseInputData(TOVResponse& response) override;
    bool evaluateRequest(TOVResponse& response) override;
};

#endif  // TOV_TOVINITIALIZERCONTROLLER_H_
