#ifndef TOV_FOUNDATION_COMPARE_H_
#define TOV_FOUNDATION_COMPARE_H_

#include <initializer_list>
#include <string>

// Length first, then byte by byte after folding to lower case. Zero means equal.
// The order it gives is not alphabetical: it serves equality and the rules' own
// sort orders, never a listing for people.
int compareStringsIgnoringCase(const std::string& first, const std::string& second);

// One key of a comparison: this side's string and the other side's.
struct KeyPair {
    const std::string& mine;
    const std::string& theirs;
};

// Compares key by key with compareStringsIgnoringCase; the first key that
// differs decides. Zero when every key compares equal.
int compareKeysIgnoringCase(std::initializer_list<KeyPair> keys);

// Strips `opening` from the front and `closing` from the back, each if present.
// Texts shorter than two characters come back unchanged.
std::string removeEnclosingCharacters(const std::string& text, char opening, char closing);

#endif  // TOV_FOUNDATION_COMPARE_H_
