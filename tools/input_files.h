// Reading what the command line names. Every read is bounded, and only
// regular files (or standard input, when asked for) are read, so that a
// device, a FIFO or a folder gets a clear answer at once instead of a hang
// or an exhausted memory.
#ifndef TOV_TOOLS_INPUT_FILES_H_
#define TOV_TOOLS_INPUT_FILES_H_

#include <cstdint>
#include <cstdio>
#include <string>

namespace tovcli {

// The default of --max-input-size: far above any real rules document, far
// below what would take the machine's memory.
constexpr std::uint64_t kDefaultMaxInputSize = std::uint64_t{256} << 20;

// True when `path` names standard input: "-" or nothing at all.
bool isStandardInput(const std::string& path);

// "cannot read rules document x: REASON", or "... from standard input: REASON".
std::string cannotRead(const std::string& path, const char* what, const std::string& reason);

// "rules document x is larger than the input size limit of N bytes (--max-input-size)".
std::string tooLarge(const std::string& path, const char* what, std::uint64_t limit);

// Checks, without opening it, that `path` names a regular file of at most
// `limit` bytes, and gives its size. False, with the message in `error`, when
// it does not.
bool checkRegularFile(const std::string& path, const char* what, std::uint64_t limit,
                      std::string& error, std::uint64_t& size);

// Opens a regular file for reading, or gives standard input for "-" or
// nothing. Null, with the message in `error`, when it cannot.
std::FILE* openInput(const std::string& path, const char* what, std::uint64_t limit,
                     std::string& error);

// Reads a whole regular file, or standard input for "-", of at most `limit`
// bytes. False, with the message in `error`, when it cannot.
bool readInput(const std::string& path, const char* what, std::uint64_t limit, std::string& text,
               std::string& error);

}  // namespace tovcli

#endif  // TOV_TOOLS_INPUT_FILES_H_
