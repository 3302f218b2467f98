#include "tov/TOVFileConstraint.h"

#include "foundation/compare.h"
#include "rules/rule_words.h"
#include "tov/TOVLogger.h"
#include "tov/attribute_packets.h"
#include "tov/string_helpers.h"

TOVFileConstraint::TOVFileConstraint() : updateFileConstraint(TOVUpdateFileConstraint_Free) {}

TOVFileConstraint::TOVFileConstraint(const std::string& objectType, const std::string& attribute,
                                     const std::string& fromValue, const std::string& toValue,
                                     const std::string& updateFile)
    : objectType(objectType),
      attribute(attribute),
      fromValue(fromValue),
      toValue(toValue),
      updateFileConstraint(TOVUpdateFileConstraint_Free) {
    setUpdateFileConstraint(updateFile);
}

void TOVFileConstraint::setUpdateFileConstraint(TOVUpdateFileConstraint value) {
    updateFileConstraint = value;
}
// Any word but the two exact ones leaves a rule that constrains nothing.
void TOVFileConstraint::setUpdateFileConstraint(const std::string& word) {
    if (word == TOVAttrItemValue_Forbidden) {
        updateFileConstraint = TOVUpdateFileConstraint_Forbidden;
    } else if (word == TOVAttrItemValue_Mandatory) {
        updateFileConstraint = TOVUpdateFileConstraint_Mandatory;
    } else {
        updateFileConstraint = TOVUpdateFileConstraint_Free;
    }
}

bool TOVFileConstraint::shouldTransitionBeForbidden(const AttributesMap& initial,
                                                    const AttributesMap& target) const {
    if (updateFileConstraint == TOVUpdateFileConstraint_Free || !appliesTo(initial, target)) {
        return false;
    }
    // Only an explicit word in the target satisfies a constraint; silence
    // breaks both kinds.
    const TOVUpdateFileValues upload = getThisPacketFileUpdatingValue(target);
    switch (updateFileConstraint) {
        case TOVUpdateFileConstraint_Mandatory:
            return upload != TOVUpdateFile_Yes;
        case TOVUpdateFileConstraint_Forbidden:
            return upload != TOVUpdateFile_No;
        default:
            return false;
    }
}

bool TOVFileConstraint::appliesTo(const AttributesMap& initial, const AttributesMap& target) const {
    std::string initialValue;
    if (!initial.empty()) {
        const auto found = initial.find(attribute);
        if (found == initial.end()) {
            return false;
        }
        if (!areStringsEqualAccountingAlsoAnyValue(found->second, fromValue)) {
            return false;
        }
        initialValue = found->second;
    } else if (!isThisTheReservedAnyValue(fromValue)) {
        // A new object arrives with an empty packet: it has no from value, so
        // only a rule open to every from value can bind it.
        return false;
    }
    std::string targetValue = initialValue;
    getValueofKeywordFromStringStringMap(attribute, target, targetValue);
    return areStringsEqualAccountingAlsoAnyValue(targetValue, toValue);
}

void TOVFileConstraint::expressFileConstraintInWords(std::string& text) const {
    switch (updateFileConstraint) {
        case TOVUpdateFileConstraint_Free:
            text = " uploading a new representation file is possible but not mandatory.";
            break;
        case TOVUpdateFileConstraint_Forbidden:
            text = "we MUST NOT upload a new representation file";
            break;
        case TOVUpdateFileConstraint_Mandatory:
            text = "we MUST upload a new representation file";
            break;
        default:
            text.clear();
            break;
    }
}

void TOVFileConstraint::expressRuleInWords(std::string& text) const {
    std::string constraintWords;
    expressFileConstraintInWords(constraintWords);
    appendTransitionInWords(objectType, attribute, fromValue, toValue, text);
    text += " ";
    text += constraintWords;
}

// The constraint takes no part: two rules for the same transition are equivalent.
bool TOVFileConstraint::operator<(const TOVFileConstraint& other) const {
    return compareKeysIgnoringCase({{objectType, other.objectType},
                                    {attribute, other.attribute},
                                    {fromValue, other.fromValue},
                                    {toValue, other.toValue}}) < 0;
}

void TOVFileConstraint::appendSortKey(std::string& key) const {
    appendFoldedSortKeys({&objectType, &attribute, &fromValue, &toValue}, key);
}

void TOVFileConstraint::printContentsDBG(TOVLogger* logger) const {
    std::string constraintWords;
    expressFileConstraintInWords(constraintWords);
    logger->printToLog("**TOVFileConstraint rule:");
    logger->printToLog(("Object type : " + objectType).c_str());
    logger->printToLog(("Attribute : " + attribute).c_str());
    logger->printToLog(("From value : " + fromValue).c_str());
    logger->printToLog(("To value : " + toValue).c_str());
    logger->printToLog(("File constraint : " + constraintWords).c_str());
}
