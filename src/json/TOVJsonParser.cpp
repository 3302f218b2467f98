#include "json/TOVJsonParser.h"

#include <fstream>

#include <rapidjson/istreamwrapper.h>

#include "tov/string_helpers.h"

namespace {
const char* const kFundamentalParsingError = "Json has fundamental parsing error";
}  // namespace

TOVJsonParser::TOVJsonParser() : parsingResult(true) {}

TOVJsonParser::~TOVJsonParser() = default;

std::string TOVJsonParser::getParsingErrorComment() const {
    return parsingErrorComment;
}

bool TOVJsonParser::getParsingResult() const {
    return parsingResult;
}

std::string TOVJsonParser::getRuleName() {
    return "Lifecycle Business";
}

void TOVJsonParser::getAllNecessaryKeywords(std::vector<std::string>& /*keywords*/) {}

bool TOVJsonParser::acceptParsedDocument(const rapidjson::Document& document) {
    if (!document.HasParseError() && document.IsObject()) {
        return true;
    }
    setParsingResult(false);
    setParsingErrorComment(kFundamentalParsingError);
    return false;
}

bool TOVJsonParser::fillJsonDocumentFromJsonFile(const std::string& path,
                                                 rapidjson::Document& document) {
    std::ifstream stream(path, std::ios::in | std::ios::binary);
    if (!stream.is_open()) {
        setParsingResult(false);
        setParsingErrorComment(kFundamentalParsingError);
        return false;
    }
    rapidjson::IStreamWrapper wrapper(stream);
    document.ParseStream<kTOVParseFlags>(wrapper);
    return acceptParsedDocument(document);
}

bool TOVJsonParser::fillJsonDocumentFromJsonString(const std::string& text,
                                                   rapidjson::Document& document) {
    document.Parse<kTOVParseFlags>(text.c_str());
    return acceptParsedDocument(document);
}

bool TOVJsonParser::fillJsonDocumentFromInput(const std::string& input, bool inputIsFilePath,
                                              rapidjson::Document& document) {
    return inputIsFilePath ? fillJsonDocumentFromJsonFile(input, document)
                           : fillJsonDocumentFromJsonString(input, document);
}

