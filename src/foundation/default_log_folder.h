#ifndef TOV_FOUNDATION_DEFAULT_LOG_FOLDER_H_
#define TOV_FOUNDATION_DEFAULT_LOG_FOLDER_H_

// The folder a logger writes to until the host names another; fixed when the
// library is built.
inline const char* defaultLogFolder() {
    return TOV_DEFAULT_LOG_FOLDER;
}

#endif  // TOV_FOUNDATION_DEFAULT_LOG_FOLDER_H_
