// The sixteen request functions: what each writes to the log, in which order,
// and what it answers. While a functionality has no controller in the factory,
// a call must come back with the default response and a factory line in the
// log; once it has one, an empty input must come back as insufficient. The
// tests check whichever of the two holds, exactly.
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "frame/input_labels.h"
#include "test_support.h"
#include "tov/TOVActionController.h"
#include "tov/TOVCoreDataControllers.h"
#include "tov/TOVFunctionality.h"
#include "tov/TOVLifecycleBusinessRules.h"
#include "tov/TOVResponse.h"
#include "tov/TOVTransactionController.h"
#include "tov/TOV_DMStructure.h"
#include "tov/entry_points.h"

namespace {

namespace fs = std::filesystem;

using StringMap = std::map<std::string, std::string>;
using Lines = std::vector<std::string>;
using RequestFunction = TOVResponse (*)(const std::string&, TOVCoreDataControllers*);

const char* const kDefaultSingleString = R"({"Result":"Failure","ResultComment":""})";
const char* const kInsufficientSingleString =
    R"({"Result":"Failure","ResultComment":"Insufficient input data"})";
// Stands in for the real timestamp when log file lines are compared.
const char* const kStamp = "<timestamp> : ";

struct RequestFunctionCase {
    const char* name;
    RequestFunction function;
    TOVFunctionality functionality;
    bool loadsDocument;
    bool fromFile;
    const char* inputTitle;
    const char* resultTitle;
};

std::ostream& operator<<(std::ostream& out, const RequestFunctionCase& request) {
    return out << request.name;
}

const std::vector<RequestFunctionCase> kRequestFunctions = {
    {"InitializeTOVRules", InitializeTOVRules, TOVFunctionality_InitializeRules, true, false,
     "\nInitializing TOV Rules input=", "Initializing TOV Rules result="},
    {"InitializeTOVRulesFromFile", InitializeTOVRulesFromFile, TOVFunctionality_InitializeRules,
     true, true, "\nInitializing TOV Rules input=", "Initializing TOV Rules result="},
    {"InitializeTOV_DMInfo", InitializeTOV_DMInfo, TOVFunctionality_InitializeDMInfo, true, false,
     "\nInitializing DM Info attempt input=", "Initializing DM Info attempt result="},
    {"InitializeTOV_DMInfoFromFile", InitializeTOV_DMInfoFromFile,
     TOVFunctionality_InitializeDMInfo, true, true,
     "\nInitializing DM Info attempt input=", "Initializing DM Info attempt result="},
    {"EvaluateTOVEditAttemptBeforeConflictResolution",
     EvaluateTOVEditAttemptBeforeConflictResolution,
     TOVFunctionality_EditAttemptBeforeConflictResolution, false, false,
     "\nEvaluating Edit attempt before conflict resolution input=",
     "Evaluating Edit attempt before conflict resolution result="},
    {"EvaluateTOVEditAttemptBeforeConflictResolutionFromFile",
     EvaluateTOVEditAttemptBeforeConflictResolutionFromFile,
     TOVFunctionality_EditAttemptBeforeConflictResolution, false, true,
     "\nEvaluating Edit attempt before conflict resolution input=",
     "Evaluating Edit attempt before conflict resolution result="},
    {"EvaluateTOVEditAttempt", EvaluateTOVEditAttempt, TOVFunctionality_EditAttempt, false, false,
     "\nEvaluating Edit attempt input=", "Evaluating Edit attempt result="},
    {"EvaluateTOVEditAttemptFromFile", EvaluateTOVEditAttemptFromFile, TOVFunctionality_EditAttempt,
     false, true, "\nEvaluating Edit attempt input=", "Evaluating Edit attempt result="},
    {"EvaluateTOVSaveReprFileAttemptBeforeConflictResolution",
     EvaluateTOVSaveReprFileAttemptBeforeConflictResolution,
     TOVFunctionality_SaveReprFileAttemptBeforeConflictResolution, false, false,
     "\nEvaluating save repr.file attempt before conflict resolution input=",
     "Evaluating save repr.file attempt before conflict resolution result="},
    {"EvaluateTOVSaveReprFileAttemptBeforeConflictResolutionFromFile",
     EvaluateTOVSaveReprFileAttemptBeforeConflictResolutionFromFile,
     TOVFunctionality_SaveReprFileAttemptBeforeConflictResolution, false, true,
     "\nEvaluating save repr.file attempt before conflict resolution input=",
     "Evaluating save repr.file attempt before conflict resolution result="},
    {"EvaluateTOVSaveReprFileAttempt", EvaluateTOVSaveReprFileAttempt,
     TOVFunctionality_SaveReprFileAttempt, false, false,
     "\nEvaluating save repr.file attempt input=", "Evaluating save repr.file attempt result="},
    {"EvaluateTOVSaveReprFileAttemptFromFile", EvaluateTOVSaveReprFileAttemptFromFile,
     TOVFunctionality_SaveReprFileAttempt, false, true,
     "\nEvaluating save repr.file attempt input=", "Evaluating save repr.file attempt result="},
    {"EvaluateTOVProperConflictResolutionOptions", EvaluateTOVProperConflictResolutionOptions,
     TOVFunctionality_ProperConflictResolutionOptions, false, false,
     "\nRequesting proper conflict resolutions options input=",
     "Requesting proper conflict resolutions options result="},
    {"EvaluateTOVProperConflictResolutionOptionsFromFile",
     EvaluateTOVProperConflictResolutionOptionsFromFile,
     TOVFunctionality_ProperConflictResolutionOptions, false, true,
     "\nRequesting proper conflict resolutions options input=",
     "Requesting proper conflict resolutions options result="},
    {"EvaluateTOVManualLinkCreation", EvaluateTOVManualLinkCreation,
     TOVFunctionality_ManualLinkCreation, false, false,
     "\nEvaluating Manual Link creation attempt input=",
     "Evaluating Manual Link creation attempt result="},
    {"EvaluateTOVManualLinkCreationFromFile", EvaluateTOVManualLinkCreationFromFile,
     TOVFunctionality_ManualLinkCreation, false, true,
     "\nEvaluating Manual Link creation attempt input=",
     "Evaluating Manual Link creation attempt result="},
};

// Asks the factory, on a silent throwaway core data, whether the functionality
// has a controller yet.
bool factoryHasControllerFor(TOVFunctionality functionality) {
    TOVCoreDataControllers scratch;
    scratch.initializeByMalloc();
    setTOVLoggingFolder("", &scratch);
    TOVActionController* controller = createProperController(functionality, StringMap{}, &scratch);
    const bool found = controller != nullptr;
    delete controller;
    return found;
}

std::string factoryMessage(TOVFunctionality functionality) {
    return "ATTENTION!!! YOU FORGOT TO ADD " + std::to_string(static_cast<int>(functionality)) +
           " IN THE FACTORY!!";
}

std::string quoted(const std::string& text) {
    return "\"" + text + "\"";
}

// A plain Initialize keeps its document out of the log; every other function
// logs the text or path it was given.
bool logsItsInput(const RequestFunctionCase& request) {
    return !request.loadsDocument || request.fromFile;
}

// The log messages a call writes, in order, while its functionality has no
// controller.
Lines messagesWithoutController(const RequestFunctionCase& request, const std::string& input) {
    Lines messages;
    if (logsItsInput(request)) {
        messages.push_back(request.inputTitle + quoted(input));
    }
    messages.push_back(factoryMessage(request.functionality));
    messages.push_back(request.resultTitle + quoted(kDefaultSingleString));
    return messages;
}

// A message becomes one file line per line of its text, the first behind the
// timestamp.
Lines asFileLines(const Lines& messages) {
    Lines lines;
    for (const std::string& message : messages) {
        std::istringstream text(kStamp + message);
        std::string line;
        while (std::getline(text, line)) {
            lines.push_back(line);
        }
    }
    return lines;
}

void expectDefaultResponse(const TOVResponse& response) {
    EXPECT_FALSE(response.getGeneralResult());
    EXPECT_EQ(response.getGeneralResultComment(), "");
    EXPECT_EQ(response.getStringStringMapOfResponse(), (StringMap{{"ResultComment", ""}}));
    EXPECT_EQ(response.turnResponseIntoASingleString(), kDefaultSingleString);
}

void expectInsufficientResponse(const TOVResponse& response) {
    EXPECT_FALSE(response.getGeneralResult());
    EXPECT_EQ(response.getGeneralResultComment(), "Insufficient input data");
    EXPECT_EQ(response.getStringStringMapOfResponse(),
              (StringMap{{"ResultComment", "Insufficient input data"}}));
    EXPECT_EQ(response.turnResponseIntoASingleString(), kInsufficientSingleString);
}

// With a controller, what it logs in between is its own business; the frame
// still owns the first line and the response in its last four.
void expectFrameAroundControllerLog(const Lines& lines, const Lines& head,
                                    const RequestFunctionCase& request, const TOVResponse& response,
                                    const std::string& stamp) {
    const std::string single = response.turnResponseIntoASingleString();
    ASSERT_GE(lines.size(), head.size() + 5);
    EXPECT_EQ(Lines(lines.begin(), lines.begin() + static_cast<long>(head.size())), head);
    const std::size_t n = lines.size();
    EXPECT_EQ(lines[n - 5], stamp + "*************TOVResponse******************");
    EXPECT_EQ(lines[n - 3], stamp + "*************JNI_TOVResponse******************");
    EXPECT_EQ(lines[n - 2], stamp + single);
    EXPECT_EQ(lines[n - 1], stamp + request.resultTitle + quoted(single));
}

Lines splitLines(const std::string& text) {
    Lines lines;
    std::istringstream stream(text);
    std::string line;
    while (std::getline(stream, line)) {
        lines.push_back(line);
    }
    return lines;
}

// A private core data that logs into a fresh folder of its own.
class EntryPointsFileLogTest : public ::testing::TestWithParam<RequestFunctionCase> {
protected:
    void SetUp() override {
        ASSERT_FALSE(scratch.path().empty());
        folder = scratch.asLoggingFolder();
        coreData.initializeByMalloc();
        logFile = setTOVLoggingFolder(folder, &coreData);
    }