namespace {

bool moveMemberOut(rapidjson::Value& parent, const char* keyword, rapidjson::Value& out) {
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

bool TOVJsonParser::getJsonSection(rapidjson::Value& parent, const char* keyword,
                                   rapidjson::Value& out) {
    return moveMemberOut(parent, keyword, out) && out.IsObject();
}

bool TOVJsonParser::getJsonArraySection(rapidjson::Value& parent, const char* keyword,
                                        rapidjson::Value& out) {
    return moveMemberOut(parent, keyword, out) && out.IsArray();
}

bool TOVJsonParser::getJsonBoolSection(rapidjson::Value& parent, const char* keyword,
                                       rapidjson::Value& out) {
    return moveMemberOut(parent, keyword, out) && out.IsBool();
}

bool TOVJsonParser::getJsonStringSection(rapidjson::Value& parent, const char* keyword,
                                         rapidjson::Value& out) {
    return moveMemberOut(parent, keyword, out) && out.IsString();
}

bool TOVJsonParser::collectBoolFromValue(const rapidjson::Value& value, bool& out) {
    if (!value.IsBool()) {
        return false;
    }
    out = value.GetBool();
    return true;
}

bool TOVJsonParser::collectStringFromValue(const rapidjson::Value& value, std::string& out) {
    if (!value.IsString()) {
        return false;
    }
    out = value.GetString();  // up to the first zero byte, on purpose
    return true;
}

bool TOVJsonParser::getStringNamesValuesPair(rapidjson::Value::ConstMemberIterator member,
                                             std::string& name, std::string& value) {
    if (!member->name.IsString()) {
        return false;
    }
    name = member->name.GetString();
    return collectStringFromValue(member->value, value);
}

std::string TOVJsonParser::getMemberName(const rapidjson::Value& name) {
    return std::string(name.GetString(), name.GetStringLength());
}

bool TOVJsonParser::collectStringsFromArray(const rapidjson::Value& value,
                                            std::vector<std::string>& out) {
    if (!value.IsArray()) {
        return false;
    }
    for (const auto& element : value.GetArray()) {
        std::string text;
        if (!collectStringFromValue(element, text)) {
            return false;
        }
        out.push_back(text);
    }
    return true;
}

bool TOVJsonParser::collectKeyValuesPairsFromSection(const rapidjson::Value& section,
                                                     AttributesMap& map) {
    if (!section.IsObject()) {
        return false;
    }
    for (auto member = section.MemberBegin(); member != section.MemberEnd(); ++member) {
        std::string name;
        std::string value;
        if (!getStringNamesValuesPair(member, name, value)) {
            return false;
        }
        map[name] = value;
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

void TOVJsonParser::setParsingResult(bool result) {
    parsingResult = result;
}

void TOVJsonParser::updateParsingResult(bool result) {
    parsingResult = parsingResult && result;
}

std::string TOVJsonParser::ruleNameWithSeparator() {
    const std::string name = getRuleName();
    return name + (!name.empty() && name.back() == ':' ? " " : ": ");
}

void TOVJsonParser::setAttributeValueBoolParsingError(const std::string& owner,
                                                      const std::string& attribute) {
    std::string message = getRuleName() + " value for " + attribute;
    if (!owner.empty()) {
        message += " of " + owner;
    }
    message += " should be a boolean.";
    appendToParsingErrorComment(message.c_str());
}

void TOVJsonParser::setAttributeValueStringParsingError(const std::string& owner,
                                                        const std::string& attribute) {
    std::string message = getRuleName() + " value for " + attribute;
    if (!owner.empty()) {
        message += " of " + owner;
    }
    message += " should be a string.";
    appendToParsingErrorComment(message.c_str());
}

void TOVJsonParser::setAttributeValuesStringListParsingError(const std::string& owner,
                                                             const std::string& attribute) {
    // " of " stands even for an empty owner, so two blanks may meet.
    const std::string message = getRuleName() + " value for " + attribute + " of " + owner +
                                " should be a List of strings.";
    appendToParsingErrorComment(message.c_str());
}

void TOVJsonParser::setErrorParsingTheKeysValuesMapOfAttribute(const std::string& attribute) {
    std::string message = ruleNameWithSeparator() + "parsing error on keys - values";
    if (!attribute.empty()) {
        message += " of " + attribute;
    }
    message += ".";
    appendToParsingErrorComment(message.c_str());
}

void TOVJsonParser::setImmediateContentsShouldBeMapParsingError() {
    const std::string message =
        getRuleName() + " immediate contents should be a map of keys - values.";
    appendToParsingErrorComment(message.c_str());
}

void TOVJsonParser::setJsonSectionNotAListError(const std::string& section) {
    const std::string message = ruleNameWithSeparator() + section + " should be in a List.";
    appendToParsingErrorComment(message.c_str());
}

void TOVJsonParser::setJsonSectionNotAMapError(const std::string& section) {
    const std::string message =
        ruleNameWithSeparator() + section + " should be a map of keys-values.";
    appendToParsingErrorComment(message.c_str());
}

void TOVJsonParser::setNotAllNecessaryKeywordsFoundParsingError(const std::string& owner) {
    std::vector<std::string> keywords;
    getAllNecessaryKeywords(keywords);
    if (keywords.empty()) {
        return;
    }
    std::string message = getRuleName();
    if (!owner.empty()) {
        message += " for " + owner;
    }
    message += " demands ALL keywords: " + createCommaSeparatedListOfStrings(keywords);
    appendToParsingErrorComment(message.c_str());
}

void TOVJsonParser::setObjectListedRuleNotAMapError(const std::string& owner) {
    const std::string message = getRuleName() + " in list for " + owner + " should be a map.";
    appendToParsingErrorComment(message.c_str());
}

void TOVJsonParser::setObjectRulesNotAListError(const std::string& owner) {
    std::string message = getRuleName() + "s";
    if (!owner.empty()) {
        message += " for " + owner;
    }
    message += " should be in a List.";
    appendToParsingErrorComment(message.c_str());
}

bool TOVJsonParser::readNecessaryAttributesSection(rapidjson::Value& root, const char* keyword,
                                                   AttributesMap& attributes) {
    rapidjson::Value section;
    if (!getJsonSection(root, keyword, section)) {
        setNotAllNecessaryKeywordsFoundParsingError("");
        setParsingResult(false);
        return false;
    }
    if (!collectKeyValuesPairsFromSection(section, attributes)) {
        setErrorParsingTheKeysValuesMapOfAttribute(keyword);
        setParsingResult(false);
        return false;
    }
    return true;
}

bool TOVJsonParser::readNecessaryStringSection(rapidjson::Value& root, const char* keyword,
                                               std::string& text) {
    rapidjson::Value section;
    // A member of another type is as good as missing.
    if (!getJsonStringSection(root, keyword, section)) {
        setNotAllNecessaryKeywordsFoundParsingError("");
        setParsingResult(false);
        return false;
    }
    return collectStringFromValue(section, text);
}

bool TOVJsonParser::collectRuleKeywordsFromMap(const rapidjson::Value& ruleObject,
                                               const std::string& objectType,
                                               const std::vector<const char*>& keywords,
                                               std::vector<std::string>& values) {
    AttributesMap pairs;
    if (!collectKeyValuesPairsFromSection(ruleObject, pairs)) {
        setErrorParsingTheKeysValuesMapOfAttribute(objectType);
        setParsingResult(false);
        return false;
    }
    for (const char* keyword : keywords) {
        std::string value;
        if (!getValueofKeywordFromStringStringMap(keyword, pairs, value)) {
            setNotAllNecessaryKeywordsFoundParsingError(objectType);
            setParsingResult(false);
            return false;
        }
        values.push_back(value);
    }
    return true;
}
