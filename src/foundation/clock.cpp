#include "foundation/clock.h"

std::time_t currentTimeInSeconds(std::tm* localCalendarTime) {
    const std::time_t now = std::time(nullptr);
    if (localCalendarTime != nullptr && localtime_r(&now, localCalendarTime) == nullptr) {
        *localCalendarTime = std::tm{};
    }
    return now;
}
