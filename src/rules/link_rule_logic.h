// What history and manual link rules have in common: the same fields, the same
// comparison, walk, sentence and print. The two classes hand a view of their
// fields to these functions and differ only in the words they pass along.
#ifndef TOV_RULES_LINK_RULE_LOGIC_H_
#define TOV_RULES_LINK_RULE_LOGIC_H_

#include <algorithm>
#include <string>
#include <vector>

#include "foundation/compare.h"
#include "tov/TOVLogger.h"
#include "tov/string_helpers.h"
#include "tov/vocabulary.h"

namespace linkrules {

// Borrowed references to the fields of one link rule.
struct LinkRuleView {
    const std::string& objectType;
    const std::string& attribute;
    const std::string& fromValue;
    const std::string& toValue;
    const std::vector<std::string>& acceptableValues;
};

// Plain byte order, so that the search below can halve the list.
inline void sortAcceptableValues(std::vector<std::string>& values) {
    std::sort(values.begin(), values.end());
}

// Exact: case counts, and "<any>" is just another text here.
inline bool isValueAmongstAcceptables(const std::vector<std::string>& sortedValues,
                                      const std::string& value) {
    return std::binary_search(sortedValues.begin(), sortedValues.end(), value);
}

// The first packet whose value of the attribute is not acceptable is copied
// whole to `offending`; a packet that lacks the attribute never offends.
inline bool findFirstOffendingPacket(const LinkRuleView& rule,
                                     const std::vector<AttributesMap>& packets,
                                     AttributesMap& offending) {
    for (const AttributesMap& packet : packets) {
        const auto entry = packet.find(rule.attribute);
        if (entry == packet.end()) {
            continue;
        }
        if (!isValueAmongstAcceptables(rule.acceptableValues, entry->second)) {
            offending = packet;
            return true;
        }
    }
    return false;
}

// Object type, attribute, from value, to value; the acceptable values take no part.
inline bool precedes(const LinkRuleView& first, const LinkRuleView& second) {
    return compareKeysIgnoringCase({{first.objectType, second.objectType},
                                    {first.attribute, second.attribute},
                                    {first.fromValue, second.fromValue},
                                    {first.toValue, second.toValue}}) < 0;
}

inline void appendSortKey(const LinkRuleView& rule, std::string& key) {
    appendFoldedSortKeys({&rule.objectType, &rule.attribute, &rule.fromValue, &rule.toValue}, key);
}

// `neighbours` names whose values are constrained, e.g. " then its manual link
// ancestors can have ".
inline void appendRuleInWords(const LinkRuleView& rule, const char* neighbours, std::string& text) {
    text += "For ";
    text += rule.objectType;
    text += ": When ";
    text += rule.attribute;
    // Only the exact wildcard shortens the sentence; other spellings read literally.
    if (rule.fromValue == TOVAttrItemValue_Any) {
        text += " is ";
    } else {
        text += " transitions from ";
        text += createStringInQuotes(rule.fromValue.c_str());
        text += " to ";
    }
    text += createStringInQuotes(rule.toValue.c_str());
    text += neighbours;
    text += rule.attribute;
    text += " equal to one of :";
    text += createCommaSeparatedListOfStrings(rule.acceptableValues);
}

inline void printRule(const LinkRuleView& rule, const char* title, const char* acceptableLabel,
                      TOVLogger* logger) {
    logger->printToLog(title);
    logger->printToLog(("Object type : " + rule.objectType).c_str());
    logger->printToLog(("Attribute : " + rule.attribute).c_str());
    logger->printToLog(("From value : " + rule.fromValue).c_str());
    logger->printToLog(("To value : " + rule.toValue).c_str());
    logger->printToLog(
        (std::string(acceptableLabel) + createCommaSeparatedListOfStrings(rule.acceptableValues))
            .c_str());
}

}  // namespace linkrules

#endif  // TOV_RULES_LINK_RULE_LOGIC_H_
