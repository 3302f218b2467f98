#include "rules/TOVLinkRulesJsonParsers.h"

#include "tov/TOVHistoryLink.h"
#include "tov/TOVLifecycleBusinessRules.h"
#include "tov/TOVManualLink.h"
#include "tov/string_helpers.h"

namespace {

using rulekinds::kAcceptableHistoryLinkValues;
using rulekinds::kAcceptableManualLinkValues;
using rulekinds::kAttribute;
using rulekinds::kFromValue;
using rulekinds::kToValue;

void pushLinkKeywords(const char* listKeyword, std::vector<std::string>& keywords) {
    keywords.emplace_back(kAttribute);
    keywords.emplace_back(kFromValue);
    keywords.emplace_back(kToValue);
    keywords.emplace_back(listKeyword);
}

}  // namespace

// Both link parsers read a rule object the same way; they are separate classes
// only because each has its own name and list keyword. The reading lives here
// as a template so that it can reach the protected parser operations.
template <typename Parser>
struct LinkRuleReader {
    // The keywords of one link rule as read; the list keyword is the only one in
    // which the two kinds differ.
    struct LinkRuleKeywords {
        std::string attribute;
        std::string fromValue;
        std::string toValue;
        std::vector<std::string> acceptableValues;

        bool isComplete(const std::string& objectType) const {
            return !objectType.empty() && !attribute.empty() && !fromValue.empty() &&
                   !toValue.empty() && !acceptableValues.empty();
        }
    };

    // Unknown keywords (the other kind's list among them) are skipped in silence.
    static bool read(Parser& parser, const tovjson::Value& ruleObject,
                     const std::string& objectType, const char* listKeyword,
                     LinkRuleKeywords& keywords) {
        for (const auto& member : ruleObject.GetObject()) {
            const std::string keyword = parser.getMemberName(member.name);
            std::string* text = nullptr;
            if (keyword == kAttribute) {
                text = &keywords.attribute;
            } else if (keyword == kFromValue) {
                text = &keywords.fromValue;
            } else if (keyword == kToValue) {
                text = &keywords.toValue;
            }
            if (text != nullptr) {
                if (!parser.collectStringFromValue(member.value, *text)) {
                    return parser.failWith(
                        parser.attributeValueStringParsingError(objectType, keyword));
                }
            } else if (keyword == listKeyword) {
                // A repeated list keyword adds to what the first one gave.
                if (!parser.collectStringsFromArray(member.value, keywords.acceptableValues)) {
                    return parser.failWith(
                        parser.attributeValuesStringListParsingError(objectType, keyword));
                }
            }
        }
        if (!keywords.isComplete(objectType)) {
            return parser.failWith(parser.notAllNecessaryKeywordsFoundParsingError(objectType));
        }
        return true;
    }
};

TOVHistoryLinkRulesJsonParser::~TOVHistoryLinkRulesJsonParser() = default;

void TOVHistoryLinkRulesJsonParser::getAllNecessaryKeywords(std::vector<std::string>& keywords) {
    pushLinkKeywords(kAcceptableHistoryLinkValues, keywords);
}

bool TOVHistoryLinkRulesJsonParser::readRule(tovjson::Value& ruleObject, std::string& objectType,
                                             TOVLifecycleBusinessRules* store) {
    LinkRuleReader<TOVHistoryLinkRulesJsonParser>::LinkRuleKeywords keywords;
    if (!LinkRuleReader<TOVHistoryLinkRulesJsonParser>::read(
            *this, ruleObject, objectType, kAcceptableHistoryLinkValues, keywords)) {
        return false;
    }
    changeAllToAny(objectType);
    store->appendNewHistoryLinkRule(TOVHistoryLink(objectType, keywords.attribute,
                                                   keywords.fromValue, keywords.toValue,
                                                   keywords.acceptableValues));
    return true;
}

TOVManualLinkRulesJsonParser::~TOVManualLinkRulesJsonParser() = default;

void TOVManualLinkRulesJsonParser::getAllNecessaryKeywords(std::vector<std::string>& keywords) {
    pushLinkKeywords(kAcceptableManualLinkValues, keywords);
}

bool TOVManualLinkRulesJsonParser::readRule(tovjson::Value& ruleObject, std::string& objectType,
                                            TOVLifecycleBusinessRules* store) {
    LinkRuleReader<TOVManualLinkRulesJsonParser>::LinkRuleKeywords keywords;
    if (!LinkRuleReader<TOVManualLinkRulesJsonParser>::read(
            *this, ruleObject, objectType, kAcceptableManualLinkValues, keywords)) {
        return false;
    }
    changeAllToAny(objectType);
    store->appendNewManualLinkRule(TOVManualLink(objectType, keywords.attribute, keywords.fromValue,
                                                 keywords.toValue, keywords.acceptableValues));
    return true;
}
