// Where an engine logs, in the words of the tov program's --log option. The
// program compiles this file too, so that both read the words alike.
#ifndef TOV_API_LOG_SETTING_H_
#define TOV_API_LOG_SETTING_H_

#include <string>

namespace tovapi {

// Turns "" or "off" (silence), "console", or a folder into what
// setTOVLoggingFolder expects, creating a missing folder. False, with the
// reason in `error`, when the folder cannot be created or is no folder.
bool libraryLogSetting(const std::string& where, std::string& libraryFolder, std::string& error);

}  // namespace tovapi

#endif  // TOV_API_LOG_SETTING_H_
