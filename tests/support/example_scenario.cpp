#include "example_scenario.h"

#include <fstream>
#include <sstream>

#include "json/json_types.h"
#include "tov/entry_points.h"
#include "tov/request_kinds.h"

namespace tovtest {

namespace {

std::string examplePath(const std::string& name) {
    return std::string(TOV_EXAMPLES_DIR) + "/" + name;
}

// The whole file, or nothing when it cannot be read.
bool readFile(const std::string& path, std::string& text) {
    std::ifstream in(path, std::ios::binary);
    if (!in) {
        return false;
    }
    std::ostringstream content;
    content << in.rdbuf();
    text = content.str();
    return true;
}

const char* memberString(const tovjson::Value& object, const char* keyword) {
    const auto member = object.FindMember(keyword);
    return member != object.MemberEnd() && member->value.IsString() ? member->value.GetString()
                                                                    : nullptr;
}

}  // namespace

RequestFunction requestFunctionOfKind(const std::string& kind) {
    const TOVRequestKind* found = FindTOVRequestKind(kind);
    return found == nullptr ? nullptr : found->fromText;
}

std::string exampleText(const std::string& relativePath) {
    std::string text;
    return readFile(examplePath(relativePath), text) ? text : std::string();
}

bool loadExampleDocuments(TOVCoreDataControllers* coreData) {
    const bool rulesLoaded =
        InitializeTOVRulesFromFile(examplePath("rules.json"), coreData).getGeneralResult();
    const bool dmInfoLoaded =
        InitializeTOV_DMInfoFromFile(examplePath("datamodel.json"), coreData).getGeneralResult();
    return rulesLoaded && dmInfoLoaded;
}

std::vector<ExampleRequest> readExampleRequests() {
    std::string text;
    tovjson::Document scenario;
    if (!readFile(examplePath("scenario.json"), text) ||
        scenario.Parse<rapidjson::kParseIterativeFlag>(text.c_str()).HasParseError() ||
        !scenario.IsObject() || !scenario.HasMember("steps") || !scenario["steps"].IsArray()) {
        return {};
    }
    std::vector<ExampleRequest> requests;
    for (const tovjson::Value& step : scenario["steps"].GetArray()) {
        const char* name = step.IsObject() ? memberString(step, "name") : nullptr;
        const char* kind = step.IsObject() ? memberString(step, "kind") : nullptr;
        if (name == nullptr || kind == nullptr) {
            return {};
        }
        ExampleRequest request{name, kind, requestFunctionOfKind(kind), ""};
        if (request.evaluate == nullptr ||
            !readFile(examplePath("requests/" + request.name + ".json"), request.text)) {
            return {};
        }
        requests.push_back(std::move(request));
    }
    return requests;
}

}  // namespace tovtest
