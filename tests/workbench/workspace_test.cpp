// What the workbench starts from.
#include "workspace.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "workbench_test_support.h"

namespace {

TEST(Workspace, TheExamplesWhenNoDocumentsAreGiven) {
    const auto workspace = tovwbtest::exampleWorkspace();
    ASSERT_NE(workspace, nullptr);
    EXPECT_EQ(workspace->names().rules, "examples/rules.json");
    EXPECT_EQ(workspace->names().dataModel, "examples/datamodel.json");
    EXPECT_EQ(workspace->files().rules, tovwbtest::kExamples + "/rules.json");
    EXPECT_EQ(workspace->files().dataModel, tovwbtest::kExamples + "/datamodel.json");
    EXPECT_EQ(workspace->suite()->name, "examples/tests.json");
    EXPECT_EQ(workspace->documents().rules, tovwbtest::exampleRules());
    EXPECT_EQ(workspace->documents().dataModel, tovwbtest::exampleDataModel());
    EXPECT_EQ(workspace->examples().size(), 25U);
    EXPECT_FALSE(workspace->writes());
}

TEST(Workspace, TheSuiteHoldsItsRequestsInsteadOfTheirFiles) {
    const auto workspace = tovwbtest::exampleWorkspace();
    ASSERT_TRUE(workspace->suite());
    const auto suite = tovwbtest::parsed(workspace->suite()->text);
    const auto original =
        tovwbtest::parsed(tovwbtest::readFile(tovwbtest::kExamples + "/tests.json"));
    ASSERT_EQ((*suite)["cases"].Size(), (*original)["cases"].Size());
    EXPECT_FALSE(suite->HasMember("rules"));
    for (rapidjson::SizeType i = 0; i < (*suite)["cases"].Size(); ++i) {
        const auto& written = (*suite)["cases"][i];
        const auto& read = (*original)["cases"][i];
        EXPECT_FALSE(written.HasMember("requestFile"));
        EXPECT_EQ(written["name"], read["name"]);
        EXPECT_EQ(written["expect"], read["expect"]);
        const auto request = tovwbtest::parsed(
            tovwbtest::readFile(tovwbtest::kExamples + "/" + read["requestFile"].GetString()));
        EXPECT_EQ(written["request"], *request) << read["name"].GetString();
    }
}

TEST(Workspace, DocumentsThatCannotBeReadStopTheStart) {
    tovwb::WorkspaceOptions options;
    options.maxInputSize = 1 << 20;
    std::string error;
    EXPECT_EQ(tovwb::Workspace::open(options, error), nullptr);
    EXPECT_EQ(error,
              "the example documents cannot be found: name the documents with --rules and --dm");
    options.rulesPath = "/nonexistent/rules.json";
    options.dataModelPath = tovwbtest::kExamples + "/datamodel.json";
    EXPECT_EQ(tovwb::Workspace::open(options, error), nullptr);
    EXPECT_EQ(error,
              "cannot read rules document /nonexistent/rules.json: No such file or directory");
}

TEST(Workspace, ASuiteWhoseRequestIsNoObjectStopsTheStart) {
    const std::filesystem::path folder =
        std::filesystem::temp_directory_path() / ("tov-workspace-" + std::to_string(::getpid()));
    std::filesystem::create_directories(folder);
    std::ofstream(folder / "suite.json")
        << R"({"cases": [{"name": "a", "kind": "edit", "requestFile": "list.json", "expect": {}}]})";
    std::ofstream(folder / "list.json") << "[1, 2]";
    tovwb::WorkspaceOptions options;
    options.examplesFolder = tovwbtest::kExamples;
    options.suitePath = (folder / "suite.json").string();
    options.maxInputSize = 1 << 20;
    std::string error;
    EXPECT_EQ(tovwb::Workspace::open(options, error), nullptr);
    EXPECT_EQ(error, "suite " + options.suitePath + ": the request " +
                         (folder / "list.json").string() +
                         " is no JSON object, which a suite can hold under \"request\"");
    std::filesystem::remove_all(folder);
}

TEST(Workspace, SavesOnlyWithWrite) {
    const auto workspace = tovwbtest::exampleWorkspace();
    std::string error;
    EXPECT_FALSE(workspace->save({"{}", "{}"}, error));
    EXPECT_EQ(error, "this workbench was started without --write, so it saves no file");
    EXPECT_EQ(workspace->documents().rules, tovwbtest::exampleRules());
}

}  // namespace
