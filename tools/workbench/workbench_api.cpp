#include "workbench_api.h"

#include <rapidjson/error/en.h>

#include <algorithm>
#include <map>
#include <optional>
#include <sstream>
#include <utility>
#include <vector>

#include "edited_documents.h"
#include "json_files.h"
#include "json_output.h"
#include "lifecycle_graph.h"
#include "request_kinds.h"
#include "request_names.h"
#include "rules_in_words.h"
#include "section_places.h"
#include "test_suite.h"
#include "tov/TOVDecisionTrace.h"
#include "tov/rule_kinds.h"

namespace tovwb {

namespace {

using tovcli::Finding;
using tovcli::JsonWriter;
using tovcli::writeString;
using tovhttp::errorResponse;
using tovhttp::HttpResponse;

// The members of a body, by name.
using Members = std::map<std::string, std::string>;

std::string quotedNames(const std::vector<const char*>& names) {
    std::string words;
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (i > 0) {
            words += i + 1 == names.size() ? " and " : ", ";
        }
        words += "\"" + std::string(names[i]) + "\"";
    }
    return words;
}

// Reads a body that must be a JSON object of exactly the members `names`,
// each a string. A refusal (400) otherwise, which names what is wrong: a
// body names no more than the endpoint takes, so that no member can slip by
// unread (a path among them).
std::optional<HttpResponse> readBody(const std::string& body, const std::vector<const char*>& names,
                                     Members& members) {
    tovjson::Document json;
    json.Parse<rapidjson::kParseIterativeFlag>(body.c_str(), body.size());
    if (json.HasParseError()) {
        return errorResponse(
            400, "the body is no JSON: " + tovcli::textLocation(body, json.GetErrorOffset()) +
                     ": " + rapidjson::GetParseError_En(json.GetParseError()));
    }
    const std::string expected = "this endpoint takes " + quotedNames(names) + ", each a string";
    if (!json.IsObject()) {
        return errorResponse(400, std::string("the body is a JSON ") + tovcli::jsonTypeName(json) +
                                      ", not an object: " + expected);
    }
    for (const auto& member : json.GetObject()) {
        const std::string name(member.name.GetString(), member.name.GetStringLength());
        const bool known = std::any_of(names.begin(), names.end(), [&name](const char* candidate) {
            return name == candidate;
        });
        if (!known) {
            return errorResponse(400, std::string("unknown member \"")
                                          .append(tovhttp::printableExcerpt(name))
                                          .append("\": ")
                                          .append(expected));
        }
        if (!member.value.IsString()) {
            return errorResponse(400, std::string("\"")
                                          .append(name)
                                          .append("\" is a JSON ")
                                          .append(tovcli::jsonTypeName(member.value))
                                          .append(", not a string: ")
                                          .append(expected));
        }
        if (!members
                 .emplace(name,
                          std::string(member.value.GetString(), member.value.GetStringLength()))
                 .second) {
            return errorResponse(
                400, std::string("\"").append(name).append("\" is given twice: ").append(expected));
        }
    }
    for (const char* name : names) {
        if (members.count(name) == 0) {
            return errorResponse(400, "\"" + std::string(name) + "\" is missing: " + expected);
        }
    }
    return std::nullopt;
}

HttpResponse jsonAnswer(const tovjson::StringBuffer& buffer) {
    return tovhttp::jsonResponse(200, std::string(buffer.GetString(), buffer.GetSize()));
}

// The refusal of a question that documents that do not load cannot answer.
HttpResponse notLoaded(const EditedDocuments& documents) {
    return errorResponse(422, "the documents do not load, so nothing can be judged by them:\n" +
                                  documents.faultsInWords());
}

DocumentTexts textsOf(Members& members) {
    return {std::move(members["rules"]), std::move(members["datamodel"])};
}

// "rules" or "datamodel": which editor a finding belongs to.
const char* documentKey(const Finding& finding, const DocumentNames& names) {
    return finding.document == names.dataModel && finding.document != names.rules ? "datamodel"
                                                                                  : "rules";
}

// The place of a finding: its own, or else where its section begins.
std::string placeOf(const Finding& finding, const std::string& key,
                    std::map<std::string, DocumentPlaces>& documents, const DocumentTexts& texts) {
    if (!finding.location.empty() || finding.section.empty()) {
        return finding.location;
    }
    auto known = documents.find(key);
    if (known == documents.end()) {
        known =
            documents.emplace(key, documentPlaces(key == "rules" ? texts.rules : texts.dataModel))
                .first;
    }
    const auto place = known->second.sections.find(finding.section);
    return place == known->second.sections.end() ? std::string() : place->second;
}

// "LINE:COLUMN" as {"line": LINE, "column": COLUMN}, or null when unknown.
void writePlace(JsonWriter& writer, const std::string& place) {
    const std::size_t colon = place.find(':');
    if (colon == std::string::npos) {
        writer.Null();
        return;
    }
    writer.StartObject();
    writer.Key("line");
    writer.Uint64(std::stoull(place.substr(0, colon)));
    writer.Key("column");
    writer.Uint64(std::stoull(place.substr(colon + 1)));
    writer.EndObject();
}

// Where each rule of a trace stands in the rules text, in the trace's order.
void writeTracePlaces(JsonWriter& writer, const std::vector<TOVRuleConsultation>& steps,
                      const std::string& rulesText) {
    const DocumentPlaces places = documentPlaces(rulesText);
    writer.StartArray();
    for (const TOVRuleConsultation& step : steps) {
        const auto section = places.rules.find(GetTOVRuleKinds()[step.kind].section);
        const bool known =
            section != places.rules.end() && step.documentPosition < section->second.size();
        writePlace(writer, known ? section->second[step.documentPosition] : std::string());
    }
    writer.EndArray();
}

void writeFinding(JsonWriter& writer, const Finding& finding, const char* key,
                  const std::string& place) {
    writer.StartObject();
    writer.Key("document");
    writer.String(key);
    writer.Key("severity");
    writer.String(finding.severity == Finding::kFault     ? "fault"
                  : finding.severity == Finding::kWarning ? "warning"
                                                          : "note");
    tovcli::writeFindingMembers(writer, finding, place);
    writer.EndObject();
}

void writeObjectTypes(JsonWriter& writer, const TOV_DMStructure& dataModel) {
    writer.StartArray();
    for (const TOV_DMStructureObject& object : dataModel.getAllStructureObjects()) {
        writer.StartObject();
        writer.Key("name");
        writeString(writer, object.getName());
        writer.Key("attributes");
        writer.StartArray();
        for (const auto* attributes :
             {&object.getPrimaryAttributes(), &object.getSecondaryAttributes()}) {
            for (const TOV_DMAttribute& attribute : *attributes) {
                writeString(writer, attribute.getName());
            }
        }
        writer.EndArray();
        writer.EndObject();
    }
    writer.EndArray();
}

const char* verdictOf(const TOVResponse& response) {
    if (response.getGeneralResult()) {
        return "approved";
    }
    TOVMissingDataForEvaluation missing;
    return response.needsReevaluation(missing) ? "needs more data" : "refused";
}

void writeMismatches(JsonWriter& writer, const std::vector<tovcli::Mismatch>& mismatches) {
    writer.StartArray();
    for (const tovcli::Mismatch& mismatch : mismatches) {
        writer.StartObject();
        writer.Key("keyword");
        writeString(writer, mismatch.keyword);
        writer.Key("expected");
        if (mismatch.expected) {
            writeString(writer, mismatch.expectedText);
        } else {
            writer.Null();
        }
        writer.Key("actual");
        if (mismatch.present) {
            writeString(writer, mismatch.actualText);
        } else {
            writer.Null();
        }
        writer.EndObject();
    }
    writer.EndArray();
}

}  // namespace

