#include "tov/TOVFrontdesk.h"

#include <utility>

#include "foundation/log_reading.h"
#include "tov/TOVLogger.h"
#include "tov/string_helpers.h"

TOVFrontdesk::TOVFrontdesk(TOVFunctionality functionality)
    : functionalityIdentifier(functionality) {}

TOVFrontdesk::TOVFrontdesk(const TOVFrontdesk& other) = default;

TOVFrontdesk::TOVFrontdesk(TOVFrontdesk&& other) noexcept
    : functionalityIdentifier(other.functionalityIdentifier),
      labeledInput(std::move(other.labeledInput)),
      brain(other.brain) {}

TOVFrontdesk& TOVFrontdesk::operator=(const TOVFrontdesk& other) = default;

TOVFrontdesk& TOVFrontdesk::operator=(TOVFrontdesk&& other) noexcept {
    functionalityIdentifier = other.functionalityIdentifier;
    labeledInput = std::move(other.labeledInput);
    brain = other.brain;
    return *this;
}

TOVFrontdesk::~TOVFrontdesk() = default;

bool TOVFrontdesk::getIncomingStringAndLabelItAs(const std::string& label,
                                                 const std::string& incoming) {
    if (labeledInput.count(label) != 0) {
        const std::string message = label + " has already been assigned to another input string.";
        brain.getLogger()->printToLog(message.c_str());
        return false;
    }
    labeledInput[label] = incoming;
    return true;
}

void TOVFrontdesk::printTitledStringToLog(const char* title, const std::string& text) {
    // The text may be a whole request; quoting it for no reader would copy it twice.
    if (!isLogRead(brain.getLogger())) {
        return;
    }
    const std::string message = std::string(title) + createStringInQuotes(text.c_str());
    brain.getLogger()->printToLog(message.c_str());
}

TOVCoreDataControllers* TOVFrontdesk::getTOVBrain() {
    return &brain;
}
