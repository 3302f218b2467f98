// The library's only output besides the response: every message goes to
// nowhere, to standard output, or as a timestamped line to a log file.
#ifndef TOV_TOVLOGGER_H_
#define TOV_TOVLOGGER_H_

#include <cstdint>
#include <string>

#include "tov/export.h"

enum WhereToLog : std::int32_t {
    LogNowhere = 0,
    LogToConsole = 1,
    LogToFile = 2,
};

class TOV_API TOVLogger {
public:
    // Starts with a file name in the default folder, whatever the destination.
    explicit TOVLogger(WhereToLog whereToLog);

    // Writes one message. On the console it ends in exactly one line feed; in the
    // file it becomes "dd/mm/YYYY HH:MM:SS : message" plus a line feed. The file is
    // opened and closed for each message. False when nothing could be written.
    bool printToLog(const char* message);

    // Empty text: log nowhere. "console" in any case: log to standard output.
    // Anything else is a folder: log to a new file there. Returns the path of the
    // current log file in every case.
    std::string setTOVLoggingOutput(const std::string& output);

    std::string getFile() const { return file; }

    // False when messages go nowhere, so that callers can skip building text
    // that no one would read.
    bool writesAnywhere() const { return whereToLog == LogToConsole || whereToLog == LogToFile; }

private:
    WhereToLog getWhereToLog() const { return whereToLog; }
    void setWhereToLog(WhereToLog destination) { whereToLog = destination; }
    void setFile(const char* value) { file = value; }
    void initializeFilename();
    void setFolderToCreateLoggingFile(const char* folder);
    std::string createNameOfLoggingFile() const;
    std::string createMessagePrependedWithTimestamp(const char* message) const;
    bool printToFile(const char* message);
    bool printToStdOut(const char* message);

    std::string file;
    WhereToLog whereToLog;
};

#endif  // TOV_TOVLOGGER_H_
