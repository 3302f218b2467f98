#include "rules/TOVConflictResolutionRulesJsonParser.h"

#include "tov/TOVLifecycleBusinessRules.h"

TOVConflictResolutionRulesJsonParser::~TOVConflictResolutionRulesJsonParser() = default;

// ---- To be written with the rule kind ----
std::string TOVConflictResolutionRulesJsonParser::getRuleName() {
    return TOVJsonParser::getRuleName();
}

void TOVConflictResolutionRulesJsonParser::getAllNecessaryKeywords(
    std::vector<std::string>& /*keywords*/) {}

bool TOVConflictResolutionRulesJsonParser::parseSection(rapidjson::Value& /*root*/,
                                                        TOVLifecycleBusinessRules* /*store*/) {
    return true;
}
