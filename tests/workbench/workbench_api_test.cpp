// The workbench's questions, called directly: a body in, an answer out.
#include "workbench_api.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "workbench_test_support.h"

namespace {

using tovhttp::HttpResponse;
using tovwb::WorkbenchApi;
using tovwbtest::body;
using tovwbtest::errorBody;
using tovwbtest::exampleDataModel;
using tovwbtest::exampleRequest;
using tovwbtest::exampleRules;
using tovwbtest::parsed;

class WorkbenchApiTest : public ::testing::Test {
protected:
    WorkbenchApiTest() : workspace(tovwbtest::exampleWorkspace()), api(*workspace, renderer, "") {}

    // Both example documents and more members.
    static std::string withExamples(
        std::initializer_list<std::pair<const char*, std::string>> more = {}) {
        std::vector<std::pair<const char*, std::string>> members = {
            {"rules", exampleRules()}, {"datamodel", exampleDataModel()}};
        members.insert(members.end(), more.begin(), more.end());
        return body(members);
    }

    std::unique_ptr<tovwb::Workspace> workspace;
    tovwbtest::FakeRenderer renderer;
    WorkbenchApi api;
};

TEST_F(WorkbenchApiTest, DocumentsTellWhatThePageStartsFrom) {
    const HttpResponse answer = api.documents();
    EXPECT_EQ(answer.status, 200);
    EXPECT_EQ(*answer.header("Content-Type"), "application/json");
    const auto json = parsed(answer.body);
    EXPECT_STREQ((*json)["rules"]["name"].GetString(), "examples/rules.json");
    EXPECT_EQ(std::string((*json)["rules"]["text"].GetString()), exampleRules());
    EXPECT_STREQ((*json)["datamodel"]["name"].GetString(), "examples/datamodel.json");
    EXPECT_EQ(std::string((*json)["datamodel"]["text"].GetString()), exampleDataModel());
    EXPECT_FALSE((*json)["write"].GetBool());
    EXPECT_TRUE((*json)["diagrams"].IsNull());
    ASSERT_EQ((*json)["kinds"].Size(), 6U);
    EXPECT_STREQ((*json)["kinds"][0]["name"].GetString(), "edit");
    EXPECT_STREQ((*json)["kinds"][5]["name"].GetString(), "options");
    ASSERT_EQ((*json)["examples"].Size(), 25U);
    const auto& first = (*json)["examples"][0];
    EXPECT_STREQ(first["name"].GetString(), "edit-part-release-first-pass");
    EXPECT_STREQ(first["kind"].GetString(), "edit");
    EXPECT_STREQ(first["purpose"].GetString(),
                 "Release part P-100. The host sends no family members, so the library asks "
                 "for them.");
    EXPECT_EQ(std::string(first["request"].GetString()),
              exampleRequest("edit-part-release-first-pass"));
    EXPECT_STREQ((*json)["suite"]["name"].GetString(), "examples/tests.json");
    const auto suite = parsed((*json)["suite"]["text"].GetString());
    EXPECT_EQ((*suite)["cases"].Size(), 25U);
}

TEST_F(WorkbenchApiTest, ADrawingThatCannotBeMadeIsTold) {
    const std::unique_ptr<tovwb::DiagramRenderer> missing = tovwb::makeMissingRenderer();
    const WorkbenchApi without(*workspace, *missing, "");
    const auto json = parsed(without.documents().body);
    EXPECT_EQ(std::string((*json)["diagrams"].GetString()), missing->unavailable());
    EXPECT_EQ(missing->unavailable(),
              "This tov was built without Graphviz's library, so the diagram is shown as DOT "
              "text: install libgraphviz-dev and build tov again to see it drawn here, or render "
              "the text with Graphviz's dot -Tsvg.");
}

TEST_F(WorkbenchApiTest, BodiesThatAreNotWhatAnEndpointTakesAreRefused) {
    const std::string takes = "this endpoint takes \"rules\" and \"datamodel\", each a string";
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"", "the body is no JSON: 1:1: The document is empty."},
        {"{\"rules\": ", "the body is no JSON: 1:11: Invalid value."},
        {"[]", "the body is a JSON array, not an object: " + takes},
        {"\"rules\"", "the body is a JSON string, not an object: " + takes},
        {"{}", "\"rules\" is missing: " + takes},
        {"{\"rules\": \"{}\"}", "\"datamodel\" is missing: " + takes},
        {"{\"rules\": {}, \"datamodel\": \"{}\"}",
         "\"rules\" is a JSON object, not a string: " + takes},
        {"{\"rules\": \"{}\", \"datamodel\": null}",
         "\"datamodel\" is a JSON null, not a string: " + takes},
        {"{\"rules\": \"{}\", \"datamodel\": \"{}\", \"rules\": \"{}\"}",
         "\"rules\" is given twice: " + takes},
        {"{\"rules\": \"{}\", \"datamodel\": \"{}\", \"path\": \"/etc/passwd\"}",
         "unknown member \"path\": " + takes},
    };
    for (const auto& [sent, message] : cases) {
        for (const auto& ask : {&WorkbenchApi::check, &WorkbenchApi::explain}) {
            const HttpResponse answer = (api.*ask)(sent);
            EXPECT_EQ(answer.status, 400) << sent;
            EXPECT_EQ(answer.body, errorBody(message)) << sent;
        }
    }
    EXPECT_EQ(api.graph("{}").body,
              errorBody("\"rules\" is missing: this endpoint takes \"rules\", \"datamodel\", "
                        "\"type\" and \"attribute\", each a string"));
    EXPECT_EQ(api.evaluate("{}").body,
              errorBody("\"rules\" is missing: this endpoint takes \"rules\", \"datamodel\", "
                        "\"kind\" and \"request\", each a string"));
    EXPECT_EQ(api.test("{}").body,
              errorBody("\"rules\" is missing: this endpoint takes \"rules\", \"datamodel\" and "
                        "\"suite\", each a string"));
}

