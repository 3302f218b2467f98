#include "rules/TOVTransitionFreezeRulesJsonParser.h"

#include "tov/TOVLifecycleBusinessRules.h"

TOVTransitionFreezeRulesJsonParser::~TOVTransitionFreezeRulesJsonParser() = default;

// ---- To be written with the rule kind ----
std::string TOVTransitionFreezeRulesJsonParser::getRuleName() {
    return TOVJsonParser::getRuleName();
}

void TOVTransitionFreezeRulesJsonParser::getAllNecessaryKeywords(
    std::vector<std::string>& /*keywords*/) {}

bool TOVTransitionFreezeRulesJsonParser::parseSection(rapidjson::Value& /*root*/,
                                                      TOVLifecycleBusinessRules* /*store*/) {
    return true;
}