WorkbenchApi::WorkbenchApi(Workspace& workspace, DiagramRenderer& renderer, std::string logFolder)
    : workspace(workspace), renderer(renderer), logFolder(std::move(logFolder)) {}

HttpResponse WorkbenchApi::documents() const {
    const DocumentTexts texts = workspace.documents();
    const DocumentNames& names = workspace.names();
    tovjson::StringBuffer buffer;
    JsonWriter writer(buffer);
    writer.StartObject();
    for (const auto& [key, name, text] :
         {std::make_tuple("rules", &names.rules, &texts.rules),
          std::make_tuple("datamodel", &names.dataModel, &texts.dataModel)}) {
        writer.Key(key);
        writer.StartObject();
        writer.Key("name");
        writeString(writer, *name);
        writer.Key("text");
        writeString(writer, *text);
        writer.EndObject();
    }
    writer.Key("write");
    writer.Bool(workspace.writes());
    writer.Key("diagrams");
    const std::string unavailable = renderer.unavailable();
    if (unavailable.empty()) {
        writer.Null();
    } else {
        writeString(writer, unavailable);
    }
    writer.Key("kinds");
    writer.StartArray();
    for (const tovcli::RequestKind& kind : tovcli::requestKinds()) {
        writer.StartObject();
        writer.Key("name");
        writer.String(kind.name);
        writer.Key("question");
        writer.String(kind.question);
        writer.EndObject();
    }
    writer.EndArray();
    writer.Key("examples");
    writer.StartArray();
    for (const ExampleRequest& example : workspace.examples()) {
        writer.StartObject();
        writer.Key("name");
        writeString(writer, example.name);
        writer.Key("kind");
        writeString(writer, example.kind);
        writer.Key("purpose");
        writeString(writer, example.purpose);
        writer.Key("request");
        writeString(writer, example.text);
        writer.EndObject();
    }
    writer.EndArray();
    writer.Key("suite");
    if (const std::optional<PageSuite>& suite = workspace.suite()) {
        writer.StartObject();
        writer.Key("name");
        writeString(writer, suite->name);
        writer.Key("text");
        writeString(writer, suite->text);
        writer.EndObject();
    } else {
        writer.Null();
    }
    writer.EndObject();
    return jsonAnswer(buffer);
}