TEST_F(WorkbenchApiTest, CheckTellsEveryFindingWithItsPlace) {
    const HttpResponse answer = api.check(withExamples());
    EXPECT_EQ(answer.status, 200);
    EXPECT_EQ(answer.body,
              "{\"loaded\":true,\"documents\":[{\"document\":\"datamodel\",\"comment\":"
              "\"Succesfully initialized DM info\"},{\"document\":\"rules\",\"comment\":"
              "\"Successfully initialized TOV rules\"}],\"findings\":[{\"document\":\"rules\","
              "\"severity\":\"warning\",\"section\":\"versioningSelections\",\"message\":"
              "\"versioningSelections: Library_Item #1 (explain 3): offers no versioning "
              "attribute of Datasheet (Edition), so no spin-up can follow the selection\","
              "\"line\":48,\"column\":95}],\"objectTypes\":[{\"name\":\"Assembly\",\"attributes\":["
              "\"Number\","
              "\"Revision\",\"Owner\",\"Status\"]},{\"name\":\"Datasheet\",\"attributes\":["
              "\"DocumentFile\",\"Edition\",\"Number\",\"Status\"]},{\"name\":\"Drawing\","
              "\"attributes\":[\"Number\",\"Revision\",\"SheetFile\",\"Owner\",\"Status\"]},"
              "{\"name\":\"Part\",\"attributes\":[\"Iteration\",\"Number\",\"Revision\","
              "\"Description\",\"Material\",\"Owner\",\"ReleaseDate\",\"Status\"]}]}\n");
}

