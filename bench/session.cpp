#include "session.h"

#include "tov/TOVLifecycleBusinessRules.h"
#include "tov/entry_points.h"
#include "workload.h"

namespace tovbench {

Session::Session() {
    data.initializeByMalloc();
    setTOVLoggingFolder("", &data);
}

bool Session::loadRules(const std::string& document, int ruleCount, std::string& error) {
    error = unexpectedAnswer(InitializeTOVRules(document, &data), kLoadedRules);
    if (error.empty()) {
        error = unexpectedRules(ruleCount);
    }
    return error.empty();
}

bool Session::loadDataModel(const std::string& document, std::string& error) {
    error = unexpectedAnswer(InitializeTOV_DMInfo(document, &data), kLoadedDataModel);
    return error.empty();
}

std::string Session::unexpectedRules(int ruleCount) {
    const TOVLifecycleBusinessRules* store = data.getRules();
    const std::size_t rules = store->expressRulesInWords().size();
    const std::size_t objectTypes = store->collectObjectTypesOfRules().size();
    const auto typesExpected =
        static_cast<std::size_t>((ruleCount + kAttributesPerType - 1) / kAttributesPerType);
    if (rules == static_cast<std::size_t>(ruleCount) && objectTypes == typesExpected) {
        return {};
    }
    return "the store holds " + std::to_string(rules) + " rules over " +
           std::to_string(objectTypes) + " object types instead of " + std::to_string(ruleCount) +
           " over " + std::to_string(typesExpected);
}

std::string unexpectedAnswer(const TOVResponse& response, const char* expected) {
    const std::string answer = response.turnResponseIntoASingleString();
    if (answer == expected) {
        return {};
    }
    return "expected " + std::string(expected) + " but got " + answer;
}

}  // namespace tovbench
