// Abstract base of every controller. A controller serves one request: it checks
// that its input is there, parses it, and evaluates it into a response.
#ifndef TOV_TOVACTIONCONTROLLER_H_
#define TOV_TOVACTIONCONTROLLER_H_

#include <map>
#include <string>

#include "tov/TOVFunctionality.h"
#include "tov/TOVResponse.h"
#include "tov/export.h"

class TOVCoreDataControllers;
class TOVLifecycleBusinessRules;
class TOVLogger;
class TOV_DMStructure;

class TOV_API TOVActionController {
public:
    TOVActionController(const TOVActionController& other) = default;
    TOVActionController& operator=(const TOVActionController& other) = default;
    virtual ~TOVActionController();

    // Runs the three steps in order. The general result is true once the input
    // is sufficient, so later steps refuse by setting it to false.
    TOVResponse evaluateAndRespond();

    TOVLogger* getLifecycleLogger();
    // The value the concrete class passed in: all four edit flavours pass 3.
    TOVFunctionality getFunctionality() const { return functionality; }

protected:
    TOVActionController(TOVFunctionality functionality,
                        const std::map<std::string, std::string>& labeledInput,
                        TOVCoreDataControllers* coreData);
    // Takes the input over, so that a large document is held once.
    TOVActionController(TOVFunctionality functionality,
                        std::map<std::string, std::string>&& labeledInput,
                        TOVCoreDataControllers* coreData);

    virtual bool isInputDataSufficient() = 0;
    virtual bool parseInputData(TOVResponse& response) = 0;
    virtual bool evaluateRequest(TOVResponse& response) = 0;

    bool isInputDataSufficientUpdateResponse(TOVResponse& response);
    // Exact lookup of a label; `out` is left alone on a miss.
    bool getInputStringWithThisLabel(const std::string& label, std::string& out);
    // The text under `label` where it lies, or an empty text on a miss: a whole
    // document reaches its parser without a copy.
    const std::string& getInputWithThisLabel(const std::string& label) const;
    // True when the input holds `label` with a non-empty value: what every
    // controller asks before it parses.
    bool hasNonEmptyInputWithThisLabel(const std::string& label);
    // True when the label "Input_is_filepath" is present, whatever its value:
    // the input is then the path of a JSON file.
    bool isInputAJsonFilePath();
    // Refuse with "Uninitialized TOV rules" / "Uninitialized Dm Information".
    bool foundUninitializedRulesViolation(TOVResponse& response);
    bool foundUninitializedDMInfoViolation(TOVResponse& response);

    TOVLifecycleBusinessRules* getLifecycleBusinessRules();
    TOV_DMStructure* getLifecycleDMInfo();
    // For a controller that runs another one on the same stores.
    TOVCoreDataControllers* getCoreData() { return coreData; }

private:
    TOVFunctionality functionality;
    std::map<std::string, std::string> inputData;
    TOVCoreDataControllers* coreData;
};

#endif  // TOV_TOVACTIONCONTROLLER_H_