TEST_F(WorkbenchApiTest, AMisspeltSectionIsFoundWhereItIsWritten) {
    const std::string rules = "{\n  \"transitions\": {},\n    \"transitionz\": {}\n}\n";
    const auto json =
        parsed(api.check(body({{"rules", rules}, {"datamodel", exampleDataModel()}})).body);
    EXPECT_TRUE((*json)["loaded"].GetBool());
    const auto& findings = (*json)["findings"];
    ASSERT_EQ(findings.Size(), 2U);
    EXPECT_STREQ(findings[0]["message"].GetString(),
                 "no rules, so every request will be refused with \"Uninitialized TOV rules\"");
    EXPECT_FALSE(findings[0].HasMember("line"));
    EXPECT_STREQ(findings[1]["document"].GetString(), "rules");
    EXPECT_STREQ(findings[1]["severity"].GetString(), "warning");
    EXPECT_STREQ(findings[1]["section"].GetString(), "transitionz");
    EXPECT_STREQ(findings[1]["message"].GetString(),
                 "transitionz: unknown section \"transitionz\" is ignored; did you mean "
                 "\"transitions\"?");
    EXPECT_EQ(findings[1]["line"].GetUint64(), 3U);
    EXPECT_EQ(findings[1]["column"].GetUint64(), 5U);
}

TEST_F(WorkbenchApiTest, CheckTellsTheFaultsOfDocumentsThatDoNotLoad) {
    const std::string rules =
        "{\n  \"transitions\": {\n    \"Part\": [ {\"attribute\": \"Status\"} ]\n"
        "  }\n}\n";
    const std::string dataModel =
        "{\n  \"OverwriteLabel\": \"Overwrite\",\n  \"structureObjects\": [\n";
    const auto json = parsed(api.check(body({{"rules", rules}, {"datamodel", dataModel}})).body);
    EXPECT_FALSE((*json)["loaded"].GetBool());
    EXPECT_EQ((*json)["documents"].Size(), 0U);
    EXPECT_EQ((*json)["objectTypes"].Size(), 0U);
    const auto& findings = (*json)["findings"];
    ASSERT_EQ(findings.Size(), 4U);
    EXPECT_STREQ(findings[0]["document"].GetString(), "datamodel");
    EXPECT_STREQ(findings[0]["severity"].GetString(), "fault");
    EXPECT_STREQ(findings[0]["message"].GetString(), "Json has fundamental parsing error");
    EXPECT_FALSE(findings[0].HasMember("line"));
    EXPECT_STREQ(findings[1]["severity"].GetString(), "note");
    EXPECT_STREQ(findings[1]["message"].GetString(), "Invalid value.");
    EXPECT_EQ(findings[1]["line"].GetUint64(), 4U);
    EXPECT_EQ(findings[1]["column"].GetUint64(), 1U);
    EXPECT_STREQ(findings[2]["document"].GetString(), "rules");
    EXPECT_STREQ(findings[2]["severity"].GetString(), "fault");
    EXPECT_STREQ(findings[2]["section"].GetString(), "transitions");
    EXPECT_EQ(findings[2]["line"].GetUint64(), 2U);
    EXPECT_EQ(findings[2]["column"].GetUint64(), 3U);
    // The program's note points at the rule that the library refused.
    EXPECT_STREQ(findings[3]["severity"].GetString(), "note");
    EXPECT_STREQ(findings[3]["section"].GetString(), "transitions");
    EXPECT_STREQ(findings[3]["message"].GetString(),
                 "transitions: Part #1: has no \"fromValue\", and a transition rule needs "
                 "\"attribute\", \"fromValue\" and \"toValue\"");
    EXPECT_EQ(findings[3]["line"].GetUint64(), 3U);
    EXPECT_EQ(findings[3]["column"].GetUint64(), 15U);
}

TEST_F(WorkbenchApiTest, ExplainTellsTheRulesInWords) {
    const HttpResponse answer = api.explain(withExamples());
    EXPECT_EQ(answer.status, 200);
    const auto json = parsed(answer.body);
    EXPECT_STREQ((*json)["kinds"][0]["kind"].GetString(), "transition freeze");
    EXPECT_STREQ((*json)["kinds"][0]["rules"][0].GetString(),
                 "For Part: When Status equals \"Released\", then Description must remain "
                 "unchanged.");
    ASSERT_EQ((*json)["libraryItem"].Size(), 2U);
    EXPECT_STREQ((*json)["libraryItem"][0].GetString(), "Datasheet");
    EXPECT_STREQ((*json)["libraryItem"][1].GetString(), "Drawing");

    const HttpResponse refused = api.explain(body({{"rules", "{"}, {"datamodel", "{}"}}));
    EXPECT_EQ(refused.status, 422);
    EXPECT_EQ(refused.body,
              errorBody("the documents do not load, so nothing can be judged by them:\n"
                        "examples/datamodel.json: DM Structure Information demands ALL keywords: "
                        "[structureObjects,OverwriteLabel]\n"
                        "examples/datamodel.json: DM Structure Information demands ALL keywords: "
                        "[structureObjects,OverwriteLabel]\n"
                        "examples/rules.json: Json has fundamental parsing error"));
}

