// One transaction: obtains the controller for a functionality from the factory
// and runs it.
#ifndef TOV_TOVTRANSACTIONCONTROLLER_H_
#define TOV_TOVTRANSACTIONCONTROLLER_H_

#include <map>
#include <string>

#include "tov/TOVFunctionality.h"
#include "tov/TOVResponse.h"
#include "tov/export.h"

class TOVActionController;
class TOVCoreDataControllers;

class TOV_API TOVTransactionController {
public:
    TOVTransactionController(TOVFunctionality functionality,
                             std::map<std::string, std::string>& labeledInput,
                             TOVCoreDataControllers* coreData);
    // The same, and the controller takes the input over, so that a large
    // document is held once; without a controller it stays where it was.
    TOVTransactionController(TOVFunctionality functionality,
                             std::map<std::string, std::string>&& labeledInput,
                             TOVCoreDataControllers* coreData);
    TOVTransactionController(const TOVTransactionController&) = delete;
    // Copies the controller pointer as it stands, without regard to ownership:
    // both transactions would then delete it. Nothing in the library uses it.
    TOVTransactionController& operator=(const TOVTransactionController& other);
    ~TOVTransactionController();

    // Runs the controller and logs the response in both debug forms. Only call
    // it when the transaction has a controller (see hasController).
    TOVResponse executeTransaction();

    // False when the factory knew no controller for the functionality.
    bool hasController() const;

private:
    void initializeProperController(TOVFunctionality functionality,
                                    std::map<std::string, std::string>& labeledInput,
                                    TOVCoreDataControllers* coreData);
    void destroyProperController();
    TOVActionController* getActionController() { return actionController; }

    TOVActionController* actionController;
};

// The factory: a new controller for the functionality, owned by the caller, or
// null (with a log line) for a value it does not know.
TOV_API TOVActionController* createProperController(TOVFunctionality functionality,
                                                    std::map<std::string, std::string> labeledInput,
                                                    TOVCoreDataControllers* coreData);

#endif  // TOV_TOVTRANSACTIONCONTROLLER_H_
