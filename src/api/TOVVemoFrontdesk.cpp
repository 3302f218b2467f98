#include "api/TOVVemoFrontdesk.h"

#include <utility>

#include "foundation/log_reading.h"
#include "tov/TOVTransactionController.h"

TOVVemoFrontdesk::TOVVemoFrontdesk(TOVFunctionality functionality) : TOVFrontdesk(functionality) {}

TOVVemoFrontdesk::~TOVVemoFrontdesk() = default;

void TOVVemoFrontdesk::serveLabeledInput() {
    // The controller takes the input over: a request is held once on its way
    // to the parser, and the front desk serves once.
    TOVTransactionController transaction(getFunctionalityIdentifier(), std::move(getLabeledInput()),
                                         getTOVBrain());
    // Without a controller there is nothing to run: the response stays as it is.
    if (transaction.hasController()) {
        response = transaction.executeTransaction();
    }
}

void TOVVemoFrontdesk::borrowData(TOVCoreDataControllers* coreData) {
    getTOVBrain()->borrowData(coreData);
}

void TOVVemoFrontdesk::printResponseToLog(const char* title, const TOVResponse& result) {
    if (!isLogRead(getTOVBrain()->getLogger())) {
        return;
    }
    printTitledStringToLog(title, result.turnResponseIntoASingleString());
}
