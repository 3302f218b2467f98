#include "workload.h"

#include <algorithm>
#include <array>

#include "tov/TOVJsonComposer.h"
#include "tov/vocabulary.h"

namespace tovbench {

namespace {

std::string attributeName(int index) {
    return "attr" + std::to_string(index);
}

// One rule per line, rule i for attribute i % 20 of type i / 20, so that any
// count keeps the shape and Type0's rules come first.
template <typename RuleText>
std::string rulesDocument(const char* section, int ruleCount, RuleText ruleText) {
    std::array<std::string, kAttributesPerType> rules;
    std::size_t longest = 0;
    for (int attribute = 0; attribute < kAttributesPerType; ++attribute) {
        rules[attribute] = ruleText(attribute);
        longest = std::max(longest, rules[attribute].size());
    }
    std::string document;
    document.reserve(static_cast<std::size_t>(ruleCount) * (longest + 2) + 64);
    document += "{\"";
    document += section;
    document += "\":{";
    for (int rule = 0; rule < ruleCount; ++rule) {
        const int attribute = rule % kAttributesPerType;
        if (attribute == 0) {
            document += rule == 0 ? "\n\"Type" : "],\n\"Type";
            document += std::to_string(rule / kAttributesPerType);
            document += "\":[";
        } else {
            document += ',';
        }
        document += '\n';
        document += rules[attribute];
    }
    document += ruleCount > 0 ? "]}}\n" : "}}\n";
    return document;
}

AttributesMap allAttributesAt(const char* value) {
    AttributesMap attributes;
    for (int attribute = 0; attribute < kAttributesPerType; ++attribute) {
        attributes[attributeName(attribute)] = value;
    }
    return attributes;
}

const AttributesMap& attr3MovedToV1() {
    static const AttributesMap target = {{"attr3", "v1"}};
    return target;
}

}  // namespace

std::string transitionRulesDocument(int ruleCount) {
    return rulesDocument("transitions", ruleCount, [](int attribute) {
        return R"({"attribute":")" + attributeName(attribute) +
               R"(","fromValue":"v0","toValue":["v0","v1"]})";
    });
}

std::string conflictResolutionRulesDocument(int ruleCount) {
    return rulesDocument("conflictResolutions", ruleCount, [](int attribute) {
        const char* resolution = attribute % 2 == 1 ? "spinup" : "overwrite";
        return R"({"attribute":")" + attributeName(attribute) +
               R"(","fromValue":"v0","toValue":"v1","updatesFile":"N_A","conflictResolution":")" +
               resolution + R"(","hasDifferentPrimaries":false})";
    });
}

std::string dataModelDocument() {
    std::string attributes;
    for (int attribute = 0; attribute < kAttributesPerType; ++attribute) {
        const bool versioning = attribute == 1 || attribute == 2;
        const bool primary = attribute < 3;
        attributes += attribute == 0 ? "\n" : ",\n";
        attributes += R"(    {"name":")" + attributeName(attribute) + R"(","type":")" +
                      (versioning ? "VERSIONING" : "REGULAR") + R"(","primary":)" +
                      (primary ? "true" : "false") + "}";
    }
    return R"({"OverwriteLabel":"Overwrite","structureObjects":[
  {"name":"Type0","dmObjectType":"DMITEM","attributes":[)" +
           attributes + "]}\n]}\n";
}

std::string editRequest() {
    std::string request;
    composeSimpleTransitionJson("Type0", allAttributesAt("v0"), attr3MovedToV1(), request);
    return request;
}

std::string optionsQuery() {
    std::string query;
    composeConflictResolutionsOptionsJson("Type0", allAttributesAt("v0"), attr3MovedToV1(), false,
                                          query);
    return query;
}

}  // namespace tovbench
