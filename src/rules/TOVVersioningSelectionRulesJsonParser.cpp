#include "rules/TOVVersioningSelectionRulesJsonParser.h"

#include "tov/TOVLifecycleBusinessRules.h"

TOVVersioningSelectionRulesJsonParser::~TOVVersioningSelectionRulesJsonParser() = default;

// ---- To be written with the rule kind ----
std::string TOVVersioningSelectionRulesJsonParser::getRuleName() {
    return TOVJsonParser::getRuleName();
}

void TOVVersioningSelectionRulesJsonParser::getAllNecessaryKeywords(
    std::vector<std::string>& /*keywords*/) {}

bool TOVVersioningSelectionRulesJsonParser::parseSection(rapidjson::Value& /*root*/,
                                                         TOVLifecycleBusinessRules* /*store*/) {
    return true;
}
