// The benchmark's workload, generated rather than read from files so that
// every size is the same shape: object types Type0, Type1, ... of twenty
// attributes attr0..attr19 each, and per type one rule for every attribute.
// The request and the query are about Type0, whose rules are the first twenty.
#ifndef TOV_BENCH_WORKLOAD_H_
#define TOV_BENCH_WORKLOAD_H_

#include <string>

namespace tovbench {

inline constexpr int kAttributesPerType = 20;

// A rules document of `ruleCount` transition rules, ruleCount / 20 types,
// each rule {"attribute": "attrK", "fromValue": "v0", "toValue": ["v0", "v1"]}.
std::string transitionRulesDocument(int ruleCount);

// A rules document of `ruleCount` conflict resolution rules over the same
// types, each for the move of attrK from "v0" to "v1": odd attributes are
// forced to spin up, even ones to overwrite, whether or not the file changes.
std::string conflictResolutionRulesDocument(int ruleCount);

// Type0 alone: attr0 a regular primary, attr1 and attr2 versioning
// primaries, the other seventeen regular secondaries; the overwrite label is
// "Overwrite".
std::string dataModelDocument();

// An edit of Type0 with every attribute at "v0" that moves attr3 to "v1".
std::string editRequest();

// The options query for the same move, which uploads no file.
std::string optionsQuery();

// What the library answers to each, as single strings.
inline constexpr const char* kApprovedEdit =
    R"({"Result":"Success","ResultComment":"Edit attempt approved"})";
inline constexpr const char* kSpinupOptions =
    R"({"Result":"Success","ResultComment":"Found TOV rule for specific versioning attribute selection","SelectedVersioningAttribute":"[attr1,attr2]"})";
inline constexpr const char* kLoadedRules =
    R"({"Result":"Success","ResultComment":"Successfully initialized TOV rules"})";
inline constexpr const char* kLoadedDataModel =
    R"({"Result":"Success","ResultComment":"Succesfully initialized DM info"})";

}  // namespace tovbench

#endif  // TOV_BENCH_WORKLOAD_H_