TEST_F(WorkbenchApiTest, GraphDrawsTheLifecycleAsTovGraphDoes) {
    const HttpResponse answer =
        api.graph(withExamples({{"type", "part"}, {"attribute", "Status"}}));
    EXPECT_EQ(answer.status, 200);
    const auto json = parsed(answer.body);
    const std::string dot = (*json)["dot"].GetString();
    EXPECT_EQ(dot.rfind("// The lifecycle of Status for part", 0), 0U);
    EXPECT_EQ(renderer.drawn, 1);
    EXPECT_EQ(renderer.lastDot, dot);
    EXPECT_STREQ((*json)["svg"].GetString(), "<svg xmlns=\"http://www.w3.org/2000/svg\"></svg>");
    EXPECT_TRUE((*json)["message"].IsNull());
}

TEST_F(WorkbenchApiTest, WithoutARendererTheDotTextIsGiven) {
    const std::unique_ptr<tovwb::DiagramRenderer> missing = tovwb::makeMissingRenderer();
    const WorkbenchApi without(*workspace, *missing, "");
    const auto json =
        parsed(without.graph(withExamples({{"type", "Part"}, {"attribute", "Status"}})).body);
    EXPECT_EQ(std::string((*json)["dot"].GetString()).rfind("// The lifecycle of Status", 0), 0U);
    EXPECT_TRUE((*json)["svg"].IsNull());
    EXPECT_EQ(std::string((*json)["message"].GetString()), missing->unavailable());
}

TEST_F(WorkbenchApiTest, GraphRefusals) {
    const HttpResponse unknownType =
        api.graph(withExamples({{"type", "Bolt"}, {"attribute", "Status"}}));
    EXPECT_EQ(unknownType.status, 422);
    EXPECT_EQ(unknownType.body, errorBody("the data model describes no object type \"Bolt\""));
    const HttpResponse noRule = api.graph(withExamples({{"type", "Part"}, {"attribute", "Owner"}}));
    EXPECT_EQ(noRule.status, 422);
    EXPECT_EQ(noRule.body,
              errorBody("the rules hold no transition rule of \"Owner\" for \"Part\""));
    EXPECT_EQ(renderer.drawn, 0);
}

TEST_F(WorkbenchApiTest, AfterANulByteNothingCounts) {
    // As the library reads the text, so the graph is drawn.
    const std::string cut = std::string(
                                "{\"transitions\": {\"Part\": [{\"attribute\": \"Status\", "
                                "\"fromValue\": \"a\", \"toValue\": [\"b\"]}]}}") +
                            '\0' + "and the rest";
    const HttpResponse answer = api.graph(body({{"rules", cut},
                                                {"datamodel", exampleDataModel()},
                                                {"type", "Part"},
                                                {"attribute", "Status"}}));
    EXPECT_EQ(answer.status, 200);
    EXPECT_NE(renderer.lastDot.find("\"a\" -> \"b\";"), std::string::npos);
    const auto json =
        parsed(api.check(body({{"rules", cut}, {"datamodel", exampleDataModel()}})).body);
    EXPECT_TRUE((*json)["loaded"].GetBool());
}

