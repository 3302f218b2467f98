#ifndef TOV_FOUNDATION_COMPARE_H_
#define TOV_FOUNDATION_COMPARE_H_

#include <initializer_list>
#include <string>

// ASCII letters fold to lower case and every other byte stays, bytes beyond
// ASCII included: what tolower does in the "C" locale, which the library never
// leaves, without a call per byte.
constexpr char foldAsciiCase(char byte) {
    return byte >= 'A' && byte <= 'Z' ? static_cast<char>(byte - 'A' + 'a') : byte;
}

// Length first, then byte by byte after folding to lower case. Zero means equal.
// The order it gives is not alphabetical: it serves equality and the rules' own
// sort orders, never a listing for people.
int compareStringsIgnoringCase(const std::string& first, const std::string& second);

// Equality under compareStringsIgnoringCase, against a constant word without
// building a string of it.
bool equalsIgnoringCase(const std::string& text, const char* word);

// One key of a comparison: this side's string and the other side's.
struct KeyPair {
    const std::string& mine;
    const std::string& theirs;
};

// Compares key by key with compareStringsIgnoringCase; the first key that
// differs decides. Zero when every key compares equal.
int compareKeysIgnoringCase(std::initializer_list<KeyPair> keys);

// Appends `text` to a sort key, folded once, so that whole keys compared as
// plain bytes (std::string's operator<) order as compareStringsIgnoringCase
// orders the texts, field after field: the length in eight big-endian bytes,
// then each folded byte with its top bit flipped, which turns the signed order
// of the bytes into the unsigned order of std::string.
void appendFoldedSortKey(const std::string& text, std::string& key);
// The same for several fields in turn, appended at once.
void appendFoldedSortKeys(std::initializer_list<const std::string*> texts, std::string& key);
// An integer field of a sort key, in four big-endian bytes with the sign bit
// flipped, so that keys order as the signed integers do.
void appendIntegerSortKey(int value, std::string& key);

// Strips `opening` from the front and `closing` from the back, each if present.
// Texts shorter than two characters come back unchanged.
std::string removeEnclosingCharacters(const std::string& text, char opening, char closing);

// The object type as the rule index groups it: folded to lower case, so that
// types equal ignoring case share a group.
std::string foldedObjectType(const std::string& objectType);

#endif  // TOV_FOUNDATION_COMPARE_H_
