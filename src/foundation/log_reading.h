// Debug text can be large (a whole store, every response twice), so it is
// built only when a message would land somewhere.
#ifndef TOV_FOUNDATION_LOG_READING_H_
#define TOV_FOUNDATION_LOG_READING_H_

#include "tov/TOVLogger.h"

inline bool isLogRead(const TOVLogger* logger) {
    return logger != nullptr && logger->writesAnywhere();
}

#endif  // TOV_FOUNDATION_LOG_READING_H_
