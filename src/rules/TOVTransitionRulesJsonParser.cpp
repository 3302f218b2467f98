#include "rules/TOVTransitionRulesJsonParser.h"

#include <utility>

#include "tov/TOVLifecycleBusinessRules.h"
#include "tov/TOVTransition.h"
#include "tov/string_helpers.h"

namespace {

using rulekinds::kAllowJumps;
using rulekinds::kAllowReverse;
using rulekinds::kAttribute;
using rulekinds::kFromValue;
using rulekinds::kToValue;

}  // namespace

TOVTransitionRulesJsonParser::~TOVTransitionRulesJsonParser() = default;

void TOVTransitionRulesJsonParser::getAllNecessaryKeywords(std::vector<std::string>& keywords) {
    keywords.emplace_back(kAttribute);
    keywords.emplace_back(kFromValue);
    keywords.emplace_back(kToValue);
}

bool TOVTransitionRulesJsonParser::readRule(tovjson::Value& ruleObject, std::string& objectType,
                                            TOVLifecycleBusinessRules* store) {
    std::string attribute;
    std::string fromValue;
    std::vector<std::string> toValues;
    for (auto& member : ruleObject.GetObject()) {
        // Names are compared where they lie: a rule is read for every one of
        // a large document, and the name is needed as text only for a fault.
        const tovjson::Value& name = member.name;
        bool collected = true;
        if (isMemberNamed(name, kAttribute)) {
            collected = collectStringFromValue(member.value, attribute);
        } else if (isMemberNamed(name, kFromValue)) {
            collected = collectStringFromValue(member.value, fromValue);
        } else if (isMemberNamed(name, kToValue)) {
            // A repeated "toValue" adds to the list instead of replacing it.
            collected = collectStringsFromArray(member.value, toValues);
        } else if (isMemberNamed(name, kAllowJumps)) {
            notice("We do not support the allowJumps keyword in the Transition Rule.\n");
        } else if (isMemberNamed(name, kAllowReverse)) {
            notice("We do not support the allowReverse keyword in the Transition Rule.");
        }
        if (!collected) {
            // Also a bad "toValue" list is reported as a bad single value.
            return failWith(attributeValueStringParsingError(objectType, getMemberName(name)));
        }
    }
    if (objectType.empty() || attribute.empty() || fromValue.empty() || toValues.empty()) {
        return failWith(notAllNecessaryKeywordsFoundParsingError(objectType));
    }
    changeAllToAny(objectType);
    store->appendNewTransitionRule(TOVTransition(std::string(objectType), std::move(attribute),
                                                 std::move(fromValue), std::move(toValues)));
    return true;
}
