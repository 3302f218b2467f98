// JSON documents that the program reads itself: suites, and the rules and
// data-model documents that --strict and graph look into.
#ifndef TOV_TOOLS_JSON_FILES_H_
#define TOV_TOOLS_JSON_FILES_H_

#include <cstdint>
#include <string>
#include <vector>

#include "json/json_types.h"

namespace tovcli {

// Parses a regular file of at most `limit` bytes into `json`, iteratively, so
// that no depth of nesting can exhaust the stack. False, with the message in
// `error` ("cannot read suite x: ..." or "x:LINE:COLUMN: Invalid value."), when
// it cannot be read or is no JSON.
bool parseJsonFile(const std::string& path, const char* what, std::uint64_t limit,
                   tovjson::Document& json, std::string& error);

// "LINE:COLUMN" of a byte offset in a text, both counted from 1.
std::string textLocation(const std::string& text, std::size_t offset);

// The member `name` of an object when it is a string, else null.
const tovjson::Value* findString(const tovjson::Value& object, const char* name);

// The member `name` of an object when it is an array, else null (for a value
// that is no object too).
const tovjson::Value* findArray(const tovjson::Value& object, const char* name);

// The member `name` of an object as text; empty when it is absent or no string.
std::string stringOf(const tovjson::Value& object, const char* name);

// "array", "object", "string"... for messages.
const char* jsonTypeName(const tovjson::Value& value);

// Of `candidates`, the one nearest to `word` by edit distance (ties to the
// first), or empty when none is within `maxDistance`.
std::string nearestWord(const std::string& word, const std::vector<std::string>& candidates,
                        std::size_t maxDistance);

}  // namespace tovcli

#endif  // TOV_TOOLS_JSON_FILES_H_
