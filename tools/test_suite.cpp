#include "test_suite.h"

#include <rapidjson/error/en.h>

#include <algorithm>
#include <cctype>
#include <filesystem>

#include "input_files.h"
#include "json_files.h"
#include "json_output.h"
#include "request_names.h"
#include "tov/vocabulary.h"

namespace tovcli {

namespace {

std::string relativeTo(const std::string& folder, const std::string& path) {
    const std::filesystem::path given(path);
    return given.is_absolute() ? path : (std::filesystem::path(folder) / given).string();
}

std::string keywordsInWords() {
    std::string words;
    const std::vector<std::string>& known = answerKeywords();
    for (std::size_t i = 0; i < known.size(); ++i) {
        words += (i == 0 ? "" : i + 1 == known.size() ? " or " : ", ") + ("\"" + known[i] + "\"");
    }
    return words;
}

// Reads case `number` (from 1) into `testCase`; false with the reason in `error`.
// A "requestFile" is read relative to `folder`, and refused when there is
// none: a suite that came as text names no file to read.
bool readCase(const tovjson::Value& value, std::size_t number, const std::string* folder,
              std::uint64_t maxInputSize, TestCase& testCase, std::string& error) {
    const std::string label = "case " + std::to_string(number);
    if (!value.IsObject()) {
        error = label + " is not a JSON object";
        return false;
    }
    testCase.name = stringOf(value, "name");
    if (testCase.name.empty()) {
        error = label + " has no \"name\" (a string that is not empty)";
        return false;
    }
    const std::string named = label + " (" + testCase.name + ")";
    const std::string kind = stringOf(value, "kind");
    testCase.kind = findRequestKind(kind);
    if (testCase.kind == nullptr) {
        error = named + ": \"kind\" is " + (kind.empty() ? "missing" : "\"" + kind + "\"") +
                "; expected " + requestKindNamesInWords();
        return false;
    }
    const auto request = value.FindMember("request");
    const std::string requestFile = stringOf(value, "requestFile");
    if (request != value.MemberEnd() && request->value.IsObject() && requestFile.empty()) {
        tovjson::StringBuffer text;
        JsonWriter writer(text);
        writeValue(writer, request->value);
        testCase.request.assign(text.GetString(), text.GetSize());
    } else if (request == value.MemberEnd() && !requestFile.empty() && folder == nullptr) {
        error = named + R"(: "requestFile" names a file, which is not read here; give the )"
                        R"(request itself under "request")";
        return false;
    } else if (request == value.MemberEnd() && !requestFile.empty()) {
        if (!readInput(relativeTo(*folder, requestFile), "request", maxInputSize, testCase.request,
                       error)) {
            error = named + ": " + error;
            return false;
        }
    } else {
        error = named + R"(: needs either "request" (an object) or "requestFile" (a path))";
        return false;
    }
    const auto expect = value.FindMember("expect");
    if (expect == value.MemberEnd() || !expect->value.IsObject()) {
        error = named + ": \"expect\" must be an object of keywords and their texts";
        return false;
    }
    for (const auto& keyword : expect->value.GetObject()) {
        const std::string name(keyword.name.GetString(), keyword.name.GetStringLength());
        const std::vector<std::string>& known = answerKeywords();
        if (std::find(known.begin(), known.end(), name) == known.end()) {
            // A misspelt keyword would only ever read "got nothing".
            const std::string nearest =
                nearestWord(name, known, std::max<std::size_t>(2, name.size() / 3));
            error = named;
            error.append(R"(: "expect" names ")")
                .append(name)
                .append(R"(", which no answer holds; )");
            if (nearest.empty()) {
                error.append("an answer holds ").append(keywordsInWords());
            } else {
                error.append(R"(did you mean ")").append(nearest).append("\"?");
            }
            return false;
        }
        if (!keyword.value.IsString()) {
            error =
                named + ": the expected text of \"" + keyword.name.GetString() + "\" is no string";
            return false;
        }
        testCase.expect[std::string(keyword.name.GetString(), keyword.name.GetStringLength())] =
            std::string(keyword.value.GetString(), keyword.value.GetStringLength());
    }
    const auto exact = value.FindMember("exact");
    if (exact != value.MemberEnd() && !exact->value.IsBool()) {
        error = named + ": \"exact\" must be true or false";
        return false;
    }
    testCase.exact = exact != value.MemberEnd() && exact->value.GetBool();
    return true;
}

// Reads every case of `cases` into `suite`, in order.
bool readCases(const tovjson::Value& cases, const std::string* folder, std::uint64_t maxInputSize,
               TestSuite& suite, std::string& error) {
    suite.cases.clear();
    for (const auto& value : cases.GetArray()) {
        TestCase testCase;
        if (!readCase(value, suite.cases.size() + 1, folder, maxInputSize, testCase, error)) {
            error = std::string("suite ").append(suite.path).append(": ").append(error);
            return false;
        }
        suite.cases.push_back(std::move(testCase));
    }
    return true;
}

}  // namespace

