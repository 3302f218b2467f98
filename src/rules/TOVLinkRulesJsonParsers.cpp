#include "rules/TOVLinkRulesJsonParsers.h"

#include "tov/TOVLifecycleBusinessRules.h"

TOVHistoryLinkRulesJsonParser::~TOVHistoryLinkRulesJsonParser() = default;

// ---- To be written with the rule kind ----
std::string TOVHistoryLinkRulesJsonParser::getRuleName() {
    return TOVJsonParser::getRuleName();
}

void TOVHistoryLinkRulesJsonParser::getAllNecessaryKeywords(
    std::vector<std::string>& /*keywords*/) {}

bool TOVHistoryLinkRulesJsonParser::parseSection(rapidjson::Value& /*root*/,
                                                 TOVLifecycleBusinessRules* /*store*/) {
    return true;
}

TOVManualLinkRulesJsonParser::~TOVManualLinkRulesJsonParser() = default;

// ---- To be written with the rule kind ----
std::string TOVManualLinkRulesJsonParser::getRuleName() {
    return TOVJsonParser::getRuleName();
}

void TOVManualLinkRulesJsonParser::getAllNecessaryKeywords(std::vector<std::string>& /*keywords*/) {
}

bool TOVManualLinkRulesJsonParser::parseSection(rapidjson::Value& /*root*/,
                                                TOVLifecycleBusinessRules* /*store*/) {
    return true;
}
