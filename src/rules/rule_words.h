#ifndef TOV_RULES_RULE_WORDS_H_
#define TOV_RULES_RULE_WORDS_H_

#include <string>

#include "tov/string_helpers.h"

// The opening that the sentences of rules about one transition share:
// For <type>: When <attribute> transitions from "<from>" to "<to>"
inline void appendTransitionInWords(const std::string& objectType, const std::string& attribute,
                                    const std::string& fromValue, const std::string& toValue,
                                    std::string& text) {
    text += "For ";
    text += objectType;
    text += ": When ";
    text += attribute;
    text += " transitions from ";
    text += createStringInQuotes(fromValue.c_str());
    text += " to ";
    text += createStringInQuotes(toValue.c_str());
}

#endif  // TOV_RULES_RULE_WORDS_H_