HttpResponse WorkbenchApi::check(const std::string& body) const {
    Members members;
    if (std::optional<HttpResponse> refusal = readBody(body, {"rules", "datamodel"}, members)) {
        return std::move(*refusal);
    }
    const DocumentTexts texts = textsOf(members);
    EditedDocuments documents(workspace.names(), texts, logFolder);
    const bool loaded = documents.load(true);

    tovjson::StringBuffer buffer;
    JsonWriter writer(buffer);
    writer.StartObject();
    writer.Key("loaded");
    writer.Bool(loaded);
    writer.Key("documents");
    writer.StartArray();
    for (const Finding& finding : documents.findings()) {
        if (finding.severity == Finding::kLoaded) {
            writer.StartObject();
            writer.Key("document");
            writer.String(documentKey(finding, workspace.names()));
            writer.Key("comment");
            writeString(writer, finding.message);
            writer.EndObject();
        }
    }
    writer.EndArray();
    writer.Key("findings");
    writer.StartArray();
    std::map<std::string, DocumentPlaces> places;
    for (const Finding& finding : documents.findings()) {
        if (finding.severity != Finding::kLoaded) {
            const char* key = documentKey(finding, workspace.names());
            writeFinding(writer, finding, key, placeOf(finding, key, places, texts));
        }
    }
    writer.EndArray();
    writer.Key("objectTypes");
    writeObjectTypes(writer, documents.core().dataModel());
    writer.EndObject();
    return jsonAnswer(buffer);
}

HttpResponse WorkbenchApi::explain(const std::string& body) const {
    Members members;
    if (std::optional<HttpResponse> refusal = readBody(body, {"rules", "datamodel"}, members)) {
        return std::move(*refusal);
    }
    const DocumentTexts texts = textsOf(members);
    EditedDocuments documents(workspace.names(), texts, logFolder);
    if (!documents.load(false)) {
        return notLoaded(documents);
    }
    const TOVLifecycleBusinessRules& rules = documents.core().rules();
    return tovhttp::jsonResponse(
        200,
        tovcli::rulesInWordsJson(tovcli::groupRulesInWords(rules),
                                 tovcli::libraryItemTypes(rules, documents.core().dataModel())));
}

