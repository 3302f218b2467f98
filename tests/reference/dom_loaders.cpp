#include "reference/dom_loaders.h"

#include <cstdio>
#include <string>
#include <vector>

#include "rules/rule_kinds.h"
#include "tov/TOVConflictResolution.h"
#include "tov/TOVFileConstraint.h"
#include "tov/TOVHistoryLink.h"
#include "tov/TOVLifecycleBusinessRules.h"
#include "tov/TOVManualLink.h"
#include "tov/TOVTransition.h"
#include "tov/TOVTransitionFreeze.h"
#include "tov/TOVTrigger.h"
#include "tov/TOVVersioningSelection.h"
#include "tov/TOV_DMStructure.h"
#include "tov/TOV_DMStructureObject.h"
#include "tov/string_helpers.h"

namespace tovreference {

// ---- TOVTransitionFreezeRulesJsonParser.cpp
namespace {

using rulekinds::kAttribute;
using rulekinds::kFreezeConditionAttribute;
using rulekinds::kFreezeConditionValue;

}  // namespace

TOVTransitionFreezeRulesJsonParser::~TOVTransitionFreezeRulesJsonParser() = default;

void TOVTransitionFreezeRulesJsonParser::getAllNecessaryKeywords(
    std::vector<std::string>& keywords) {
    keywords.emplace_back(kAttribute);
    keywords.emplace_back(kFreezeConditionAttribute);
    keywords.emplace_back(kFreezeConditionValue);
}

bool TOVTransitionFreezeRulesJsonParser::parseSection(tovjson::Value& root,
                                                      TOVLifecycleBusinessRules* store) {
    return parseStringRulesSection(
        root, sectionKeyword(), {kAttribute, kFreezeConditionAttribute, kFreezeConditionValue},
        [store](const std::string& objectType, const std::vector<std::string>& values) {
            store->appendNewTransitionFreezeRule(
                TOVTransitionFreeze(objectType, values[0], values[1], values[2]));
        },
        [store](std::size_t count) { store->reserveRules<TOVTransitionFreeze>(count); });
}

// ---- TOVTransitionRulesJsonParser.cpp
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

bool TOVTransitionRulesJsonParser::parseSection(tovjson::Value& root,
                                                TOVLifecycleBusinessRules* store) {
    return parseRulesSection(
        root, sectionKeyword(),
        [&](tovjson::Value& ruleObject, std::string& objectType) {
            std::string attribute;
            std::string fromValue;
            std::vector<std::string> toValues;
            for (auto& member : ruleObject.GetObject()) {
                const std::string keyword = getMemberName(member.name);
                bool collected = true;
                if (keyword == kAttribute) {
                    collected = collectStringFromValue(member.value, attribute);
                } else if (keyword == kFromValue) {
                    collected = collectStringFromValue(member.value, fromValue);
                } else if (keyword == kToValue) {
                    // A repeated "toValue" adds to the list instead of replacing it.
                    collected = collectStringsFromArray(member.value, toValues);
                } else if (keyword == kAllowJumps) {
                    std::fputs("We do not support the allowJumps keyword in the Transition Rule.\n",
                               stdout);
                } else if (keyword == kAllowReverse) {
                    std::fputs("We do not support the allowReverse keyword in the Transition Rule.",
                               stdout);
                }
                if (!collected) {
                    // Also a bad "toValue" list is reported as a bad single value.
                    return failWith(attributeValueStringParsingError(objectType, keyword));
                }
            }
            if (objectType.empty() || attribute.empty() || fromValue.empty() || toValues.empty()) {
                return failWith(notAllNecessaryKeywordsFoundParsingError(objectType));
            }
            changeAllToAny(objectType);
            store->appendNewTransitionRule(
                TOVTransition(objectType, attribute, fromValue, toValues));
            return true;
        },
        [store](std::size_t count) { store->reserveRules<TOVTransition>(count); });
}

// ---- TOVFileConstraintsRulesJsonParser.cpp
namespace {

using rulekinds::kAttribute;
using rulekinds::kFromValue;
using rulekinds::kToValue;
using rulekinds::kUpdateFile;

}  // namespace

TOVFileConstraintsRulesJsonParser::~TOVFileConstraintsRulesJsonParser() = default;

void TOVFileConstraintsRulesJsonParser::getAllNecessaryKeywords(
    std::vector<std::string>& keywords) {
    keywords.emplace_back(kAttribute);
    keywords.emplace_back(kFromValue);
    keywords.emplace_back(kToValue);
    keywords.emplace_back(kUpdateFile);
}

bool TOVFileConstraintsRulesJsonParser::parseSection(tovjson::Value& root,
                                                     TOVLifecycleBusinessRules* store) {
    return parseStringRulesSection(
        root, sectionKeyword(), {kAttribute, kFromValue, kToValue, kUpdateFile},
        [store](const std::string& objectType, const std::vector<std::string>& values) {
            store->appendNewFileConstraintRule(
                TOVFileConstraint(objectType, values[0], values[1], values[2], values[3]));
        },
        [store](std::size_t count) { store->reserveRules<TOVFileConstraint>(count); });
}

// ---- TOVTriggersRulesJsonParser.cpp
namespace {

using rulekinds::kAttribute;
using rulekinds::kInitializationValue;
using rulekinds::kTriggerInitialize;

}  // namespace

TOVTriggersRulesJsonParser::~TOVTriggersRulesJsonParser() = default;

void TOVTriggersRulesJsonParser::getAllNecessaryKeywords(std::vector<std::string>& keywords) {
    keywords.emplace_back(kAttribute);
    keywords.emplace_back(kInitializationValue);
    keywords.emplace_back(kTriggerInitialize);
}

bool TOVTriggersRulesJsonParser::parseSection(tovjson::Value& root,
                                              TOVLifecycleBusinessRules* store) {
    return parseStringRulesSection(
        root, sectionKeyword(), {kAttribute, kTriggerInitialize, kInitializationValue},
        [store](const std::string& objectType, const std::vector<std::string>& values) {
            store->appendNewTriggerRule(TOVTrigger(objectType, values[0], values[1], values[2]));
        },
        [store](std::size_t count) { store->reserveRules<TOVTrigger>(count); });
}

// ---- TOVConflictResolutionRulesJsonParser.cpp
namespace {

using rulekinds::kAttribute;
using rulekinds::kConflictResolution;
using rulekinds::kFromValue;
using rulekinds::kHasDifferentPrimaries;
using rulekinds::kToValue;
using rulekinds::kUpdatesFile;

}  // namespace

TOVConflictResolutionRulesJsonParser::~TOVConflictResolutionRulesJsonParser() = default;

// "hasDifferentPrimaries" is named here for the message, yet a rule without it
// still loads.
void TOVConflictResolutionRulesJsonParser::getAllNecessaryKeywords(
    std::vector<std::string>& keywords) {
    keywords.emplace_back(kAttribute);
    keywords.emplace_back(kFromValue);
    keywords.emplace_back(kToValue);
    keywords.emplace_back(kUpdatesFile);
    keywords.emplace_back(kHasDifferentPrimaries);
    keywords.emplace_back(kConflictResolution);
}

bool TOVConflictResolutionRulesJsonParser::parseSection(tovjson::Value& root,
                                                        TOVLifecycleBusinessRules* store) {
    return parseRulesSection(
        root, sectionKeyword(),
        [&](tovjson::Value& ruleObject, std::string& objectType) {
            std::string attribute;
            std::string fromValue;
            std::string toValue;
            std::string updatesFile;
            std::string conflictResolution;
            bool hasDifferentPrimaries = false;
            for (const auto& member : ruleObject.GetObject()) {
                const std::string keyword = getMemberName(member.name);
                std::string* text = nullptr;
                if (keyword == kAttribute) {
                    text = &attribute;
                } else if (keyword == kFromValue) {
                    text = &fromValue;
                } else if (keyword == kToValue) {
                    text = &toValue;
                } else if (keyword == kUpdatesFile) {
                    text = &updatesFile;
                } else if (keyword == kConflictResolution) {
                    text = &conflictResolution;
                } else if (keyword == kHasDifferentPrimaries) {
                    if (!collectBoolFromValue(member.value, hasDifferentPrimaries)) {
                        return failWith(attributeValueBoolParsingError(objectType, keyword));
                    }
                    continue;
                } else {
                    // Unknown keywords are skipped whatever their type.
                    continue;
                }
                if (!collectStringFromValue(member.value, *text)) {
                    return failWith(attributeValueStringParsingError(objectType, keyword));
                }
            }
            // An empty value counts as a missing keyword.
            if (objectType.empty() || attribute.empty() || fromValue.empty() || toValue.empty() ||
                updatesFile.empty() || conflictResolution.empty()) {
                return failWith(notAllNecessaryKeywordsFoundParsingError(objectType));
            }
            changeAllToAny(objectType);
            store->appendNewConflictResolutionRule(
                TOVConflictResolution(objectType, attribute, fromValue, toValue, updatesFile,
                                      conflictResolution, hasDifferentPrimaries));
            return true;
        },
        [store](std::size_t count) { store->reserveRules<TOVConflictResolution>(count); });
}

// ---- TOVVersioningSelectionRulesJsonParser.cpp
namespace {

using rulekinds::kConditionAttribute1;
using rulekinds::kConditionAttribute2;
using rulekinds::kConditionValue1;
using rulekinds::kConditionValue2;
using rulekinds::kVersioningOption;

}  // namespace

TOVVersioningSelectionRulesJsonParser::~TOVVersioningSelectionRulesJsonParser() = default;

void TOVVersioningSelectionRulesJsonParser::getAllNecessaryKeywords(
    std::vector<std::string>& keywords) {
    keywords.emplace_back(kConditionAttribute1);
    keywords.emplace_back(kConditionValue1);
    keywords.emplace_back(kVersioningOption);
}

bool TOVVersioningSelectionRulesJsonParser::parseSection(tovjson::Value& root,
                                                         TOVLifecycleBusinessRules* store) {
    return parseRulesSection(
        root, sectionKeyword(),
        [&](tovjson::Value& ruleObject, std::string& objectType) {
            std::string conditionAttribute1;
            std::vector<std::string> conditionValues1;
            std::string conditionAttribute2;
            std::vector<std::string> conditionValues2;
            std::vector<std::string> versioningOptions;

            for (auto& member : ruleObject.GetObject()) {
                const std::string keyword = getMemberName(member.name);
                std::string* text = nullptr;
                std::vector<std::string>* list = nullptr;
                if (keyword == kConditionAttribute1) {
                    text = &conditionAttribute1;
                } else if (keyword == kConditionAttribute2) {
                    text = &conditionAttribute2;
                } else if (keyword == kConditionValue1) {
                    list = &conditionValues1;
                } else if (keyword == kConditionValue2) {
                    list = &conditionValues2;
                } else if (keyword == kVersioningOption) {
                    list = &versioningOptions;
                } else {
                    // Keywords of no meaning to this rule are passed over.
                    continue;
                }
                if (text != nullptr && !collectStringFromValue(member.value, *text)) {
                    return failWith(attributeValueStringParsingError(objectType, keyword));
                }
                if (list != nullptr && !collectStringsFromArray(member.value, *list)) {
                    return failWith(attributeValuesStringListParsingError(objectType, keyword));
                }
            }

            if (conditionAttribute1.empty() || conditionValues1.empty() ||
                versioningOptions.empty()) {
                return failWith(notAllNecessaryKeywordsFoundParsingError(objectType));
            }

            changeAllToAny(objectType);
            // The second condition goes in even when half-given; the rule leaves it out.
            store->appendNewVersioningAttrSelectionRule(
                TOVVersioningSelection(objectType, conditionAttribute1, conditionValues1,
                                       conditionAttribute2, conditionValues2, versioningOptions));
            return true;
        },
        [store](std::size_t count) { store->reserveRules<TOVVersioningSelection>(count); });
}

// ---- TOVLinkRulesJsonParsers.cpp
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

bool TOVHistoryLinkRulesJsonParser::parseSection(tovjson::Value& root,
                                                 TOVLifecycleBusinessRules* store) {
    return parseRulesSection(
        root, sectionKeyword(),
        [&](tovjson::Value& ruleObject, std::string& objectType) {
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
        },
        [store](std::size_t count) { store->reserveRules<TOVHistoryLink>(count); });
}

TOVManualLinkRulesJsonParser::~TOVManualLinkRulesJsonParser() = default;

void TOVManualLinkRulesJsonParser::getAllNecessaryKeywords(std::vector<std::string>& keywords) {
    pushLinkKeywords(kAcceptableManualLinkValues, keywords);
}

bool TOVManualLinkRulesJsonParser::parseSection(tovjson::Value& root,
                                                TOVLifecycleBusinessRules* store) {
    return parseRulesSection(
        root, sectionKeyword(),
        [&](tovjson::Value& ruleObject, std::string& objectType) {
            LinkRuleReader<TOVManualLinkRulesJsonParser>::LinkRuleKeywords keywords;
            if (!LinkRuleReader<TOVManualLinkRulesJsonParser>::read(
                    *this, ruleObject, objectType, kAcceptableManualLinkValues, keywords)) {
                return false;
            }
            changeAllToAny(objectType);
            store->appendNewManualLinkRule(TOVManualLink(objectType, keywords.attribute,
                                                         keywords.fromValue, keywords.toValue,
                                                         keywords.acceptableValues));
            return true;
        },
        [store](std::size_t count) { store->reserveRules<TOVManualLink>(count); });
}

// ---- TOVInitializationJsonParser.cpp
namespace {

// Whether the parsers stand in the table's reading order, one per kind.
template <typename... SectionParsers>
constexpr bool inReadingOrder() {
    std::size_t position = 0;
    return sizeof...(SectionParsers) == TOVRuleKindCount &&
           ((rulekinds::wordsOf(SectionParsers::kKind).readingPosition == position++) && ...);
}

}  // namespace

TOVInitializationJsonParser::TOVInitializationJsonParser(TOVLifecycleBusinessRules* store)
    : store(store) {}

TOVInitializationJsonParser::~TOVInitializationJsonParser() = default;

bool TOVInitializationJsonParser::load(const std::string& input, bool inputIsFilePath) {
    return fillJsonDocumentFromInput(input, inputIsFilePath, document);
}

template <typename... SectionParsers>
bool TOVInitializationJsonParser::parseSections() {
    static_assert(inReadingOrder<SectionParsers...>(),
                  "the section parsers run in the reading order of the table of kinds");
    const auto noteSection = [this](const auto& section) {
        const std::string comment = section.getParsingErrorComment();
        if (!comment.empty()) {
            sectionFaults.emplace_back(section.sectionKeyword(), comment);
        }
    };
    return runSectionParsersNoting<SectionParsers...>(noteSection, document, store);
}

bool TOVInitializationJsonParser::parseAllSections() {
    if (store == nullptr) {
        return false;
    }
    // The order of the sections is the order of their messages.
    return parseSections<TOVTriggersRulesJsonParser, TOVTransitionRulesJsonParser,
                         TOVTransitionFreezeRulesJsonParser, TOVFileConstraintsRulesJsonParser,
                         TOVConflictResolutionRulesJsonParser,
                         TOVVersioningSelectionRulesJsonParser, TOVHistoryLinkRulesJsonParser,
                         TOVManualLinkRulesJsonParser>();
}

// ---- TOV_DMInfoJsonParsers.cpp
namespace {

const char* const kStructureObjects = "structureObjects";
const char* const kOverwriteLabel = "OverwriteLabel";
const char* const kName = "name";
const char* const kDMObjectType = "dmObjectType";
const char* const kAttributes = "attributes";
const char* const kType = "type";
const char* const kPrimary = "primary";

}  // namespace

TOV_DMInfoJsonParser::TOV_DMInfoJsonParser(TOV_DMStructure* structure) : structure(structure) {}

TOV_DMInfoJsonParser::~TOV_DMInfoJsonParser() = default;

bool TOV_DMInfoJsonParser::load(const std::string& input, bool inputIsFilePath) {
    return fillJsonDocumentFromInput(input, inputIsFilePath, document);
}

bool TOV_DMInfoJsonParser::parseAllSections() {
    const bool objectsParsed = parseStructureObjects();
    return parseOverwriteLabel() && objectsParsed;
}

bool TOV_DMInfoJsonParser::parseStructureObjects() {
    if (structure == nullptr) {
        return false;
    }
    tovjson::Value list;
    if (!getJsonArraySection(document, kStructureObjects, list)) {
        return failForDocument(notAllNecessaryKeywordsFoundParsingError(""));
    }
    // One parser for the whole list, so that it remembers the last name read.
    TOV_DMStructureObjectJsonParser objectParser;
    int index = 0;
    for (const tovjson::Value& element : list.GetArray()) {
        if (!objectParser.parseStructureObject(element, index, structure)) {
            const std::string comment = objectParser.getParsingErrorComment();
            if (!comment.empty()) {
                sectionFaults.emplace_back(kStructureObjects, comment);
            }
            appendToParsingErrorComment(comment.c_str());
            updateParsingResult(objectParser.getParsingResult());
            return false;
        }
        ++index;
    }
    return true;
}

bool TOV_DMInfoJsonParser::parseOverwriteLabel() {
    if (structure == nullptr) {
        return false;
    }
    tovjson::Value labelValue;
    if (!getJsonStringSection(document, kOverwriteLabel, labelValue)) {
        return failForDocument(notAllNecessaryKeywordsFoundParsingError(""));
    }
    std::string label;
    collectStringFromValue(labelValue, label);
    structure->setOverwriteLabel(label);
    return true;
}

bool TOV_DMInfoJsonParser::failForDocument(const std::string& message) {
    if (!message.empty()) {
        sectionFaults.emplace_back(std::string(), message);
    }
    return failWith(message);
}

std::string TOV_DMInfoJsonParser::getRuleName() {
    return "DM Structure Information";
}

void TOV_DMInfoJsonParser::getAllNecessaryKeywords(std::vector<std::string>& keywords) {
    keywords.emplace_back(kStructureObjects);
    keywords.emplace_back(kOverwriteLabel);
}

TOV_DMStructureObjectJsonParser::TOV_DMStructureObjectJsonParser() = default;

TOV_DMStructureObjectJsonParser::~TOV_DMStructureObjectJsonParser() = default;

bool TOV_DMStructureObjectJsonParser::parseStructureObject(const tovjson::Value& element, int index,
                                                           TOV_DMStructure* structure) {
    const std::string indexText = "index=" + std::to_string(index);
    if (!element.IsObject()) {
        return failWith(objectListedRuleNotAMapError(indexText));
    }
    std::string name;
    std::string categoryWord;
    std::vector<TOV_DMAttribute> attributes;
    for (const auto& member : element.GetObject()) {
        const std::string keyword = getMemberName(member.name);
        if (keyword == kName) {
            if (!collectStringFromValue(member.value, name)) {
                return failWith(attributeValueStringParsingError(indexText, kName));
            }
            objectName = name;
        } else if (keyword == kDMObjectType) {
            if (!collectStringFromValue(member.value, categoryWord)) {
                // Once a name is known the rule name tells the object.
                return failWith(attributeValueStringParsingError(
                    name.empty() ? indexText : std::string(), kDMObjectType));
            }
        } else if (keyword == kAttributes) {
            if (!parseAttributes(member.value, name, attributes)) {
                return false;
            }
        }
    }
    if (name.empty()) {
        return failWith(notAllNecessaryKeywordsFoundParsingError(indexText));
    }
    if (categoryWord.empty() || attributes.empty()) {
        return failWith(notAllNecessaryKeywordsFoundParsingError(""));
    }
    structure->appendDMStructureObject(TOV_DMStructureObject(name, categoryWord, attributes));
    return true;
}

bool TOV_DMStructureObjectJsonParser::parseAttributes(const tovjson::Value& value,
                                                      const std::string& localName,
                                                      std::vector<TOV_DMAttribute>& attributes) {
    TOV_DMAttributeJsonParser attributeParser;
    if (!value.IsArray()) {
        return failWith(jsonSectionNotAListError(kAttributes));
    }
    for (const tovjson::Value& element : value.GetArray()) {
        if (!attributeParser.parseAttribute(element, localName, attributes)) {
            appendToParsingErrorComment(attributeParser.getParsingErrorComment().c_str());
            updateParsingResult(attributeParser.getParsingResult());
            return false;
        }
    }
    return true;
}

std::string TOV_DMStructureObjectJsonParser::getRuleName() {
    if (objectName.empty()) {
        return "Structure object";
    }
    return "Structure object with name " + objectName + ":";
}

void TOV_DMStructureObjectJsonParser::getAllNecessaryKeywords(std::vector<std::string>& keywords) {
    keywords.emplace_back(kName);
    keywords.emplace_back(kDMObjectType);
    keywords.emplace_back(kAttributes);
}

TOV_DMAttributeJsonParser::~TOV_DMAttributeJsonParser() = default;

bool TOV_DMAttributeJsonParser::parseAttribute(const tovjson::Value& element,
                                               const std::string& objectName,
                                               std::vector<TOV_DMAttribute>& attributes) {
    if (!element.IsObject()) {
        return failWith(objectListedRuleNotAMapError(objectName));
    }
    std::string name;
    std::string typeWord;
    bool primary = false;
    bool primarySeen = false;
    for (const auto& member : element.GetObject()) {
        const std::string keyword = getMemberName(member.name);
        if (keyword == kName || keyword == kType) {
            std::string& target = keyword == kName ? name : typeWord;
            if (!collectStringFromValue(member.value, target)) {
                return failWith(attributeValueStringParsingError(objectName, keyword));
            }
        } else if (keyword == kPrimary) {
            primarySeen = true;
            if (!collectBoolFromValue(member.value, primary)) {
                return failWith(attributeValueBoolParsingError(objectName, kPrimary));
            }
        }
    }
    if (name.empty() || typeWord.empty() || !primarySeen) {
        return failWith(notAllNecessaryKeywordsFoundParsingError(objectName));
    }
    attributes.emplace_back(name, typeWord, primary);
    return true;
}

std::string TOV_DMAttributeJsonParser::getRuleName() {
    return "DM Attribute";
}

void TOV_DMAttributeJsonParser::getAllNecessaryKeywords(std::vector<std::string>& keywords) {
    keywords.emplace_back(kName);
    keywords.emplace_back(kType);
    keywords.emplace_back(kPrimary);
}

}  // namespace tovreference
