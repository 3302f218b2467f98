// Loads the data-model document into the data-model information: all or nothing.
#ifndef TOV_TOV_DMINFOINITIALIZERCONTROLLER_H_
#define TOV_TOV_DMINFOINITIALIZERCONTROLLER_H_

#include <map>
#include <string>

#include "tov/TOVActionController.h"
#include "tov/export.h"

class TOV_API TOV_DMInfoInitializerController : public TOVActionController {
public:
    // Empties the data-model information at once, before the input is looked at.
    TOV_DMInfoInitializerController(const std::map<std::string, std::string>& labeledInput,
                                    TOVCoreDataControllers* coreData);
    // The same, taking the input over, so that the request is held once.
    TOV_DMInfoInitializerController(std::map<std::string, std::string>&& labeledInput,
                                    TOVCoreDataControllers* coreData);
    ~TOV_DMInfoInitializerController() override;

    // "All_DM_Info".
    static std::string getInputDataLabelIdentifierForAllDMInfo();
    // "Input_is_filepath".
    static std::string getInputDataLabelIdentifierForJsonFilepath();

protected:
    bool isInputDataSufficient() override;
    bool parseInputData(TOVResponse& response) override;
    bool evaluateRequest(TOVResponse& response) override;
};

#endif  // TOV_TOV_DMINFOINITIALIZERCONTROLLER_H_