HttpResponse WorkbenchApi::graph(const std::string& body) const {
    Members members;
    if (std::optional<HttpResponse> refusal =
            readBody(body, {"rules", "datamodel", "type", "attribute"}, members)) {
        return std::move(*refusal);
    }
    const std::string type = members["type"];
    const std::string attribute = members["attribute"];
    const DocumentTexts texts = textsOf(members);
    EditedDocuments documents(workspace.names(), texts, logFolder);
    if (!documents.load(false)) {
        return notLoaded(documents);
    }
    const TOV_DMStructure& dataModel = documents.core().dataModel();
    if (!tovcli::describesObjectType(dataModel, type)) {
        return errorResponse(422, "the data model describes no object type \"" +
                                      tovhttp::printableExcerpt(type) + "\"");
    }
    tovjson::Document rules;
    rules.Parse<rapidjson::kParseIterativeFlag>(texts.rules.c_str(), texts.rules.size());
    // The graph code reads an object; what the library took is not asked again.
    tovcli::LifecycleGraph lifecycle;
    if (!rules.HasParseError() && rules.IsObject()) {
        // The very documents of this question judge every move, as tov graph's do.
        TOVCoreDataControllers* core = documents.core().get();
        lifecycle = tovcli::buildLifecycleGraph(
            rules, type, attribute, dataModel,
            [core](const std::string& kind, const std::string& text) {
                return tovcli::findRequestKind(kind)->evaluate(text, core);
            });
    }
    if (!lifecycle.hasTransitionRules) {
        return errorResponse(422, "the rules hold no transition rule of \"" +
                                      tovhttp::printableExcerpt(attribute) + "\" for \"" +
                                      tovhttp::printableExcerpt(type) + "\"");
    }
    std::ostringstream dot;
    tovcli::writeDot(lifecycle, dot);

    std::optional<std::string> svg;
    std::string message = renderer.unavailable();
    if (message.empty()) {
        if (lifecycle.values.size() > kMaxDrawnValues || lifecycle.edges.size() > kMaxDrawnEdges) {
            message = "The lifecycle has " + std::to_string(lifecycle.values.size()) +
                      " values and " + std::to_string(lifecycle.edges.size()) +
                      " transitions, more than are drawn here (" + std::to_string(kMaxDrawnValues) +
                      " and " + std::to_string(kMaxDrawnEdges) + "); its DOT text follows.";
        } else {
            svg = renderer.svgOf(dot.str(), message);
        }
    }
    tovjson::StringBuffer buffer;
    JsonWriter writer(buffer);
    writer.StartObject();
    writer.Key("dot");
    writeString(writer, dot.str());
    writer.Key("svg");
    if (svg) {
        writeString(writer, *svg);
    } else {
        writer.Null();
    }
    writer.Key("message");
    if (svg) {
        writer.Null();
    } else {
        writeString(writer, message);
    }
    writer.EndObject();
    return jsonAnswer(buffer);
}

HttpResponse WorkbenchApi::evaluate(const std::string& body) const {
    Members members;
    if (std::optional<HttpResponse> refusal =
            readBody(body, {"rules", "datamodel", "kind", "request"}, members)) {
        return std::move(*refusal);
    }
    const tovcli::RequestKind* kind = tovcli::findRequestKind(members["kind"]);
    if (kind == nullptr) {
        return errorResponse(400, "unknown request kind \"" +
                                      tovhttp::printableExcerpt(members["kind"]) + "\"; expected " +
                                      tovcli::requestKindNamesInWords());
    }
    const std::string request = members["request"];
    const DocumentTexts texts = textsOf(members);
    EditedDocuments documents(workspace.names(), texts, logFolder);
    if (!documents.load(false)) {
        return notLoaded(documents);
    }
    TOVDecisionTrace trace;
    documents.core().get()->setDecisionObserver(&trace);
    const TOVResponse response = kind->evaluate(request, documents.core().get());
    documents.core().get()->setDecisionObserver(nullptr);

    tovjson::StringBuffer buffer;
    JsonWriter writer(buffer);
    writer.StartObject();
    writer.Key("verdict");
    writer.String(verdictOf(response));
    writer.Key("line");
    writeString(writer, response.turnResponseIntoASingleString());
    tovcli::writeResponseMembers(writer, response);
    writer.Key("trace");
    const std::string steps = ComposeTOVDecisionTraceJson(trace.steps());
    writer.RawValue(steps.c_str(), steps.size(), rapidjson::kArrayType);
    writer.Key("tracePlaces");
    writeTracePlaces(writer, trace.steps(), texts.rules);
    writer.Key("warnings");
    writer.StartArray();
    for (const std::string& warning :
         tovcli::unknownNamesInRequest(request, documents.core().dataModel())) {
        writeString(writer, warning);
    }
    writer.EndArray();
    writer.EndObject();
    return jsonAnswer(buffer);
}

