#include "rules/TOVFileConstraintsRulesJsonParser.h"

#include "tov/TOVLifecycleBusinessRules.h"

TOVFileConstraintsRulesJsonParser::~TOVFileConstraintsRulesJsonParser() = default;

// ---- To be written with the rule kind ----
std::string TOVFileConstraintsRulesJsonParser::getRuleName() {
    return TOVJsonParser::getRuleName();
}

void TOVFileConstraintsRulesJsonParser::getAllNecessaryKeywords(
    std::vector<std::string>& /*keywords*/) {}

bool TOVFileConstraintsRulesJsonParser::parseSection(rapidjson::Value& /*root*/,
                                                     TOVLifecycleBusinessRules* /*store*/) {
    return true;
}
