#include "json/TOVJsonParser.h"

#include <fstream>
#include <tuple>
#include <utility>

#include <rapidjson/istreamwrapper.h>

#include "json/document_walk.h"
#include "tov/string_helpers.h"

namespace {
const char* const kFundamentalParsingError = "Json has fundamental parsing error";

}  // namespace

TOVJsonParser::TOVJsonParser() : parsingResult(true) {}

TOVJsonParser::~TOVJsonParser() = default;

std::string TOVJsonParser::getRuleName() {
    return "Lifecycle Business";
}

void TOVJsonParser::getAllNecessaryKeywords(std::vector<std::string>& /*keywords*/) {}

bool TOVJsonParser::acceptParsedDocument(const tovjson::Document& document) {
    return (!document.HasParseError() && document.IsObject()) || failFundamentally();
}

bool TOVJsonParser::failFundamentally() {
    setParsingResult(false);
    setParsingErrorComment(kFundamentalParsingError);
    return false;
}

bool TOVJsonParser::fillJsonDocumentFromJsonFile(const std::string& path,
                                                 tovjson::Document& document) {
    std::ifstream stream;
    if (tovjson::isRegularFile(path)) {
        stream.open(path, std::ios::in | std::ios::binary);
    }
    if (!stream.is_open()) {
        return failFundamentally();
    }
    rapidjson::IStreamWrapper wrapper(stream);
    document.ParseStream<kTOVParseFlags>(wrapper);
    return acceptParsedDocument(document);
}

bool TOVJsonParser::fillJsonDocumentFromJsonString(const std::string& text,
                                                   tovjson::Document& document) {
    document.Parse<kTOVParseFlags>(text.c_str());
    return acceptParsedDocument(document);
}

bool TOVJsonParser::fillJsonDocumentFromJsonTextInPlace(char* text, tovjson::Document& document) {
    document.ParseInsitu<kTOVParseFlags>(text);
    return acceptParsedDocument(document);
}

bool TOVJsonParser::fillJsonDocumentFromInput(const std::string& input, bool inputIsFilePath,
                                              tovjson::Document& document) {
    return inputIsFilePath ? fillJsonDocumentFromJsonFile(input, document)
                           : fillJsonDocumentFromJsonString(input, document);
}

bool TOVJsonParser::walkJsonInput(const std::string& input, bool inputIsFilePath,
                                  tovjson::DocumentWalker& walker) {
    return tovjson::walkDocument(input, inputIsFilePath, walker) || failFundamentally();
}

namespace {

bool moveMemberOut(tovjson::Value& parent, const char* keyword, tovjson::Value& out) {
    if (!parent.IsObject()) {
        return false;
    }
    const auto member = parent.FindMember(keyword);
    if (member == parent.MemberEnd()) {
        return false;
    }
    out = member->value;  // moves, leaving a null in the parent
    return true;
}

}  // namespace

bool TOVJsonParser::getJsonSection(tovjson::Value& parent, const char* keyword,
                                   tovjson::Value& out) {
    return moveMemberOut(parent, keyword, out) && out.IsObject();
}

bool TOVJsonParser::getJsonArraySection(tovjson::Value& parent, const char* keyword,
                                        tovjson::Value& out) {
    return moveMemberOut(parent, keyword, out) && out.IsArray();
}

bool TOVJsonParser::getJsonBoolSection(tovjson::Value& parent, const char* keyword,
                                       tovjson::Value& out) {
    return moveMemberOut(parent, keyword, out) && out.IsBool();
}

bool TOVJsonParser::getJsonStringSection(tovjson::Value& parent, const char* keyword,
                                         tovjson::Value& out) {
    return moveMemberOut(parent, keyword, out) && out.IsString();
}

bool TOVJsonParser::collectBoolFromValue(const tovjson::Value& value, bool& out) {
    if (!value.IsBool()) {
        return false;
    }
    out = value.GetBool();
    return true;
}

bool TOVJsonParser::collectStringFromValue(const tovjson::Value& value, std::string& out) {
    if (!value.IsString()) {
        return false;
    }
    out.assign(value.GetString(), lengthUpToZeroByte(value.GetString(), value.GetStringLength()));
    return true;
}

bool TOVJsonParser::getStringNamesValuesPair(tovjson::Value::ConstMemberIterator member,
                                             std::string& name, std::string& value) {
    if (!member->name.IsString()) {
        return false;
    }
    name = member->name.GetString();
    return collectStringFromValue(member->value, value);
}

std::string TOVJsonParser::getMemberName(const tovjson::Value& name) {
    return std::string(name.GetString(), name.GetStringLength());
}

bool TOVJsonParser::collectStringsFromArray(const tovjson::Value& value,
                                            std::vector<std::string>& out) {
    if (!value.IsArray()) {
        return false;
    }
    // Room for the whole list at once: a list of rule values is short, and
    // growing it one string at a time cost more than reading the strings.
    out.reserve(out.size() + value.Size());
    for (const auto& element : value.GetArray()) {
        if (!element.IsString()) {
            return false;
        }
        out.emplace_back(element.GetString(),
                         lengthUpToZeroByte(element.GetString(), element.GetStringLength()));
    }
    return true;
}