HttpResponse WorkbenchApi::test(const std::string& body) const {
    Members members;
    if (std::optional<HttpResponse> refusal =
            readBody(body, {"rules", "datamodel", "suite"}, members)) {
        return std::move(*refusal);
    }
    tovcli::TestSuite suite;
    std::string error;
    if (!tovcli::readTestSuiteText(members["suite"], "the suite", suite, error)) {
        return errorResponse(422, error);
    }
    const DocumentTexts texts = textsOf(members);
    EditedDocuments documents(workspace.names(), texts, logFolder);
    if (!documents.load(false)) {
        return notLoaded(documents);
    }
    tovjson::StringBuffer buffer;
    JsonWriter writer(buffer);
    std::size_t failed = 0;
    writer.StartObject();
    writer.Key("cases");
    writer.StartArray();
    for (const tovcli::TestCase& testCase : suite.cases) {
        const tovcli::CaseOutcome outcome =
            tovcli::runCase(testCase, documents.core().get(), documents.core().dataModel());
        failed += outcome.mismatches.empty() ? 0 : 1;
        writer.StartObject();
        writer.Key("name");
        writeString(writer, testCase.name);
        writer.Key("kind");
        writer.String(testCase.kind->name);
        writer.Key("passed");
        writer.Bool(outcome.mismatches.empty());
        writer.Key("expected");
        const std::string expected = tovcli::keywordsAsJson(testCase.expect);
        writer.RawValue(expected.c_str(), expected.size(), rapidjson::kObjectType);
        writer.Key("actual");
        const std::string actual = tovcli::keywordsAsJson(outcome.answer);
        writer.RawValue(actual.c_str(), actual.size(), rapidjson::kObjectType);
        writer.Key("warnings");
        writer.StartArray();
        for (const std::string& warning : outcome.warnings) {
            writeString(writer, warning);
        }
        writer.EndArray();
        writer.Key("mismatches");
        writeMismatches(writer, outcome.mismatches);
        writer.EndObject();
    }
    writer.EndArray();
    writer.Key("passed");
    writer.Uint64(suite.cases.size() - failed);
    writer.Key("failed");
    writer.Uint64(failed);
    writer.EndObject();
    return jsonAnswer(buffer);
}

HttpResponse WorkbenchApi::save(const std::string& body) const {
    if (!workspace.writes()) {
        return errorResponse(403,
                             "this workbench was started without --write, so it saves no "
                             "file; download the documents instead");
    }
    Members members;
    if (std::optional<HttpResponse> refusal = readBody(body, {"rules", "datamodel"}, members)) {
        return std::move(*refusal);
    }
    const DocumentTexts texts = textsOf(members);
    EditedDocuments documents(workspace.names(), texts, logFolder);
    if (!documents.load(false)) {
        return errorResponse(
            422, "the documents do not load, so they are not saved:\n" + documents.faultsInWords());
    }
    std::string error;
    if (!workspace.save(texts, error)) {
        return errorResponse(500, error);
    }
    tovjson::StringBuffer buffer;
    JsonWriter writer(buffer);
    writer.StartObject();
    writer.Key("saved");
    writer.StartArray();
    writeString(writer, workspace.names().rules);
    writeString(writer, workspace.names().dataModel);
    writer.EndArray();
    writer.EndObject();
    return jsonAnswer(buffer);
}

}  // namespace tovwb
