#include "rules/TOVTransitionRulesJsonParser.h"

#include "tov/TOVLifecycleBusinessRules.h"

TOVTransitionRulesJsonParser::~TOVTransitionRulesJsonParser() = default;

// ---- To be written with the rule kind ----
std::string TOVTransitionRulesJsonParser::getRuleName() {
    return TOVJsonParser::getRuleName();
}

void TOVTransitionRulesJsonParser::getAllNecessaryKeywords(std::vector<std::string>& /*keywords*/) {
}

bool TOVTransitionRulesJsonParser::parseSection(rapidjson::Value& /*root*/,
                                                TOVLifecycleBusinessRules* /*store*/) {
    return true;
}