bool TOVJsonParser::collectKeyValuesPairsFromSection(const tovjson::Value& section,
                                                     AttributesMap& map) {
    if (!section.IsObject()) {
        return false;
    }
    for (const auto& member : section.GetObject()) {
        if (!member.name.IsString() || !member.value.IsString()) {
            return false;
        }
        // Names and values up to their first zero byte, as getStringNamesValuesPair
        // reads them, built right in the new entry rather than copied into it.
        // Packets are mostly written in key order, so the end is usually where
        // the next name goes. A repeated name keeps its last value.
        const std::size_t entriesBefore = map.size();
        const auto entry = map.emplace_hint(map.end(), std::piecewise_construct,
                                            std::forward_as_tuple(member.name.GetString()),
                                            std::forward_as_tuple(member.value.GetString()));
        if (map.size() == entriesBefore) {
            entry->second = member.value.GetString();
        }
    }
    return true;
}

char TOVJsonParser::getCommentSeparator() const {
    return '|';
}

void TOVJsonParser::appendToParsingErrorComment(const char* text) {
    if (text == nullptr || *text == '\0') {
        return;
    }
    if (!parsingErrorComment.empty()) {
        parsingErrorComment += getCommentSeparator();
    }
    parsingErrorComment += text;
}

void TOVJsonParser::setParsingErrorComment(const char* text) {
    parsingErrorComment = text == nullptr ? "" : text;
}

void TOVJsonParser::updateParsingResult(bool result) {
    parsingResult = parsingResult && result;
}

bool TOVJsonParser::failWith(const std::string& message) {
    // Through the C string, as every message is recorded: a name with a zero
    // byte inside is cut there.
    appendToParsingErrorComment(message.c_str());
    setParsingResult(false);
    return false;
}

std::string TOVJsonParser::ruleNameWithSeparator() {
    const std::string name = getRuleName();
    return name + (!name.empty() && name.back() == ':' ? " " : ": ");
}

std::string TOVJsonParser::attributeValueBoolParsingError(const std::string& owner,
                                                          const std::string& attribute) {
    std::string message = getRuleName() + " value for " + attribute;
    if (!owner.empty()) {
        message += " of " + owner;
    }
    message += " should be a boolean.";
    return message;
}

std::string TOVJsonParser::attributeValueStringParsingError(const std::string& owner,
                                                            const std::string& attribute) {
    std::string message = getRuleName() + " value for " + attribute;
    if (!owner.empty()) {
        message += " of " + owner;
    }
    message += " should be a string.";
    return message;
}

std::string TOVJsonParser::attributeValuesStringListParsingError(const std::string& owner,
                                                                 const std::string& attribute) {
    // " of " stands even for an empty owner, so two blanks may meet.
    return getRuleName() + " value for " + attribute + " of " + owner +
           " should be a List of strings.";
}

std::string TOVJsonParser::errorParsingTheKeysValuesMapOfAttribute(const std::string& attribute) {
    std::string message = ruleNameWithSeparator() + "parsing error on keys - values";
    if (!attribute.empty()) {
        message += " of " + attribute;
    }
    message += ".";
    return message;
}

std::string TOVJsonParser::immediateContentsShouldBeMapParsingError() {
    return getRuleName() + " immediate contents should be a map of keys - values.";
}

std::string TOVJsonParser::jsonSectionNotAListError(const std::string& section) {
    return ruleNameWithSeparator() + section + " should be in a List.";
}

std::string TOVJsonParser::jsonSectionNotAMapError(const std::string& section) {
    return ruleNameWithSeparator() + section + " should be a map of keys-values.";
}

std::string TOVJsonParser::notAllNecessaryKeywordsFoundParsingError(const std::string& owner) {
    std::vector<std::string> keywords;
    getAllNecessaryKeywords(keywords);
    if (keywords.empty()) {
        return "";
    }
    std::string message = getRuleName();
    if (!owner.empty()) {
        message += " for " + owner;
    }
    message += " demands ALL keywords: " + createCommaSeparatedListOfStrings(keywords);
    return message;
}

std::string TOVJsonParser::objectListedRuleNotAMapError(const std::string& owner) {
    return getRuleName() + " in list for " + owner + " should be a map.";
}

std::string TOVJsonParser::objectRulesNotAListError(const std::string& owner) {
    std::string message = getRuleName() + "s";
    if (!owner.empty()) {
        message += " for " + owner;
    }
    message += " should be in a List.";
    return message;
}

bool TOVJsonParser::readNecessaryAttributesSection(tovjson::Value& root, const char* keyword,
                                                   AttributesMap& attributes) {
    tovjson::Value section;
    if (!getJsonSection(root, keyword, section)) {
        return failWith(notAllNecessaryKeywordsFoundParsingError(""));
    }
    if (!collectKeyValuesPairsFromSection(section, attributes)) {
        return failWith(errorParsingTheKeysValuesMapOfAttribute(keyword));
    }
    return true;
}

bool TOVJsonParser::readNecessaryStringSection(tovjson::Value& root, const char* keyword,
                                               std::string& text) {
    tovjson::Value section;
    // A member of another type is as good as missing.
    if (!getJsonStringSection(root, keyword, section)) {
        return failWith(notAllNecessaryKeywordsFoundParsingError(""));
    }
    return collectStringFromValue(section, text);
}

bool TOVJsonParser::collectRuleKeywordsFromMap(const tovjson::Value& ruleObject,
                                               const std::string& objectType,
                                               const std::vector<const char*>& keywords,
                                               std::vector<std::string>& values) {
    AttributesMap pairs;
    if (!collectKeyValuesPairsFromSection(ruleObject, pairs)) {
        return failWith(errorParsingTheKeysValuesMapOfAttribute(objectType));
    }
    for (const char* keyword : keywords) {
        std::string value;
        if (!getValueofKeywordFromStringStringMap(keyword, pairs, value)) {
            return failWith(notAllNecessaryKeywordsFoundParsingError(objectType));
        }
        values.push_back(value);
    }
    return true;
}