    // The whole log, with each timestamp replaced by kStamp. The folder must
    // hold exactly the one file the logger named.
    Lines readLog() {
        std::vector<fs::path> files;
        for (const auto& entry : fs::directory_iterator(folder)) {
            files.push_back(entry.path());
        }
        EXPECT_EQ(files.size(), 1u);
        if (files.size() != 1) {
            return {};
        }
        EXPECT_EQ(files[0].string(), logFile);
        std::ifstream in(files[0], std::ios::binary);
        std::ostringstream content;
        content << in.rdbuf();
        const std::string text = content.str();
        EXPECT_TRUE(text.empty() || text.back() == '\n');

        static const std::regex stamped(R"(^\d{2}/\d{2}/\d{4} \d{2}:\d{2}:\d{2} : ([\s\S]*)$)");
        Lines lines;
        for (const std::string& line : splitLines(text)) {
            std::smatch match;
            lines.push_back(std::regex_match(line, match, stamped) ? kStamp + match[1].str()
                                                                   : line);
        }
        return lines;
    }

    const tovtest::TempFolder scratch;
    std::string folder;
    std::string logFile;
    TOVCoreDataControllers coreData;
};

TEST_P(EntryPointsFileLogTest, LogsInputThenResultAroundTheRoad) {
    const RequestFunctionCase& request = GetParam();
    const std::string input = request.fromFile ? "/nonexistent/tov/request.json"
                                               : R"({"objectType":"Part","marker":"unique"})";

    const TOVResponse response = request.function(input, &coreData);
    const Lines lines = readLog();

    if (!factoryHasControllerFor(request.functionality)) {
        EXPECT_EQ(lines, asFileLines(messagesWithoutController(request, input)));
        expectDefaultResponse(response);
    } else {
        const Lines head =
            logsItsInput(request) ? asFileLines({request.inputTitle + quoted(input)}) : Lines{};
        expectFrameAroundControllerLog(lines, head, request, response, kStamp);
    }
    if (!logsItsInput(request)) {
        for (const std::string& line : lines) {
            EXPECT_EQ(line.find("unique"), std::string::npos) << line;
        }
    }
}

TEST_P(EntryPointsFileLogTest, EmptyInputFails) {
    const RequestFunctionCase& request = GetParam();

    const TOVResponse response = request.function("", &coreData);
    const Lines lines = readLog();

    if (!factoryHasControllerFor(request.functionality)) {
        expectDefaultResponse(response);
        EXPECT_EQ(lines, asFileLines(messagesWithoutController(request, "")));
    } else {
        expectInsufficientResponse(response);
        const Lines head =
            logsItsInput(request) ? asFileLines({request.inputTitle + quoted("")}) : Lines{};
        expectFrameAroundControllerLog(lines, head, request, response, kStamp);
    }
}

TEST_P(EntryPointsFileLogTest, InputLineIsATimestampLineThenTheTitleLine) {
    const RequestFunctionCase& request = GetParam();
    request.function("x", &coreData);
    const Lines lines = readLog();
    // The title without its leading line feed.
    const std::string titleText = request.inputTitle + 1;

    if (logsItsInput(request)) {
        ASSERT_GE(lines.size(), 2u);
        EXPECT_EQ(lines[0], kStamp);
        EXPECT_EQ(lines[1], titleText + "\"x\"");
    } else {
        ASSERT_FALSE(lines.empty());
        EXPECT_NE(lines[0], kStamp);
        for (const std::string& line : lines) {
            EXPECT_EQ(line.find(titleText), std::string::npos) << line;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(EntryPoints, EntryPointsFileLogTest,
                         ::testing::ValuesIn(kRequestFunctions),
                         [](const ::testing::TestParamInfo<RequestFunctionCase>& info) {
                             return std::string(info.param.name);
                         });

// The same private core data, logging to standard output instead.
class EntryPointsConsoleLogTest : public ::testing::TestWithParam<RequestFunctionCase> {
protected:
    void SetUp() override {
        coreData.initializeByMalloc();
        setTOVLoggingFolder("console", &coreData);
    }

    // Returns what the call printed; the logger uses printf, hence the flushes.
    std::string callCapturingStdout(const std::string& input, TOVResponse& response) {
        std::fflush(stdout);
        testing::internal::CaptureStdout();
        response = GetParam().function(input, &coreData);
        std::fflush(stdout);
        return testing::internal::GetCapturedStdout();
    }

    TOVCoreDataControllers coreData;
};

TEST_P(EntryPointsConsoleLogTest, GivesTheSameLinesWithoutTimestamps) {
    const RequestFunctionCase& request = GetParam();
    const std::string input = request.fromFile ? "/nonexistent/tov/request.json" : "[1,2]";

    TOVResponse response;
    const std::string printed = callCapturingStdout(input, response);

    if (!factoryHasControllerFor(request.functionality)) {
        EXPECT_EQ(printed, tovtest::asConsoleLines(messagesWithoutController(request, input)));
        expectDefaultResponse(response);
    } else {
        const Lines head =
            logsItsInput(request) ? splitLines(request.inputTitle + quoted(input)) : Lines{};
        expectFrameAroundControllerLog(splitLines(printed), head, request, response, "");
    }
}

TEST_P(EntryPointsConsoleLogTest, EmptyInputFails) {
    const RequestFunctionCase& request = GetParam();

    TOVResponse response;
    const std::string printed = callCapturingStdout("", response);

    if (!factoryHasControllerFor(request.functionality)) {
        expectDefaultResponse(response);
        EXPECT_EQ(printed, tovtest::asConsoleLines(messagesWithoutController(request, "")));
    } else {
        expectInsufficientResponse(response);
    }
}

TEST_P(EntryPointsConsoleLogTest, SilentLoggerPrintsNothing) {
    setTOVLoggingFolder("", &coreData);
    TOVResponse response;
    EXPECT_EQ(callCapturingStdout("", response), "");
    EXPECT_FALSE(response.getGeneralResult());
}

INSTANTIATE_TEST_SUITE_P(EntryPoints, EntryPointsConsoleLogTest,
                         ::testing::ValuesIn(kRequestFunctions),
                         [](const ::testing::TestParamInfo<RequestFunctionCase>& info) {
                             return std::string(info.param.name);
                         });

// ---------------------------------------------------------------------------

TEST(EntryPointsVersionTest, IsOnePointOneWithoutAnyCoreData) {
    EXPECT_EQ(GetTOVVersion(), "1.1");
    EXPECT_EQ(GetTOVVersion(), "1.1");
}

TEST(EntryPointsLogFileTest, LogLandsInTheFolderUnderABackSlashedTimedName) {
    const tovtest::TempFolder scratch;
    ASSERT_FALSE(scratch.path().empty());
    const std::string folder = scratch.asLoggingFolder();

    TOVCoreDataControllers coreData;
    coreData.initializeByMalloc();
    const auto before = static_cast<long long>(std::time(nullptr));
    const std::string file = setTOVLoggingFolder(folder, &coreData);
    const auto after = static_cast<long long>(std::time(nullptr));
    EvaluateTOVEditAttempt("", &coreData);

    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder)) {
        names.push_back(entry.path().filename().string());
    }
    ASSERT_EQ(names.size(), 1u);
    std::smatch match;
    ASSERT_TRUE(std::regex_match(names[0], match, std::regex(R"(^\\TOV_Log_(\d+)\.txt$)")))
        << names[0];
    const long long seconds = std::stoll(match[1].str());
    EXPECT_GE(seconds, before);
    EXPECT_LE(seconds, after);
    EXPECT_EQ(file, folder + names[0]);
}

TEST(EntryPointsCoreDataTest, CallsLeaveTheCoreDataPointersAlone) {
    TOVCoreDataControllers coreData;
    coreData.initializeByMalloc();
    setTOVLoggingFolder("", &coreData);
    const auto* rules = coreData.getRules();
    const auto* dmInfo = coreData.getDmInfo();
    const auto* logger = coreData.getLogger();

    for (const RequestFunctionCase& request : kRequestFunctions) {
        request.function("", &coreData);
    }
    EXPECT_EQ(coreData.getRules(), rules);
    EXPECT_EQ(coreData.getDmInfo(), dmInfo);
    EXPECT_EQ(coreData.getLogger(), logger);
}

// The labels under which each front desk files its input for its controller.
TEST(EntryPointsLabels, EveryRequestKindHasItsExactLabel) {
    EXPECT_STREQ(kLabelAllRules, "All_TOV_rules");
    EXPECT_STREQ(kLabelAllDMInfo, "All_DM_Info");
    EXPECT_STREQ(kLabelTransitionData, "All_transition_values");
    EXPECT_STREQ(kLabelConflictsResolutionOptionsQuery, "Conflicts_Resolution_Options_query_data");
    EXPECT_STREQ(kLabelLinkCreationData, "All_link_creation_values");
    EXPECT_STREQ(kLabelInputIsFilepath, "Input_is_filepath");
}

// ---------------------------------------------------------------------------
// A path that is no regular file: refused at once, in the words of a path
// that cannot be read.

const char* const kUnreadableSingleString =
    R"({"Result":"Failure","ResultComment":"Json has fundamental parsing error"})";

std::vector<RequestFunctionCase> fromFileFunctions() {
    std::vector<RequestFunctionCase> functions;
    for (const RequestFunctionCase& request : kRequestFunctions) {
        if (request.fromFile) {
            functions.push_back(request);
        }
    }
    return functions;
}

// Ends the test program if a call blocks, so that a regression fails the
// suite instead of hanging it. Only async-signal-safe calls here.
void giveUpOnABlockedCall(int /*signal*/) {
    constexpr std::string_view message = "A call on a path that is no regular file blocked.\n";
    const ssize_t ignored = write(STDERR_FILENO, message.data(), message.size());
    static_cast<void>(ignored);
    _exit(1);
}

class BlockedCallGuard : public ::testing::Test {
protected:
    static constexpr unsigned kSecondsBeforeGivingUp = 10;

    void SetUp() override {
        std::signal(SIGALRM, giveUpOnABlockedCall);
        alarm(kSecondsBeforeGivingUp);
    }

    void TearDown() override {
        alarm(0);
        std::signal(SIGALRM, SIG_DFL);
    }
};

class EntryPointsNonRegularFileTest : public BlockedCallGuard,
                                      public ::testing::WithParamInterface<RequestFunctionCase> {
protected:
    void SetUp() override {
        BlockedCallGuard::SetUp();
        ASSERT_FALSE(scratch.path().empty());
        coreData.initializeByMalloc();
        setTOVLoggingFolder("", &coreData);
    }

    std::string answerFor(const std::string& path) {
        return GetParam().function(path, &coreData).turnResponseIntoASingleString();
    }

    const tovtest::TempFolder scratch;
    TOVCoreDataControllers coreData;
};

TEST_P(EntryPointsNonRegularFileTest, PathThatDoesNotExistIsUnreadable) {
    EXPECT_EQ(answerFor(scratch.path() + "/absent.json"), kUnreadableSingleString);
}

TEST_P(EntryPointsNonRegularFileTest, FifoWithoutWriterIsRefusedAtOnce) {
    const std::string fifo = scratch.path() + "/request.fifo";
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    EXPECT_EQ(answerFor(fifo), kUnreadableSingleString);
}

TEST_P(EntryPointsNonRegularFileTest, EndlessDeviceIsRefused) {
    EXPECT_EQ(answerFor("/dev/zero"), kUnreadableSingleString);
}

TEST_P(EntryPointsNonRegularFileTest, FolderIsRefused) {
    EXPECT_EQ(answerFor(scratch.path()), kUnreadableSingleString);
}

TEST_P(EntryPointsNonRegularFileTest, SymbolicLinkToARegularFileIsFollowed) {
    const tovtest::TempFile request("[]");
    const std::string link = scratch.path() + "/link.json";
    ASSERT_EQ(symlink(request.path.c_str(), link.c_str()), 0);
    // The file is read: its root is no object, which gives the same words.
    EXPECT_EQ(answerFor(link), kUnreadableSingleString);
}

INSTANTIATE_TEST_SUITE_P(EntryPoints, EntryPointsNonRegularFileTest,
                         ::testing::ValuesIn(fromFileFunctions()),
                         [](const ::testing::TestParamInfo<RequestFunctionCase>& info) {
                             return std::string(info.param.name);
                         });

using EntryPointsNonRegularFileLoads = BlockedCallGuard;

TEST_F(EntryPointsNonRegularFileLoads, FifoEmptiesTheStoresLikeAnyFailedLoad) {
    const tovtest::TempFolder scratch;
    ASSERT_FALSE(scratch.path().empty());
    const std::string fifo = scratch.path() + "/document.fifo";
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    const tovtest::TempFile rules(
        R"({"transitions":{"Part":[{"attribute":"Status","fromValue":"A","toValue":["B"]}]}})");
    const tovtest::TempFile dmInfo(
        R"({"OverwriteLabel":"Overwrite","structureObjects":[{"name":"Part",)"
        R"("dmObjectType":"DMITEM","attributes":[{"name":"Number","type":"REGULAR",)"
        R"("primary":true}]}]})");
    tovtest::PrivateCore core;
    ASSERT_TRUE(InitializeTOVRulesFromFile(rules.path, core.get()).getGeneralResult());
    ASSERT_TRUE(InitializeTOV_DMInfoFromFile(dmInfo.path, core.get()).getGeneralResult());

    EXPECT_EQ(InitializeTOVRulesFromFile(fifo, core.get()).turnResponseIntoASingleString(),
              kUnreadableSingleString);
    EXPECT_EQ(InitializeTOV_DMInfoFromFile(fifo, core.get()).turnResponseIntoASingleString(),
              kUnreadableSingleString);
    EXPECT_FALSE(core.rules()->existAnyRules());
    EXPECT_FALSE(core.dmInfo()->existAnyInfo());
}

}  // namespace
