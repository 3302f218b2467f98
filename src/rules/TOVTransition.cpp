#include "tov/TOVTransition.h"

#include <algorithm>
#include <utility>

#include "foundation/compare.h"
#include "tov/TOVLogger.h"
#include "tov/TOV_DMStructure.h"
#include "tov/string_helpers.h"

namespace {

// Exact equality of two values, byte by byte in line: values are mostly a
// few bytes long, for which a call to memcmp cost more than the comparing.
bool sameBytes(const std::string& first, const std::string& second) {
    if (first.size() != second.size()) {
        return false;
    }
    for (std::size_t i = 0; i < first.size(); ++i) {
        if (first[i] != second[i]) {
            return false;
        }
    }
    return true;
}

}  // namespace

TOVTransition::TOVTransition() = default;

TOVTransition::TOVTransition(const std::string& objectType, const std::string& attribute,
                             const std::string& fromValue, const std::vector<std::string>& toValues)
    : objectType(objectType), attribute(attribute), fromValue(fromValue), toValues(toValues) {}

TOVTransition::TOVTransition(std::string&& objectType, std::string&& attribute,
                             std::string&& fromValue, std::vector<std::string>&& toValues)
    : objectType(std::move(objectType)),
      attribute(std::move(attribute)),
      fromValue(std::move(fromValue)),
      toValues(std::move(toValues)) {}

bool TOVTransition::shouldTransitionBeForbidden(const AttributesMap& initial,
                                                const AttributesMap& target) const {
    std::string currentValue;
    if (!isPackageFromValueBoundByThisRule(initial, currentValue)) {
        return false;
    }
    // An attribute the edit leaves out counts as an attempt to stay where it is;
    // the attempted value is read where the target packet holds it.
    const auto attempted = target.find(attribute);
    return shouldAttemptedToValueBeForbidden(attempted == target.end() ? currentValue
                                                                       : attempted->second);
}

bool TOVTransition::shouldTransitionBeForbiddenFrom(const std::string* currentValue,
                                                    const std::string* attemptedValue) const {
    // isPackageFromValueBoundByThisRule, on the value the caller found. Equal
    // bytes are equal values too, and the usual case, so they are tried first.
    if (currentValue == nullptr ||
        (!sameBytes(*currentValue, fromValue) &&
         !areStringsEqualAccountingAlsoAnyValue(*currentValue, fromValue))) {
        return false;
    }
    return shouldAttemptedToValueBeForbidden(attemptedValue == nullptr ? *currentValue
                                                                       : *attemptedValue);
}

bool TOVTransition::appliesTo(const AttributesMap& initial) const {
    std::string currentValue;
    return isPackageFromValueBoundByThisRule(initial, currentValue);
}

bool TOVTransition::constrainsSecondaryAttribute(const std::string& editedObjectType,
                                                 const TOV_DMStructure* structure) const {
    if (structure == nullptr) {
        return false;
    }
    std::string type = objectType;
    if (isThisTheReservedAnyValue(type)) {
        type = editedObjectType;
    }
    return structure->isAttributeSecondary(type, attribute);
}

void TOVTransition::expressRuleInWords(std::string& text) const {
    text += "For " + objectType + ": " + attribute;
    text += " can transition from " + createStringInQuotes(fromValue.c_str());
    text += " to ";
    for (std::size_t i = 0; i < toValues.size(); ++i) {
        if (i > 0) {
            text += ", ";
        }
        text += createStringInQuotes(toValues[i].c_str());
    }
}

bool TOVTransition::operator<(const TOVTransition& other) const {
    return compareKeysIgnoringCase({{objectType, other.objectType},
                                    {attribute, other.attribute},
                                    {fromValue, other.fromValue}}) < 0;
}

void TOVTransition::appendSortKey(std::string& key) const {
    appendFoldedSortKeys({&objectType, &attribute, &fromValue}, key);
}

bool TOVTransition::isPackageFromValueBoundByThisRule(const AttributesMap& packet,
                                                      std::string& value) const {
    if (!getValueofKeywordFromStringStringMap(attribute, packet, value)) {
        return false;
    }
    return areStringsEqualAccountingAlsoAnyValue(value, fromValue);
}

// The target side is strict: exact bytes, and only the rule's own "<any>" in
// its exact form opens every value.
bool TOVTransition::shouldAttemptedToValueBeForbidden(const std::string& attemptedValue) const {
    if (std::any_of(toValues.begin(), toValues.end(), [&attemptedValue](const std::string& value) {
            return sameBytes(value, attemptedValue);
        })) {
        return false;
    }
    if (toValues.empty()) {
        return true;
    }
    return std::none_of(toValues.begin(), toValues.end(),
                        [](const std::string& value) { return value == TOVAttrItemValue_Any; });
}

void TOVTransition::printContentsDBG(TOVLogger* logger) const {
    logger->printToLog("**TOVTransition rule:");
    logger->printToLog(("Object type : " + objectType).c_str());
    logger->printToLog(("Attribute : " + attribute).c_str());
    logger->printToLog(("From value : " + fromValue).c_str());
    logger->printToLog(("To values : " + createCommaSeparatedListOfStrings(toValues)).c_str());
}