TEST_F(WorkbenchApiTest, ALifecycleTooLargeToDrawIsGivenAsText) {
    std::string rules = "{\"transitions\": {\"Part\": [";
    for (std::size_t value = 0; value <= tovwb::kMaxDrawnValues; ++value) {
        rules += std::string(value == 0 ? "" : ",") +
                 "{\"attribute\": \"Status\", \"fromValue\": \"v" + std::to_string(value) +
                 "\", \"toValue\": [\"v" + std::to_string(value + 1) + "\"]}";
    }
    rules += "]}}";
    const auto json = parsed(api.graph(body({{"rules", rules},
                                             {"datamodel", exampleDataModel()},
                                             {"type", "Part"},
                                             {"attribute", "Status"}}))
                                 .body);
    EXPECT_EQ(renderer.drawn, 0);
    EXPECT_TRUE((*json)["svg"].IsNull());
    // The chain's 201 moves, and from its last value, which no rule moves
    // from, the library approves a move to each of the other 201.
    EXPECT_STREQ((*json)["message"].GetString(),
                 "The lifecycle has 202 values and 402 transitions, more than are drawn here "
                 "(200 and 2000); its DOT text follows.");
}

TEST_F(WorkbenchApiTest, EveryExampleRequestIsAnsweredAsEvalPrintsIt) {
    const auto documents = parsed(api.documents().body);
    for (const auto& example : (*documents)["examples"].GetArray()) {
        const std::string name = example["name"].GetString();
        const HttpResponse answer = api.evaluate(withExamples(
            {{"kind", example["kind"].GetString()}, {"request", example["request"].GetString()}}));
        EXPECT_EQ(answer.status, 200) << name;
        const auto json = parsed(answer.body);
        EXPECT_EQ(std::string((*json)["line"].GetString()), tovwbtest::expectedLine(name)) << name;
        const bool approved = (*json)["result"].GetBool();
        const bool asks = (*json)["missing"].Size() > 0;
        EXPECT_STREQ((*json)["verdict"].GetString(), approved ? "approved"
                                                     : asks   ? "needs more data"
                                                              : "refused")
            << name;
    }
}

TEST_F(WorkbenchApiTest, TheTraceTellsWhichRulesJudgedAndWhereTheyStand) {
    const HttpResponse answer = api.evaluate(withExamples(
        {{"kind", "edit"}, {"request", exampleRequest("edit-released-part-description-frozen")}}));
    const auto json = parsed(answer.body);
    EXPECT_STREQ((*json)["verdict"].GetString(), "refused");
    tovjson::StringBuffer trace;
    tovcli::JsonWriter traceWriter(trace);
    tovcli::writeValue(traceWriter, (*json)["trace"]);
    EXPECT_EQ(std::string(trace.GetString()),
              "[{\"section\":\"transitionsFreeze\",\"number\":1,\"rule\":\"For Part: When "
              "Status equals \\\"Released\\\", then Description must remain unchanged.\","
              "\"outcome\":\"objected\",\"decisive\":true}]");
    ASSERT_EQ((*json)["tracePlaces"].Size(), 1U);
    // Where the freeze rule of Part stands in the example.
    EXPECT_EQ((*json)["tracePlaces"][0]["line"].GetUint64(), 17U);
    EXPECT_EQ((*json)["tracePlaces"][0]["column"].GetUint64(), 7U);
}

TEST_F(WorkbenchApiTest, EveryStepOfATraceHasItsPlace) {
    const auto documents = parsed(api.documents().body);
    const std::string rules = exampleRules();
    for (const auto& example : (*documents)["examples"].GetArray()) {
        const auto json =
            parsed(api.evaluate(withExamples({{"kind", example["kind"].GetString()},
                                              {"request", example["request"].GetString()}}))
                       .body);
        const auto& trace = (*json)["trace"];
        const auto& places = (*json)["tracePlaces"];
        ASSERT_EQ(trace.Size(), places.Size()) << example["name"].GetString();
        for (rapidjson::SizeType i = 0; i < trace.Size(); ++i) {
            ASSERT_TRUE(places[i].IsObject()) << example["name"].GetString();
            // The place is the start of a rule object in the rules text.
            std::size_t line = places[i]["line"].GetUint64();
            std::size_t offset = 0;
            while (--line > 0) {
                offset = rules.find('\n', offset) + 1;
            }
            EXPECT_EQ(rules[offset + places[i]["column"].GetUint64() - 1], '{');
        }
    }
}

