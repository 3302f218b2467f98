#include "evaluators/TOVLinkCreationParser.h"

#include "tov/TOVLinkController.h"

TOVLinkCreationParser::TOVLinkCreationParser(TOVLinkController* controller)
    : controller(controller) {}

TOVLinkCreationParser::~TOVLinkCreationParser() = default;

bool TOVLinkCreationParser::load(const std::string& input, bool inputIsFilePath) {
    return fillJsonDocumentFromInput(input, inputIsFilePath, document);
}

bool TOVLinkCreationParser::parseAllSections() {
    return runSectionParsers<TOVAncestorJsonParser, TOVDescendantJsonParser>(document, controller);
}

void TOVLinkedObjectJsonParser::getAllNecessaryKeywords(std::vector<std::string>& keywords) {
    keywords.push_back(TOVTransitionJson_ObjectType);
    keywords.push_back(TOVManualLinksJson_Attributes);
}

void TOVLinkedObjectJsonParser::setAttributesNotAMapError() {
    const std::string message = getRuleName() + ":" + "Attributes should be a map.";
    appendToParsingErrorComment(message.c_str());
}

bool TOVLinkedObjectJsonParser::readLinkedObject(rapidjson::Value& root, const char* sectionKeyword,
                                                 std::string& type, AttributesMap& attributes) {
    rapidjson::Value section;
    // Neither object is necessary at this level: an absent one says nothing.
    if (!getJsonSection(root, sectionKeyword, section)) {
        return true;
    }
    for (const auto& member : section.GetObject()) {
        const std::string keyword = getMemberName(member.name);
        if (keyword == TOVTransitionJson_ObjectType) {
            if (!collectStringFromValue(member.value, type)) {
                setAttributeValueStringParsingError("", keyword);
                setParsingResult(false);
                return false;
            }
        } else if (keyword == TOVManualLinksJson_Attributes) {
            if (!member.value.IsObject()) {
                setAttributesNotAMapError();
                setParsingResult(false);
                return false;
            }
            if (!collectKeyValuesPairsFromSection(member.value, attributes)) {
                setErrorParsingTheKeysValuesMapOfAttribute(keyword);
                setParsingResult(false);
                return false;
            }
        }
    }
    if (type.empty() || attributes.empty()) {
        setNotAllNecessaryKeywordsFoundParsingError("");
        setParsingResult(false);
        return false;
    }
    return true;
}

TOVAncestorJsonParser::~TOVAncestorJsonParser() = default;

std::string TOVAncestorJsonParser::getRuleName() {
    return "Manual Link Ancestor";
}

bool TOVAncestorJsonParser::parseSection(rapidjson::Value& root, TOVLinkController* controller) {
    std::string type;
    AttributesMap attributes;
    if (!readLinkedObject(root, TOVManualLinksJson_Ancestor, type, attributes)) {
        return false;
    }
    controller->setTypeOfAncestor(type);
    controller->setAttributesOfAncestor(attributes);
    return true;
}

TOVDescendantJsonParser::~TOVDescendantJsonParser() = default;

std::string TOVDescendantJsonParser::getRuleName() {
    // The small "d" is how hosts have always read this name.
    return "Manual Link descendant";
}

bool TOVDescendantJsonParser::parseSection(rapidjson::Value& root, TOVLinkController* controller) {
    std::string type;
    AttributesMap attributes;
    if (!readLinkedObject(root, TOVManualLinksJsonDescendant, type, attributes)) {
        return false;
    }
    controller->setTypeOfDescendant(type);
    controller->setAttributesOfDescendant(attributes);
    return true;
}
