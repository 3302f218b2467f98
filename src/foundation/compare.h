#ifndef TOV_FOUNDATION_COMPARE_H_
#define TOV_FOUNDATION_COMPARE_H_

#include <string>

// Length first, then byte by byte after folding to lower case. Zero means equal;
// the order it gives is not alphabetical, so it serves equality only.
int compareStringsIgnoringCase(const std::string& first, const std::string& second);

// Strips `opening` from the front and `closing` from the back, each if present.
// Texts shorter than two characters come back unchanged.
std::string removeEnclosingCharacters(const std::string& text, char opening, char closing);

#endif  // TOV_FOUNDATION_COMPARE_H_