bool readTestSuite(const std::string& path, std::uint64_t maxInputSize, TestSuite& suite,
                   std::string& error) {
    tovjson::Document json;
    if (!parseJsonFile(path, "suite", maxInputSize, json, error)) {
        return false;
    }
    suite.path = path;
    if (!json.IsObject()) {
        error = "suite " + path + " is a JSON " + jsonTypeName(json) + ", not an object";
        return false;
    }
    const std::string folder = std::filesystem::path(path).parent_path().string();
    const std::string rules = stringOf(json, "rules");
    const std::string dataModel = stringOf(json, "datamodel");
    const auto cases = json.FindMember("cases");
    if (rules.empty() || dataModel.empty() || cases == json.MemberEnd() ||
        !cases->value.IsArray()) {
        error = "suite " + path + R"( needs "rules" and "datamodel" (paths) and "cases" (a list))";
        return false;
    }
    suite.rulesPath = relativeTo(folder, rules);
    suite.dataModelPath = relativeTo(folder, dataModel);
    return readCases(cases->value, &folder, maxInputSize, suite, error);
}

bool readTestSuiteText(const std::string& text, const std::string& name, TestSuite& suite,
                       std::string& error) {
    tovjson::Document json;
    json.Parse<rapidjson::kParseIterativeFlag>(text.c_str(), text.size());
    suite.path = name;
    if (json.HasParseError()) {
        error = name + ":" + textLocation(text, json.GetErrorOffset()) + ": " +
                rapidjson::GetParseError_En(json.GetParseError());
        return false;
    }
    const tovjson::Value* cases = findArray(json, "cases");
    if (cases == nullptr) {
        error = "suite " + name + R"( needs "cases" (a list))";
        return false;
    }
    return readCases(*cases, nullptr, text.size(), suite, error);
}

const std::vector<std::string>& answerKeywords() {
    static const std::vector<std::string> keywords = [] {
        // A new answer holds the result and the comment, under the library's own keywords.
        std::vector<std::string> known;
        for (const auto& entry : TOVResponse().getStringStringMapResponseWithGeneralResult()) {
            known.push_back(entry.first);
        }
        known.insert(
            known.end(),
            {TOVResponseKeyword_ObjectFamilyMembers, TOVResponseKeyword_ManualAncestors,
             TOVResponseKeyword_SelectedVersioningAttribute, TOVResponseKeyword_ForcedOverwrite,
             TOVResponseKeyword_ForcedSpinup, TOVResponseKeyword_TriggerInitialization});
        return known;
    }();
    return keywords;
}

std::map<std::string, std::string> answerAsPrinted(const TOVResponse& response) {
    const auto collapsed = [](const std::string& text) {
        std::string result;
        bool blank = false;
        for (const char c : text) {
            if (std::isspace(static_cast<unsigned char>(c)) != 0) {
                blank = !result.empty();
            } else {
                if (blank) {
                    result += ' ';
                    blank = false;
                }
                result += c;
            }
        }
        return result;
    };
    std::map<std::string, std::string> printed;
    for (const auto& entry : response.getStringStringMapResponseWithGeneralResult()) {
        printed[collapsed(entry.first)] = collapsed(entry.second);
    }
    return printed;
}

std::vector<Mismatch> compareAnswer(const TestCase& testCase,
                                    const std::map<std::string, std::string>& answer) {
    std::vector<Mismatch> mismatches;
    for (const auto& expected : testCase.expect) {
        const auto actual = answer.find(expected.first);
        if (actual == answer.end()) {
            mismatches.push_back({expected.first, true, expected.second, false, {}});
        } else if (actual->second != expected.second) {
            mismatches.push_back({expected.first, true, expected.second, true, actual->second});
        }
    }
    if (testCase.exact) {
        for (const auto& actual : answer) {
            if (testCase.expect.count(actual.first) == 0) {
                mismatches.push_back({actual.first, false, {}, true, actual.second});
            }
        }
    }
    return mismatches;
}

std::string keywordsAsJson(const std::map<std::string, std::string>& keywords) {
    tovjson::StringBuffer buffer;
    JsonWriter writer(buffer);
    writer.StartObject();
    for (const auto& [keyword, text] : keywords) {
        writeString(writer, keyword);
        writeString(writer, text);
    }
    writer.EndObject();
    return {buffer.GetString(), buffer.GetSize()};
}

CaseOutcome runCase(const TestCase& testCase, TOVCoreDataControllers* core,
                    const TOV_DMStructure& dataModel) {
    CaseOutcome outcome;
    outcome.warnings = unknownNamesInRequest(testCase.request, dataModel);
    outcome.answer = answerAsPrinted(testCase.kind->evaluate(testCase.request, core));
    outcome.mismatches = compareAnswer(testCase, outcome.answer);
    return outcome;
}

}  // namespace tovcli
