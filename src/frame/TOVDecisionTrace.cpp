#include "tov/TOVDecisionTrace.h"

#include "json/json_types.h"

TOVDecisionObserver::~TOVDecisionObserver() = default;

const char* GetTOVRuleOutcomeWords(TOVRuleOutcome outcome) {
    switch (outcome) {
        case TOVRuleOutcome_Approved:
            return "approved";
        case TOVRuleOutcome_Objected:
            return "objected";
        case TOVRuleOutcome_AskedForMissingData:
            return "asked for missing data";
        case TOVRuleOutcome_NotApplicable:
            return "not applicable";
    }
    return "";
}

void TOVDecisionTrace::ruleConsulted(const TOVRuleConsultation& step) {
    consulted.push_back(step);
}

std::string ComposeTOVDecisionTraceJson(const std::vector<TOVRuleConsultation>& steps) {
    tovjson::StringBuffer buffer;
    tovjson::Writer writer(buffer);
    writer.StartArray();
    for (const TOVRuleConsultation& step : steps) {
        writer.StartObject();
        writer.Key("section");
        writer.String(GetTOVRuleKinds()[step.kind].section);
        writer.Key("number");
        // A rule the store does not hold has no place: 0.
        writer.Uint64(step.documentPosition == static_cast<std::size_t>(-1)
                          ? 0
                          : step.documentPosition + 1);
        writer.Key("rule");
        writer.String(step.words.c_str(), static_cast<rapidjson::SizeType>(step.words.size()));
        writer.Key("outcome");
        writer.String(GetTOVRuleOutcomeWords(step.outcome));
        writer.Key("decisive");
        writer.Bool(step.decisive);
        writer.EndObject();
    }
    writer.EndArray();
    return {buffer.GetString(), buffer.GetSize()};
}