TEST_F(WorkbenchApiTest, AnAnswerThatAsksForMoreDataSaysWhich) {
    const HttpResponse answer = api.evaluate(withExamples(
        {{"kind", "edit"}, {"request", exampleRequest("edit-assembly-release-first-pass")}}));
    const auto json = parsed(answer.body);
    EXPECT_STREQ((*json)["verdict"].GetString(), "needs more data");
    ASSERT_EQ((*json)["missing"].Size(), 2U);
    EXPECT_STREQ((*json)["missing"][0].GetString(), "membersOfFamily");
    EXPECT_STREQ((*json)["missing"][1].GetString(), "manualLinkAncestors");
    EXPECT_STREQ((*json)["keywords"]["ObjectFamilyMembers"].GetString(), "MissingData");
    EXPECT_STREQ((*json)["keywords"]["ManualLinkAncestors"].GetString(), "MissingData");
}

TEST_F(WorkbenchApiTest, EvaluateRefusals) {
    const HttpResponse unknownKind =
        api.evaluate(withExamples({{"kind", "edits"}, {"request", "{}"}}));
    EXPECT_EQ(unknownKind.status, 400);
    EXPECT_EQ(unknownKind.body,
              errorBody("unknown request kind \"edits\"; expected edit, edit-before-resolution, "
                        "save, save-before-resolution, link or options"));
    const HttpResponse notLoaded = api.evaluate(body(
        {{"rules", "[]"}, {"datamodel", exampleDataModel()}, {"kind", "edit"}, {"request", "{}"}}));
    EXPECT_EQ(notLoaded.status, 422);
    EXPECT_EQ(notLoaded.body,
              errorBody("the documents do not load, so nothing can be judged by them:\n"
                        "examples/rules.json: Json has fundamental parsing error"));
    // A request that is no JSON is the library's to answer.
    const auto json = parsed(api.evaluate(withExamples({{"kind", "edit"}, {"request", "{"}})).body);
    EXPECT_STREQ((*json)["line"].GetString(),
                 "{\"Result\":\"Failure\",\"ResultComment\":\"Json has fundamental parsing "
                 "error\"}");
    EXPECT_STREQ((*json)["verdict"].GetString(), "refused");
}

TEST_F(WorkbenchApiTest, TheExampleSuitePasses) {
    const auto documents = parsed(api.documents().body);
    const HttpResponse answer =
        api.test(withExamples({{"suite", (*documents)["suite"]["text"].GetString()}}));
    EXPECT_EQ(answer.status, 200);
    const auto json = parsed(answer.body);
    EXPECT_EQ((*json)["passed"].GetUint64(), 25U);
    EXPECT_EQ((*json)["failed"].GetUint64(), 0U);
    ASSERT_EQ((*json)["cases"].Size(), 25U);
    EXPECT_STREQ((*json)["cases"][0]["name"].GetString(), "edit-part-release-first-pass");
    EXPECT_STREQ((*json)["cases"][0]["kind"].GetString(), "edit");
    EXPECT_TRUE((*json)["cases"][0]["passed"].GetBool());
}

