#include "tov/TOVLogger.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "test_support.h"

namespace {

namespace fs = std::filesystem;
using tovtest::TempFolder;

std::int32_t nowInSeconds() {
    return static_cast<std::int32_t>(std::time(nullptr));
}

// The file names a logger may have made between two moments.
std::set<std::string> possibleFileNames(const std::string& folderWithEnding, std::int32_t from,
                                        std::int32_t to) {
    std::set<std::string> names;
    for (std::int32_t second = from; second <= to; ++second) {
        names.insert(folderWithEnding + "TOV_Log_" + std::to_string(second) + ".txt");
    }
    return names;
}

// The timestamps a line may carry when written between two moments.
std::set<std::string> possibleTimestamps(std::time_t from, std::time_t to) {
    std::set<std::string> stamps;
    for (std::time_t second = from; second <= to; ++second) {
        std::tm local{};
        localtime_r(&second, &local);
        std::array<char, 100> text{};
        std::strftime(text.data(), text.size(), "%d/%m/%Y %H:%M:%S", &local);
        stamps.insert(text.data());
    }
    return stamps;
}

std::vector<fs::path> filesIn(const std::string& folder) {
    std::vector<fs::path> files;
    for (const auto& entry : fs::directory_iterator(folder)) {
        files.push_back(entry.path());
    }
    return files;
}

std::string contentsOf(const fs::path& file) {
    std::ifstream in(file, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

// Reads the one file a test's logger wrote into `folder`.
std::string contentsOfTheOnlyLogFile(const std::string& folder) {
    const std::vector<fs::path> files = filesIn(folder);
    EXPECT_EQ(files.size(), 1u);
    if (files.size() != 1) {
        return std::string();
    }
    EXPECT_TRUE(
        std::regex_match(files[0].filename().string(), std::regex(R"(\\TOV_Log_[0-9]+\.txt)")))
        << files[0];
    return contentsOf(files[0]);
}

std::string printedToStdOut(TOVLogger& logger, const char* message, bool* printed) {
    testing::internal::CaptureStdout();
    *printed = logger.printToLog(message);
    // The logger writes with printf and does not flush.
    std::fflush(stdout);
    return testing::internal::GetCapturedStdout();
}

const std::regex kTimestampedLine(R"(([0-9]{2}/[0-9]{2}/[0-9]{4} [0-9]{2}:[0-9]{2}:[0-9]{2}) : )");

// ---------------------------------------------------------------------------
// Naming the log file

TEST(Logger, NewLoggerTakesAFileInTheDefaultFolderWhateverItsDestination) {
    const std::regex inDefaultFolder(R"(.+/\\TOV_Log_[0-9]+\.txt)");
    for (WhereToLog destination : {LogNowhere, LogToConsole, LogToFile}) {
        const std::int32_t before = nowInSeconds();
        const TOVLogger logger(destination);
        const std::int32_t after = nowInSeconds();
        const std::string file = logger.getFile();
        // The default folder ends in a forward slash, so a back-slash follows it.
        EXPECT_TRUE(std::regex_match(file, inDefaultFolder)) << file;
        const std::string::size_type name = file.rfind("TOV_Log_");
        ASSERT_NE(name, std::string::npos);
        EXPECT_EQ(possibleFileNames(file.substr(0, name), before, after).count(file), 1u) << file;
    }
}

TEST(Logger, WhereToLogHasItsNumbers) {
    EXPECT_EQ(static_cast<int>(LogNowhere), 0);
    EXPECT_EQ(static_cast<int>(LogToConsole), 1);
    EXPECT_EQ(static_cast<int>(LogToFile), 2);
    EXPECT_EQ(sizeof(WhereToLog), 4u);
}

TEST(Logger, FolderEndingInALetterGetsABackSlash) {
    TOVLogger logger(LogNowhere);
    const std::int32_t before = nowInSeconds();
    const std::string file = logger.setTOVLoggingOutput("/no/such/folder/logs");
    const std::int32_t after = nowInSeconds();
    EXPECT_EQ(possibleFileNames("/no/such/folder/logs\\", before, after).count(file), 1u) << file;
    EXPECT_EQ(logger.getFile(), file);
}

TEST(Logger, FolderEndingInABackSlashGetsNone) {
    TOVLogger logger(LogNowhere);
    const std::int32_t before = nowInSeconds();
    const std::string file = logger.setTOVLoggingOutput("C:\\logs\\");
    const std::int32_t after = nowInSeconds();
    EXPECT_EQ(possibleFileNames("C:\\logs\\", before, after).count(file), 1u) << file;
}

TEST(Logger, FolderEndingInAForwardSlashGetsABackSlashBehindIt) {
    TOVLogger logger(LogNowhere);
    const std::int32_t before = nowInSeconds();
    const std::string file = logger.setTOVLoggingOutput("/no/such/folder/");
    const std::int32_t after = nowInSeconds();
    EXPECT_EQ(possibleFileNames("/no/such/folder/\\", before, after).count(file), 1u) << file;
}

TEST(Logger, NamingAFolderCreatesNothingOnDisk) {
    const TempFolder folder;
    ASSERT_FALSE(folder.path().empty());
    TOVLogger logger(LogToFile);
    logger.setTOVLoggingOutput(folder.asLoggingFolder());
    logger.setTOVLoggingOutput(folder.path() + "/sub/");
    EXPECT_TRUE(filesIn(folder.path()).empty());
}

// ---------------------------------------------------------------------------
// Choosing the destination

TEST(Logger, EmptyOutputLogsNowhereAndReturnsTheCurrentFile) {
    const TempFolder folder;
    ASSERT_FALSE(folder.path().empty());
    TOVLogger logger(LogToFile);
    const std::string file = logger.setTOVLoggingOutput(folder.asLoggingFolder());

    EXPECT_EQ(logger.setTOVLoggingOutput(""), file);
    EXPECT_EQ(logger.getFile(), file);
    bool printed = true;
    EXPECT_EQ(printedToStdOut(logger, "dropped", &printed), "");
    EXPECT_FALSE(printed);
    EXPECT_TRUE(filesIn(folder.path()).empty());
}

TEST(Logger, LoggerMadeForNowhereDropsEveryMessage) {
    TOVLogger logger(LogNowhere);
    bool printed = true;
    EXPECT_EQ(printedToStdOut(logger, "dropped", &printed), "");
    EXPECT_FALSE(printed);
    EXPECT_FALSE(logger.printToLog(nullptr));
}

TEST(Logger, ConsoleKeywordInAnyCaseLogsToTheConsoleAndKeepsTheFile) {
    for (const char* keyword : {"console", "CONSOLE", "Console", "cOnSoLe"}) {
        TOVLogger logger(LogToFile);
        const std::string file = logger.getFile();
        EXPECT_EQ(logger.setTOVLoggingOutput(keyword), file) << keyword;
        EXPECT_EQ(logger.getFile(), file);
        bool printed = false;
        EXPECT_EQ(printedToStdOut(logger, "hello", &printed), "hello\n") << keyword;
        EXPECT_TRUE(printed);
    }
}

TEST(Logger, WordsLikeTheKeywordAreFolders) {
    TOVLogger logger(LogNowhere);
    const std::int32_t before = nowInSeconds();
    const std::string file = logger.setTOVLoggingOutput("consoles");
    const std::string padded = logger.setTOVLoggingOutput("console ");
    const std::int32_t after = nowInSeconds();
    EXPECT_EQ(possibleFileNames("consoles\\", before, after).count(file), 1u) << file;
    EXPECT_EQ(possibleFileNames("console \\", before, after).count(padded), 1u) << padded;
}

TEST(Logger, FolderAfterConsoleLogsToAFileAgain) {
    const TempFolder folder;
    ASSERT_FALSE(folder.path().empty());
    TOVLogger logger(LogToConsole);
    logger.setTOVLoggingOutput(folder.asLoggingFolder());
    bool printed = false;
    EXPECT_EQ(printedToStdOut(logger, "to the file", &printed), "");
    EXPECT_TRUE(printed);
    EXPECT_EQ(contentsOfTheOnlyLogFile(folder.path()).substr(19), " : to the file\n");
}

// ---------------------------------------------------------------------------
// The console

TEST(Logger, ConsoleMessageWithoutLineFeedGetsOne) {
    TOVLogger logger(LogToConsole);
    bool printed = false;
    EXPECT_EQ(printedToStdOut(logger, "message", &printed), "message\n");
    EXPECT_TRUE(printed);
}

TEST(Logger, ConsoleMessageWithLineFeedGetsNoSecond) {
    TOVLogger logger(LogToConsole);
    bool printed = false;
    EXPECT_EQ(printedToStdOut(logger, "message\n", &printed), "message\n");
    EXPECT_TRUE(printed);
}

TEST(Logger, ConsoleLooksOnlyAtTheLastCharacter) {
    TOVLogger logger(LogToConsole);
    bool printed = false;
    EXPECT_EQ(printedToStdOut(logger, "\nfirst\nsecond", &printed), "\nfirst\nsecond\n");
    EXPECT_EQ(printedToStdOut(logger, "\n", &printed), "\n");
    EXPECT_EQ(printedToStdOut(logger, "two\n\n", &printed), "two\n\n");
}

TEST(Logger, ConsoleWritesNothingForAnEmptyOrNullMessage) {
    TOVLogger logger(LogToConsole);
    bool printed = false;
    EXPECT_EQ(printedToStdOut(logger, "", &printed), "");
    EXPECT_TRUE(printed);
    printed = false;
    EXPECT_EQ(printedToStdOut(logger, nullptr, &printed), "");
    EXPECT_TRUE(printed);
}

TEST(Logger, ConsoleWritesTheMessageAsItIs) {
    TOVLogger logger(LogToConsole);
    bool printed = false;
    // No timestamp, and a percent sign is not taken as a format.
    EXPECT_EQ(printedToStdOut(logger, "100% %s done", &printed), "100% %s done\n");
}

// ---------------------------------------------------------------------------
// The file

TEST(Logger, FileLineIsTimestampThenMessage) {
    const TempFolder folder;
    ASSERT_FALSE(folder.path().empty());
    TOVLogger logger(LogToFile);
    logger.setTOVLoggingOutput(folder.asLoggingFolder());

    const std::time_t before = std::time(nullptr);
    EXPECT_TRUE(logger.printToLog("Rules loaded"));
    const std::time_t after = std::time(nullptr);

    const std::string contents = contentsOfTheOnlyLogFile(folder.path());
    std::smatch match;
    ASSERT_TRUE(std::regex_search(contents, match, kTimestampedLine,
                                  std::regex_constants::match_continuous))
        << contents;
    EXPECT_EQ(possibleTimestamps(before, after).count(match[1].str()), 1u) << contents;
    EXPECT_EQ(contents, match[1].str() + " : Rules loaded\n");
}

TEST(Logger, FileMessageEndingInALineFeedGetsASecondOne) {
    const TempFolder folder;
    ASSERT_FALSE(folder.path().empty());
    TOVLogger logger(LogToFile);
    logger.setTOVLoggingOutput(folder.asLoggingFolder());
    EXPECT_TRUE(logger.printToLog("message\n"));

    const std::string contents = contentsOfTheOnlyLogFile(folder.path());
    EXPECT_TRUE(std::regex_match(contents, std::regex(R"([0-9/]{10} [0-9:]{8} : message\n\n)")))
        << contents;
}

TEST(Logger, FileMessageBeginningWithALineFeedLeavesTheTimestampAlone) {
    const TempFolder folder;
    ASSERT_FALSE(folder.path().empty());
    TOVLogger logger(LogToFile);
    logger.setTOVLoggingOutput(folder.asLoggingFolder());
    EXPECT_TRUE(logger.printToLog("\nAll_transition_values: {\"objectType\":\"Part\"}"));

    std::istringstream lines(contentsOfTheOnlyLogFile(folder.path()));
    std::vector<std::string> read;
    for (std::string line; std::getline(lines, line);) {
        read.push_back(line);
    }
    ASSERT_EQ(read.size(), 2u);
    EXPECT_TRUE(std::regex_match(
        read[0], std::regex(R"([0-9]{2}/[0-9]{2}/[0-9]{4} [0-9]{2}:[0-9]{2}:[0-9]{2} : )")))
        << read[0];
    EXPECT_EQ(read[1], "All_transition_values: {\"objectType\":\"Part\"}");
}

TEST(Logger, FileMessagesAreAppendedInOrder) {
    const TempFolder folder;
    ASSERT_FALSE(folder.path().empty());
    TOVLogger logger(LogToFile);
    logger.setTOVLoggingOutput(folder.asLoggingFolder());
    EXPECT_TRUE(logger.printToLog("first"));
    // Each message reaches the file when the call returns.
    EXPECT_EQ(contentsOfTheOnlyLogFile(folder.path()).substr(19), " : first\n");
    EXPECT_TRUE(logger.printToLog("second"));
    EXPECT_TRUE(logger.printToLog(""));

    std::istringstream lines(contentsOfTheOnlyLogFile(folder.path()));
    std::vector<std::string> read;
    for (std::string line; std::getline(lines, line);) {
        read.push_back(line);
    }
    ASSERT_EQ(read.size(), 3u);
    EXPECT_EQ(read[0].substr(19), " : first");
    EXPECT_EQ(read[1].substr(19), " : second");
    EXPECT_EQ(read[2].substr(19), " : ");
}

TEST(Logger, FileKeepsWhatItHeldBefore) {
    const TempFolder folder;
    ASSERT_FALSE(folder.path().empty());
    TOVLogger logger(LogToFile);
    const std::string file = logger.setTOVLoggingOutput(folder.asLoggingFolder());
    {
        std::ofstream out(file, std::ios::binary);
        out << "earlier\n";
    }
    EXPECT_TRUE(logger.printToLog("later"));
    const std::string contents = contentsOf(file);
    EXPECT_EQ(contents.substr(0, 8), "earlier\n");
    EXPECT_EQ(contents.substr(8 + 19), " : later\n");
}

TEST(Logger, FileWritesTheMessageAsItIs) {
    const TempFolder folder;
    ASSERT_FALSE(folder.path().empty());
    TOVLogger logger(LogToFile);
    logger.setTOVLoggingOutput(folder.asLoggingFolder());
    EXPECT_TRUE(logger.printToLog("50% %d"));
    EXPECT_EQ(contentsOfTheOnlyLogFile(folder.path()).substr(19), " : 50% %d\n");
}

TEST(Logger, MissingFolderMakesPrintingFailQuietly) {
    const TempFolder folder;
    ASSERT_FALSE(folder.path().empty());
    TOVLogger logger(LogToFile);
    logger.setTOVLoggingOutput(folder.path() + "/missing/");
    bool printed = true;
    EXPECT_EQ(printedToStdOut(logger, "lost", &printed), "");
    EXPECT_FALSE(printed);
    EXPECT_TRUE(filesIn(folder.path()).empty());
}

TEST(Logger, NewFolderStartsANewFileAndTheOldOneStays) {
    const TempFolder folder;
    ASSERT_FALSE(folder.path().empty());
    ASSERT_TRUE(fs::create_directory(folder.path() + "/a"));
    ASSERT_TRUE(fs::create_directory(folder.path() + "/b"));
    TOVLogger logger(LogToFile);
    const std::string first = logger.setTOVLoggingOutput(folder.path() + "/a/");
    EXPECT_TRUE(logger.printToLog("one"));
    const std::string second = logger.setTOVLoggingOutput(folder.path() + "/b/");
    EXPECT_NE(first, second);
    EXPECT_TRUE(logger.printToLog("two"));

    EXPECT_EQ(contentsOfTheOnlyLogFile(folder.path() + "/a").substr(19), " : one\n");
    EXPECT_EQ(contentsOfTheOnlyLogFile(folder.path() + "/b").substr(19), " : two\n");
}

TEST(Logger, CopyWritesWhereTheOriginalWrites) {
    const TempFolder folder;
    ASSERT_FALSE(folder.path().empty());
    TOVLogger original(LogToFile);
    original.setTOVLoggingOutput(folder.asLoggingFolder());
    const TOVLogger copy(original);
    EXPECT_EQ(copy.getFile(), original.getFile());

    TOVLogger assigned(LogNowhere);
    assigned = original;
    EXPECT_EQ(assigned.getFile(), original.getFile());
    EXPECT_TRUE(assigned.printToLog("through the copy"));
    EXPECT_EQ(contentsOfTheOnlyLogFile(folder.path()).substr(19), " : through the copy\n");
}

}  // namespace
