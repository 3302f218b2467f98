#include "rules/TOVTransitionRulesJsonParser.h"

#include <string>
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

TOVTransitionRulesJsonParser::TOVTransitionRulesJsonParser() : events(*this) {}

TOVTransitionRulesJsonParser::~TOVTransitionRulesJsonParser() = default;

void TOVTransitionRulesJsonParser::getAllNecessaryKeywords(std::vector<std::string>& keywords) {
    keywords.emplace_back(kAttribute);
    keywords.emplace_back(kFromValue);
    keywords.emplace_back(kToValue);
}

bool TOVTransitionRulesJsonParser::readRule(tovjson::Value& ruleObject, std::string& objectType,
                                            TOVLifecycleBusinessRules* store) {
    tovjson::readValueEvents(ruleObject, events);
    return events.finish(objectType, store);
}

void TOVTransitionRulesJsonParser::RuleEvents::open(rapidjson::Type containerType) {
    if (depth == 0) {
        // A new rule object: nothing of the one before is left.
        member = Member::kOther;
        inToValues = false;
        failedMember = nullptr;
        attribute.clear();
        fromValue.clear();
        toValues.clear();
    } else if (failedMember == nullptr) {
        if (depth == 1) {
            // The value of a member is a container: only a list of values may be.
            if (member == Member::kAttribute || member == Member::kFromValue ||
                (member == Member::kToValue && containerType != rapidjson::kArrayType)) {
                fail();
            } else if (member == Member::kToValue) {
                inToValues = true;
            }
        } else if (depth == 2 && inToValues) {
            fail();
        }
    }
    ++depth;
}

void TOVTransitionRulesJsonParser::RuleEvents::key(const char* name, std::size_t length) {
    if (depth != 1 || failedMember != nullptr) {
        return;
    }
    // Names are compared where they lie: a rule is read for every one of a
    // large document, and the name is needed as text only for a fault.
    member = Member::kOther;
    if (isMemberNamed(name, length, kAttribute)) {
        member = Member::kAttribute;
    } else if (isMemberNamed(name, length, kFromValue)) {
        member = Member::kFromValue;
    } else if (isMemberNamed(name, length, kToValue)) {
        member = Member::kToValue;
    } else if (isMemberNamed(name, length, kAllowJumps)) {
        parser.notice("We do not support the allowJumps keyword in the Transition Rule.\n");
    } else if (isMemberNamed(name, length, kAllowReverse)) {
        parser.notice("We do not support the allowReverse keyword in the Transition Rule.");
    }
}

void TOVTransitionRulesJsonParser::RuleEvents::close() {
    --depth;
    if (depth == 1) {
        inToValues = false;
    }
}

void TOVTransitionRulesJsonParser::RuleEvents::scalar(rapidjson::Type /*type*/) {
    if (failedMember != nullptr) {
        return;
    }
    if ((depth == 1 && member != Member::kOther) || (depth == 2 && inToValues)) {
        fail();
    }
}

void TOVTransitionRulesJsonParser::RuleEvents::string(const char* text, std::size_t length) {
    if (failedMember != nullptr) {
        return;
    }
    if (depth == 2 && inToValues) {
        // A repeated "toValue" adds to the list instead of replacing it.
        toValues.emplace_back(text, lengthUpToZeroByte(text, length));
    } else if (depth == 1 && member == Member::kAttribute) {
        attribute.assign(text, lengthUpToZeroByte(text, length));
    } else if (depth == 1 && member == Member::kFromValue) {
        fromValue.assign(text, lengthUpToZeroByte(text, length));
    } else if (depth == 1 && member == Member::kToValue) {
        fail();
    }
}

void TOVTransitionRulesJsonParser::RuleEvents::fail() {
    // Also a bad "toValue" list is reported as a bad single value.
    failedMember = member == Member::kAttribute   ? kAttribute
                   : member == Member::kFromValue ? kFromValue
                                                  : kToValue;
}

bool TOVTransitionRulesJsonParser::RuleEvents::finish(std::string& objectType,
                                                      TOVLifecycleBusinessRules* store) {
    if (failedMember != nullptr) {
        return parser.failWith(parser.attributeValueStringParsingError(objectType, failedMember));
    }
    if (objectType.empty() || attribute.empty() || fromValue.empty() || toValues.empty()) {
        return parser.failWith(parser.notAllNecessaryKeywordsFoundParsingError(objectType));
    }
    changeAllToAny(objectType);
    // The rule's own list is allocated once at its length; `toValues` keeps
    // its room for the next rule.
    std::vector<std::string> values;
    values.reserve(toValues.size());
    for (std::string& value : toValues) {
        values.push_back(std::move(value));
    }
    store->appendNewTransitionRule(TOVTransition(std::string(objectType), std::move(attribute),
                                                 std::move(fromValue), std::move(values)));
    return true;
}
