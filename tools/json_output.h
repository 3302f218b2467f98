// The program's JSON output: the answer to a request with real types, and the
// writing of parsed input back to text without recursion, so that no input
// depth can exhaust the stack.
#ifndef TOV_TOOLS_JSON_OUTPUT_H_
#define TOV_TOOLS_JSON_OUTPUT_H_

#include <string>

#include "json/json_types.h"
#include "tov/TOVResponse.h"

namespace tovcli {

using JsonWriter = tovjson::Writer;

// How a command writes its answers.
enum class OutputFormat { kText, kJson };

void writeString(JsonWriter& writer, const std::string& text);

// Writes `value` with a stack of its own instead of RapidJSON's recursive Accept.
void writeValue(JsonWriter& writer, const tovjson::Value& value);

// Writes the members of one response into an object that the caller opened:
// "result" (a bool), "comment", "keywords" (every keyword with its text, the
// result among them, each once), and decoded: "options" (the conflict
// resolutions offered), "initialize" (attribute to value) and "missing" (the
// request sections the host must send again: "membersOfFamily",
// "manualLinkAncestors").
void writeResponseMembers(JsonWriter& writer, const TOVResponse& response);

// A response as one JSON object of those members.
std::string responseAsJson(const TOVResponse& response);

}  // namespace tovcli

#endif  // TOV_TOOLS_JSON_OUTPUT_H_
