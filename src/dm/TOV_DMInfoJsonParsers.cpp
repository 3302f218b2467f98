#include "dm/TOV_DMInfoJsonParsers.h"

#include "tov/TOV_DMStructure.h"

// ---- To be written with the data-model document ----
TOV_DMInfoJsonParser::TOV_DMInfoJsonParser(TOV_DMStructure* structure) : structure(structure) {}
TOV_DMInfoJsonParser::~TOV_DMInfoJsonParser() = default;
bool TOV_DMInfoJsonParser::fillFromFile(const std::string& path) {
    return fillJsonDocumentFromJsonFile(path, document);
}
bool TOV_DMInfoJsonParser::fillFromText(const std::string& text) {
    return fillJsonDocumentFromJsonString(text, document);
}
bool TOV_DMInfoJsonParser::parseStructureObjects() {
    return structure != nullptr;
}
bool TOV_DMInfoJsonParser::parseOverwriteLabel() {
    return structure != nullptr;
}
std::string TOV_DMInfoJsonParser::getRuleName() {
    return "DM Structure Information";
}
void TOV_DMInfoJsonParser::getAllNecessaryKeywords(std::vector<std::string>& /*keywords*/) {}

TOV_DMStructureObjectJsonParser::TOV_DMStructureObjectJsonParser() = default;
TOV_DMStructureObjectJsonParser::~TOV_DMStructureObjectJsonParser() = default;
bool TOV_DMStructureObjectJsonParser::parseStructureObject(const rapidjson::Value& /*element*/,
                                                           int /*index*/,
                                                           TOV_DMStructure* /*structure*/) {
    return true;
}
bool TOV_DMStructureObjectJsonParser::parseAttributes(
    const rapidjson::Value& /*value*/, const std::string& /*objectName*/,
    std::vector<TOV_DMAttribute>& /*attributes*/) {
    return true;
}
std::string TOV_DMStructureObjectJsonParser::getRuleName() {
    return objectName;
}
void TOV_DMStructureObjectJsonParser::getAllNecessaryKeywords(
    std::vector<std::string>& /*keywords*/) {}

TOV_DMAttributeJsonParser::~TOV_DMAttributeJsonParser() = default;
bool TOV_DMAttributeJsonParser::parseAttribute(const rapidjson::Value& /*element*/,
                                               const std::string& /*objectName*/,
                                               std::vector<TOV_DMAttribute>& /*attributes*/) {
    return true;
}
std::string TOV_DMAttributeJsonParser::getRuleName() {
    return "DM Attribute";
}
void TOV_DMAttributeJsonParser::getAllNecessaryKeywords(std::vector<std::string>& /*keywords*/) {}
