// Which rules judged a request, in the order in which they judged it, and what
// each did: for authors who want to know why an answer came, and for tools
// that show it. A caller hands an observer to one call (through its core
// data, or to TOVEngine); without one the judging does no work for it.
//
//   TOVDecisionTrace trace;
//   TOVResponse answer = engine.evaluate("edit", request, &trace);
//   for (const TOVRuleConsultation& step : trace.steps()) { ... }
//   std::string json = ComposeTOVDecisionTraceJson(trace.steps());
//
// Observing changes no answer, comment or log line.
#ifndef TOV_TOVDECISIONTRACE_H_
#define TOV_TOVDECISIONTRACE_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "tov/export.h"
#include "tov/rule_kinds.h"

// What one rule did for the request.
enum TOVRuleOutcome : std::int32_t {
    TOVRuleOutcome_Approved = 0,             // it applied, and the request passed it
    TOVRuleOutcome_Objected = 1,             // it applied, and refused the request
    TOVRuleOutcome_AskedForMissingData = 2,  // it needs linked objects the request left out
    TOVRuleOutcome_NotApplicable = 3,        // it was looked at, and does not bind this request
};

// "approved", "objected", "asked for missing data", "not applicable".
TOV_API const char* GetTOVRuleOutcomeWords(TOVRuleOutcome outcome);

// One rule consulted.
struct TOVRuleConsultation {
    TOVRuleKind kind;
    // The rule's place in its section of the rules document, from 0, counted
    // across the section's object types in document order (as
    // TOVLifecycleBusinessRules::documentPositionOfRule tells it).
    std::size_t documentPosition;
    std::string words;  // the rule as a sentence, as `tov explain` tells it
    TOVRuleOutcome outcome;
    bool decisive;  // the rule's words stand in the answer's comment
};

class TOV_API TOVDecisionObserver {
public:
    virtual ~TOVDecisionObserver();
    // Told of each rule in judging order, on the thread of the call.
    virtual void ruleConsulted(const TOVRuleConsultation& step) = 0;
};

// An observer that keeps every step, for a caller that reads them afterwards.
class TOV_API TOVDecisionTrace : public TOVDecisionObserver {
public:
    void ruleConsulted(const TOVRuleConsultation& step) override;
    const std::vector<TOVRuleConsultation>& steps() const { return consulted; }

private:
    std::vector<TOVRuleConsultation> consulted;
};

// The steps as one line of JSON, an array of objects in judging order:
//   [{"section":"transitions","number":2,"rule":"For Part: ...","outcome":"objected",
//     "decisive":true}]
// where "number" is the rule's place in its section counted from 1.
TOV_API std::string ComposeTOVDecisionTraceJson(const std::vector<TOVRuleConsultation>& steps);

#endif  // TOV_TOVDECISIONTRACE_H_
