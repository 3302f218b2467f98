#ifndef TOV_FOUNDATION_CLOCK_H_
#define TOV_FOUNDATION_CLOCK_H_

#include <ctime>

// The one place that asks the platform for the time: the current time in
// seconds, and that time as local calendar time.
std::time_t currentTimeInSeconds(std::tm* localCalendarTime);

#endif  // TOV_FOUNDATION_CLOCK_H_
