// The first stop of every request: labels and logs the incoming string and
// serves it through a transaction.
#ifndef TOV_TOVFRONTDESK_H_
#define TOV_TOVFRONTDESK_H_

#include <map>
#include <string>

#include "tov/TOVCoreDataControllers.h"
#include "tov/TOVFunctionality.h"
#include "tov/export.h"

class TOV_API TOVFrontdesk {
public:
    explicit TOVFrontdesk(TOVFunctionality functionality);
    TOVFrontdesk(const TOVFrontdesk& other);
    TOVFrontdesk(TOVFrontdesk&& other) noexcept;
    TOVFrontdesk& operator=(const TOVFrontdesk& other);
    TOVFrontdesk& operator=(TOVFrontdesk&& other) noexcept;

    virtual void serveLabeledInput() = 0;

    // Stores `incoming` under `label`. A label given before keeps its first
    // value; the refusal is logged and the result is false.
    bool getIncomingStringAndLabelItAs(const std::string& label, const std::string& incoming);
    // Logs the title followed by the text in double quotes, as one message.
    void printTitledStringToLog(const char* title, const std::string& text);

protected:
    // Not virtual: a front desk is never deleted through this class.
    ~TOVFrontdesk();

    TOVFunctionality getFunctionalityIdentifier() { return functionalityIdentifier; }
    TOVCoreDataControllers* getTOVBrain();
    std::map<std::string, std::string>& getLabeledInput() { return labeledInput; }

private:
    TOVFunctionality functionalityIdentifier;
    std::map<std::string, std::string> labeledInput;
    // Borrowed pointers only, so destroying the front desk frees nothing.
    TOVCoreDataControllers brain;
};

#endif  // TOV_TOVFRONTDESK_H_
