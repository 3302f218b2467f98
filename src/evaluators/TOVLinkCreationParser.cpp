#include "evaluators/TOVLinkCreationParser.h"

#include <utility>

TOVLinkCreationParser::TOVLinkCreationParser() = default;

TOVLinkCreationParser::~TOVLinkCreationParser() = default;

bool TOVLinkCreationParser::load(const std::string& input, bool inputIsFilePath) {
    return fillJsonDocumentFromInput(input, inputIsFilePath, document);
}

bool TOVLinkCreationParser::parseAllSections() {
    return runSectionParsers<TOVAncestorJsonParser, TOVDescendantJsonParser>(document, request);
}

void TOVLinkedObjectJsonParser::getAllNecessaryKeywords(std::vector<std::string>& keywords) {
    keywords.emplace_back(TOVTransitionJson_ObjectType);
    keywords.emplace_back(TOVManualLinksJson_Attributes);
}

std::string TOVLinkedObjectJsonParser::attributesNotAMapError() {
    return getRuleName() + ":" + "Attributes should be a map.";
}

bool TOVLinkedObjectJsonParser::readLinkedObject(tovjson::Value& root, const char* sectionKeyword,
                                                 std::string& type, AttributesMap& attributes) {
    tovjson::Value section;
    // Neither object is necessary at this level: an absent one says nothing.
    if (!getJsonSection(root, sectionKeyword, section)) {
        return true;
    }
    for (const auto& member : section.GetObject()) {
        const std::string keyword = getMemberName(member.name);
        if (keyword == TOVTransitionJson_ObjectType) {
            if (!collectStringFromValue(member.value, type)) {
                return failWith(attributeValueStringParsingError("", keyword));
            }
        } else if (keyword == TOVManualLinksJson_Attributes) {
            if (!member.value.IsObject()) {
                return failWith(attributesNotAMapError());
            }
            if (!collectKeyValuesPairsFromSection(member.value, attributes)) {
                return failWith(errorParsingTheKeysValuesMapOfAttribute(keyword));
            }
        }
    }
    if (type.empty() || attributes.empty()) {
        return failWith(notAllNecessaryKeywordsFoundParsingError(""));
    }
    return true;
}

TOVAncestorJsonParser::~TOVAncestorJsonParser() = default;

std::string TOVAncestorJsonParser::getRuleName() {
    return "Manual Link Ancestor";
}

bool TOVAncestorJsonParser::parseSection(tovjson::Value& root, LinkCreationRequest& request) {
    std::string type;
    AttributesMap attributes;
    if (!readLinkedObject(root, TOVManualLinksJson_Ancestor, type, attributes)) {
        return false;
    }
    request.ancestorType = std::move(type);
    request.ancestorAttributes = std::move(attributes);
    return true;
}

TOVDescendantJsonParser::~TOVDescendantJsonParser() = default;

std::string TOVDescendantJsonParser::getRuleName() {
    // The small "d" is how hosts have always read this name.
    return "Manual Link descendant";
}

bool TOVDescendantJsonParser::parseSection(tovjson::Value& root, LinkCreationRequest& request) {
    std::string type;
    AttributesMap attributes;
    if (!readLinkedObject(root, TOVManualLinksJsonDescendant, type, attributes)) {
        return false;
    }
    request.descendantType = std::move(type);
    request.descendantAttributes = std::move(attributes);
    return true;
}
