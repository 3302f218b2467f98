// Free string functions shared by the whole library and offered to hosts.
//
// Values are compared ignoring case, byte by byte, and strings of different
// length are never equal. The text forms of lists and maps are deliberately
// plain: nothing is escaped or quoted, and a list or map that lacks its closing
// bracket loses its last element when read back.
#ifndef TOV_STRING_HELPERS_H_
#define TOV_STRING_HELPERS_H_

#include <set>
#include <string>
#include <vector>

#include "tov/export.h"
#include "tov/vocabulary.h"

// True when the two strings are equal ignoring case.
TOV_API bool areStringsEqualSimple(const std::string& first, const std::string& second);
// As above, but "<any>" (in any case) on either side equals everything.
TOV_API bool areStringsEqualAccountingAlsoAnyValue(const std::string& first,
                                                   const std::string& second);
TOV_API bool isThisTheReservedAnyValue(const std::string& value);
TOV_API bool isThisTheReservedResetValue(const std::string& value);
// `text` must not be null.
TOV_API bool isThisTheLogToConsoleKeyword(const char* text);
// Rewrites "ALL" (any case) to exactly "<any>" and says whether it did.
TOV_API bool changeAllToAny(std::string& objectType);

// Exact, case-sensitive lookup; `value` keeps what it held when the key is absent.
TOV_API bool getValueofKeywordFromStringStringMap(const std::string& key,
                                                  const AttributesMap& attributes,
                                                  std::string& value);
TOV_API std::vector<std::string> getKeysOfMap(const AttributesMap& attributes);

// "{" + text + "}".
TOV_API std::string addEnclosingCurlyBracketsToString(const char* text);
// A double quote, the text, a double quote.
TOV_API std::string createStringInQuotes(const char* text);
// "[a,b]"; the empty string (not "[]") for an empty list.
TOV_API std::string createCommaSeparatedListOfStrings(const std::vector<std::string>& list);
TOV_API std::string createCommaSeparatedSetOfStrings(const std::set<std::string>& set);
// "{a:1, b:2}"; "{}" for an empty map.
TOV_API std::string createCommaSeparatedStringStringMap(
    const std::map<std::string, std::string>& map);

TOV_API std::string removeEnclosingCurlyBracketsFromString(const std::string& text);
TOV_API std::string removeEnclosingSquareBracketsFromString(const std::string& text);
TOV_API std::string removeEnclosingQuotesFromString(const std::string& text);

// Reads the text form of a list, appending to `list`; true when `list` is not empty
// afterwards.
TOV_API bool createVectorFromCommaSeparatedListOfStrings(const std::string& text,
                                                         std::vector<std::string>& list);
TOV_API bool createSetFromCommaSeparatedListOfStrings(const std::string& text,
                                                      std::set<std::string>& set);
// Reads the text form of a map, inserting into `map`; false when a pair has an
// empty key or value.
TOV_API bool createStringStringMapFromCommaSeparatedString(const std::string& text,
                                                           AttributesMap& map);

// Joins a sentence to a text, closing the previous sentence with a full stop.
TOV_API void finishPreviousSentenceAndAppendAnother(std::string& text, const std::string& sentence);
// Appends a back-slash unless the path already ends in one. Only the back-slash
// counts: a path ending in a forward slash still gets one.
TOV_API void appendSlashOrBackSlashIfNecessary(std::string& path);

#endif  // TOV_STRING_HELPERS_H_
