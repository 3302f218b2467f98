#include "rules/TOVTriggersRulesJsonParser.h"

#include "tov/TOVLifecycleBusinessRules.h"

TOVTriggersRulesJsonParser::~TOVTriggersRulesJsonParser() = default;

// ---- To be written with the rule kind ----
std::string TOVTriggersRulesJsonParser::getRuleName() {
    return TOVJsonParser::getRuleName();
}

void TOVTriggersRulesJsonParser::getAllNecessaryKeywords(std::vector<std::string>& /*keywords*/) {}

bool TOVTriggersRulesJsonParser::parseSection(rapidjson::Value& /*root*/,
                                              TOVLifecycleBusinessRules* /*store*/) {
    return true;
}