TEST_F(WorkbenchApiTest, AFailingCaseTellsTheDifference) {
    const std::string suite =
        "{\"cases\": [{\"name\": \"retitle\", \"kind\": \"edit\", \"request\": {\"objectType\": "
        "\"Part\", \"initialAttributes\": {\"Status\": \"In Work\"}, \"targetAttributes\": "
        "{\"Title\": \"Clamp\"}}, \"expect\": {\"Result\": \"Failure\", \"ForcedSpinup\": "
        "\"x\"}, \"exact\": true}]}";
    const HttpResponse answer = api.test(withExamples({{"suite", suite}}));
    EXPECT_EQ(answer.body,
              "{\"cases\":[{\"name\":\"retitle\",\"kind\":\"edit\",\"passed\":false,"
              "\"expected\":{\"ForcedSpinup\":\"x\",\"Result\":\"Failure\"},\"actual\":{"
              "\"Result\":\"Success\",\"ResultComment\":\"Edit attempt approved\"},"
              "\"warnings\":[\"the request's attribute \\\"Title\\\" is none that the data model "
              "describes for Part\"],"
              "\"mismatches\":[{\"keyword\":\"ForcedSpinup\",\"expected\":\"x\",\"actual\":null},"
              "{\"keyword\":\"Result\",\"expected\":\"Failure\",\"actual\":\"Success\"},"
              "{\"keyword\":\"ResultComment\",\"expected\":null,\"actual\":\"Edit attempt "
              "approved\"}]}],\"passed\":0,\"failed\":1}\n");
}

TEST_F(WorkbenchApiTest, AnAnswerTellsTheNamesThatTheDataModelDoesNotDescribe) {
    const auto answer =
        parsed(api.evaluate(withExamples({{"kind", "edit"},
                                          {"request",
                                           "{\"objectType\": \"Part\", \"initialAttributes\": "
                                           "{\"Status\": \"In Work\"}, \"targetAttributes\": "
                                           "{\"Stauts\": \"Released\"}}"}}))
                   .body);
    EXPECT_STREQ((*answer)["verdict"].GetString(), "approved");
    ASSERT_EQ((*answer)["warnings"].Size(), 1U);
    EXPECT_STREQ((*answer)["warnings"][0].GetString(),
                 "the request's attribute \"Stauts\" is none that the data model describes for "
                 "Part; did you mean \"Status\"?");
    const auto clean =
        parsed(api.evaluate(withExamples({{"kind", "edit"},
                                          {"request",
                                           "{\"objectType\": \"Part\", \"initialAttributes\": "
                                           "{\"Status\": \"In Work\"}, \"targetAttributes\": "
                                           "{\"Owner\": \"design\"}}"}}))
                   .body);
    EXPECT_EQ((*clean)["warnings"].Size(), 0U);
}

TEST_F(WorkbenchApiTest, AKeywordThatNoAnswerHoldsIsRefused) {
    const std::string suite =
        "{\"cases\": [{\"name\": \"one\", \"kind\": \"edit\", \"request\": {}, \"expect\": "
        "{\"Reslt\": \"Failure\"}}]}";
    const HttpResponse answer = api.test(withExamples({{"suite", suite}}));
    EXPECT_EQ(answer.status, 422);
    EXPECT_EQ(answer.body, errorBody("suite the suite: case 1 (one): \"expect\" names \"Reslt\", "
                                     "which no answer holds; did you mean \"Result\"?"));
}

TEST_F(WorkbenchApiTest, ASuiteNamesNoFileToRead) {
    const std::string suite =
        "{\"cases\": [{\"name\": \"one\", \"kind\": \"edit\", \"requestFile\": \"/etc/passwd\", "
        "\"expect\": {}}]}";
    const HttpResponse answer = api.test(withExamples({{"suite", suite}}));
    EXPECT_EQ(answer.status, 422);
    EXPECT_EQ(answer.body,
              errorBody("suite the suite: case 1 (one): \"requestFile\" names a file, which is "
                        "not read here; give the request itself under \"request\""));
    const HttpResponse broken = api.test(withExamples({{"suite", "{\"cases\": ["}}));
    EXPECT_EQ(broken.status, 422);
    EXPECT_EQ(broken.body, errorBody("the suite:1:12: Invalid value."));
    for (const char* suite : {"{}", "[[1]]", "\"cases\"", "{\"cases\": {}}"}) {
        const HttpResponse noCases = api.test(withExamples({{"suite", suite}}));
        EXPECT_EQ(noCases.status, 422) << suite;
        EXPECT_EQ(noCases.body, errorBody("suite the suite needs \"cases\" (a list)")) << suite;
    }
}

