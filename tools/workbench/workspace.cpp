#include "workspace.h"

#include <filesystem>
#include <tuple>
#include <utility>

#include "file_replacement.h"
#include "input_files.h"
#include "json_files.h"
#include "json_output.h"

namespace tovwb {

namespace {

std::string inFolder(const std::string& folder, const std::string& name) {
    return (std::filesystem::path(folder) / name).string();
}

bool readExamples(const std::string& folder, std::uint64_t maxInputSize,
                  std::vector<ExampleRequest>& examples, std::string& error) {
    tovjson::Document scenario;
    const std::string path = inFolder(folder, "scenario.json");
    if (!tovcli::parseJsonFile(path, "scenario", maxInputSize, scenario, error)) {
        return false;
    }
    const tovjson::Value* steps = tovcli::findArray(scenario, "steps");
    if (steps == nullptr) {
        error = "the scenario " + path + " lists no \"steps\"";
        return false;
    }
    for (const auto& step : steps->GetArray()) {
        ExampleRequest example{tovcli::stringOf(step, "name"),
                               tovcli::stringOf(step, "kind"),
                               tovcli::stringOf(step, "purpose"),
                               {}};
        const std::string request = inFolder(folder, "requests/" + example.name + ".json");
        if (example.name.empty() ||
            !tovcli::readInput(request, "request", maxInputSize, example.text, error)) {
            error = std::string("the scenario ")
                        .append(path)
                        .append(" names a request that cannot be read")
                        .append(error.empty() ? "" : ": ")
                        .append(error);
            return false;
        }
        examples.push_back(std::move(example));
    }
    return true;
}

// Writes one case of a suite, with its request file's text in place of its name.
bool writeCase(const tovjson::Value& testCase, const std::string& folder,
               std::uint64_t maxInputSize, tovcli::JsonWriter& writer, std::string& error) {
    if (!testCase.IsObject()) {
        tovcli::writeValue(writer, testCase);  // told as tov test tells it, when it runs
        return true;
    }
    writer.StartObject();
    for (const auto& member : testCase.GetObject()) {
        const std::string name(member.name.GetString(), member.name.GetStringLength());
        if (name != "requestFile" || !member.value.IsString()) {
            writer.Key(member.name.GetString(), member.name.GetStringLength());
            tovcli::writeValue(writer, member.value);
            continue;
        }
        std::string path = member.value.GetString();
        if (!std::filesystem::path(path).is_absolute()) {
            path = inFolder(folder, path);
        }
        std::string text;
        if (!tovcli::readInput(path, "request", maxInputSize, text, error)) {
            return false;
        }
        tovjson::Document request;
        request.Parse<rapidjson::kParseIterativeFlag>(text.c_str(), text.size());
        if (request.HasParseError() || !request.IsObject()) {
            error = "the request " + path +
                    " is no JSON object, which a suite can hold under \"request\"";
            return false;
        }
        writer.Key("request");
        writer.RawValue(text.c_str(), text.size(), rapidjson::kObjectType);
    }
    writer.EndObject();
    return true;
}

bool readSuite(const std::string& path, std::uint64_t maxInputSize, PageSuite& suite,
               std::string& error) {
    tovjson::Document json;
    if (!tovcli::parseJsonFile(path, "suite", maxInputSize, json, error)) {
        return false;
    }
    const tovjson::Value* cases = tovcli::findArray(json, "cases");
    if (cases == nullptr) {
        error = "suite " + path + " needs \"cases\" (a list)";
        return false;
    }
    const std::string folder = std::filesystem::path(path).parent_path().string();
    tovjson::StringBuffer buffer;
    tovcli::JsonWriter writer(buffer);
    writer.StartObject();
    writer.Key("cases");
    writer.StartArray();
    for (const auto& testCase : cases->GetArray()) {
        if (!writeCase(testCase, folder, maxInputSize, writer, error)) {
            error = std::string("suite ").append(path).append(": ").append(error);
            return false;
        }
    }
    writer.EndArray();
    writer.EndObject();
    suite = {path, std::string(buffer.GetString(), buffer.GetSize())};
    return true;
}

// The file that a save replaces: the one the path leads to, through links.
std::string saveTarget(const std::string& path) {
    std::error_code ignored;
    const std::filesystem::path real = std::filesystem::canonical(path, ignored);
    return real.empty() ? path : real.string();
}

}  // namespace

std::unique_ptr<Workspace> Workspace::open(const WorkspaceOptions& options, std::string& error) {
    std::unique_ptr<Workspace> workspace(new Workspace());
    const bool examples = !options.examplesFolder.empty();
    if ((options.rulesPath.empty() || options.dataModelPath.empty()) && !examples) {
        error = "the example documents cannot be found: name the documents with --rules and --dm";
        return nullptr;
    }
    const auto document = [&](const std::string& given, const char* example) {
        return std::make_pair(given.empty() ? "examples/" + std::string(example) : given,
                              given.empty() ? inFolder(options.examplesFolder, example) : given);
    };
    std::tie(workspace->documentNames.rules, workspace->documentFiles.rules) =
        document(options.rulesPath, "rules.json");
    std::tie(workspace->documentNames.dataModel, workspace->documentFiles.dataModel) =
        document(options.dataModelPath, "datamodel.json");
    if (!tovcli::readInput(workspace->documentFiles.rules, "rules document", options.maxInputSize,
                           workspace->texts.rules, error) ||
        !tovcli::readInput(workspace->documentFiles.dataModel, "data-model document",
                           options.maxInputSize, workspace->texts.dataModel, error)) {
        return nullptr;
    }
    workspace->writable = options.write;
    workspace->rulesTarget = saveTarget(workspace->documentFiles.rules);
    workspace->dataModelTarget = saveTarget(workspace->documentFiles.dataModel);
    if (examples && !readExamples(options.examplesFolder, options.maxInputSize,
                                  workspace->exampleRequests, error)) {
        return nullptr;
    }
    const std::string suite = !options.suitePath.empty() ? options.suitePath
                              : examples ? inFolder(options.examplesFolder, "tests.json")
                                         : std::string();
    if (!suite.empty()) {
        PageSuite read;
        if (!readSuite(suite, options.maxInputSize, read, error)) {
            return nullptr;
        }
        if (options.suitePath.empty()) {
            read.name = "examples/tests.json";
        }
        workspace->pageSuite = std::move(read);
    }
    return workspace;
}

DocumentTexts Workspace::documents() const {
    const std::lock_guard<std::mutex> lock(guard);
    return texts;
}

bool Workspace::save(const DocumentTexts& edited, std::string& error) {
    const std::lock_guard<std::mutex> lock(guard);
    if (!writable) {
        error = "this workbench was started without --write, so it saves no file";
        return false;
    }
    if (!replaceFile(rulesTarget, edited.rules, error)) {
        return false;
    }
    texts.rules = edited.rules;
    if (!replaceFile(dataModelTarget, edited.dataModel, error)) {
        return false;
    }
    texts.dataModel = edited.dataModel;
    return true;
}

}  // namespace tovwb