TEST_F(WorkbenchApiTest, NothingIsSavedWithoutWrite) {
    const HttpResponse answer = api.save(withExamples());
    EXPECT_EQ(answer.status, 403);
    EXPECT_EQ(answer.body, errorBody("this workbench was started without --write, so it saves no "
                                     "file; download the documents instead"));
}

class WorkbenchSaveTest : public ::testing::Test {
protected:
    WorkbenchSaveTest()
        : folder(std::filesystem::temp_directory_path() /
                 ("tov-workbench-save-" + std::to_string(::getpid()))) {
        std::filesystem::create_directories(folder);
        rules = (folder / "rules.json").string();
        dataModel = (folder / "datamodel.json").string();
        std::ofstream(rules) << exampleRules();
        std::ofstream(dataModel) << exampleDataModel();
        ::chmod(rules.c_str(), 0640);
        workspace = tovwbtest::exampleWorkspace(rules, dataModel, true);
    }
    ~WorkbenchSaveTest() override { std::filesystem::remove_all(folder); }

public:
    WorkbenchSaveTest(const WorkbenchSaveTest&) = delete;
    WorkbenchSaveTest& operator=(const WorkbenchSaveTest&) = delete;

protected:
    std::filesystem::path folder;
    std::string rules;
    std::string dataModel;
    std::unique_ptr<tovwb::Workspace> workspace;
    tovwbtest::FakeRenderer renderer;
};

TEST_F(WorkbenchSaveTest, BothDocumentsAreReplacedWhole) {
    const WorkbenchApi api(*workspace, renderer, "");
    const std::string edited = exampleRules() + "\n";
    const HttpResponse answer =
        api.save(body({{"rules", edited},
                       {"datamodel", "{\"OverwriteLabel\": \"O\", \"structureObjects\": []}"}}));
    EXPECT_EQ(answer.status, 200);
    EXPECT_EQ(answer.body,
              "{\"saved\":[" + std::string("\"") + rules + "\",\"" + dataModel + "\"]}\n");
    EXPECT_EQ(tovwbtest::readFile(rules), edited);
    EXPECT_EQ(tovwbtest::readFile(dataModel),
              "{\"OverwriteLabel\": \"O\", \"structureObjects\": []}");
    struct stat status {};
    ASSERT_EQ(::stat(rules.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0640U);
    // Nothing is left beside them, and the page starts from the saved texts.
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder),
                            std::filesystem::directory_iterator()),
              2);
    const auto json = parsed(api.documents().body);
    EXPECT_EQ(std::string((*json)["rules"]["text"].GetString()), edited);
    EXPECT_TRUE((*json)["write"].GetBool());
}

TEST_F(WorkbenchSaveTest, DocumentsThatDoNotLoadAreNotSaved) {
    const WorkbenchApi api(*workspace, renderer, "");
    const HttpResponse answer = api.save(body({{"rules", "{"}, {"datamodel", exampleDataModel()}}));
    EXPECT_EQ(answer.status, 422);
    EXPECT_EQ(answer.body, errorBody("the documents do not load, so they are not saved:\n" + rules +
                                     ": Json has fundamental parsing error"));
    EXPECT_EQ(tovwbtest::readFile(rules), exampleRules());
}

TEST_F(WorkbenchSaveTest, ARequestNamesNoPath) {
    const WorkbenchApi api(*workspace, renderer, "");
    for (const char* member : {"path", "rulesPath", "file"}) {
        const HttpResponse answer =
            api.save(body({{"rules", "{}"}, {"datamodel", "{}"}, {member, "/tmp/elsewhere.json"}}));
        EXPECT_EQ(answer.status, 400);
        EXPECT_EQ(answer.body, errorBody("unknown member \"" + std::string(member) +
                                         "\": this endpoint takes \"rules\" and \"datamodel\", "
                                         "each a string"));
    }
    EXPECT_EQ(tovwbtest::readFile(rules), exampleRules());
    EXPECT_FALSE(std::filesystem::exists("/tmp/elsewhere.json"));
}

}  // namespace
