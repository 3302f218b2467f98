// Saving a document whole or not at all.
#include "file_replacement.h"

#include <gtest/gtest.h>

#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <string>

#include "workbench_test_support.h"

namespace {

class FileReplacementTest : public ::testing::Test {
protected:
    FileReplacementTest()
        : folder(std::filesystem::temp_directory_path() /
                 ("tov-file-replacement-" + std::to_string(::getpid()))) {
        std::filesystem::create_directories(folder);
        path = (folder / "rules.json").string();
        std::ofstream(path) << "old";
    }
    ~FileReplacementTest() override {
        std::filesystem::permissions(folder, std::filesystem::perms::owner_all);
        std::filesystem::remove_all(folder);
    }

public:
    FileReplacementTest(const FileReplacementTest&) = delete;
    FileReplacementTest& operator=(const FileReplacementTest&) = delete;

protected:
    std::size_t entries() const {
        return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(folder),
                                                      std::filesystem::directory_iterator()));
    }

    std::filesystem::path folder;
    std::string path;
};

TEST_F(FileReplacementTest, TheNewTextReplacesTheOldWithItsPermissions) {
    ::chmod(path.c_str(), 0604);
    std::string error;
    const std::string text = std::string("new\0text", 8) + std::string(1 << 20, 'x');
    ASSERT_TRUE(tovwb::replaceFile(path, text, error)) << error;
    EXPECT_EQ(tovwbtest::readFile(path), text);
    struct stat status {};
    ASSERT_EQ(::stat(path.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0604U);
    EXPECT_EQ(entries(), 1U);
    ASSERT_TRUE(tovwb::replaceFile(path, "", error)) << error;
    EXPECT_EQ(tovwbtest::readFile(path), "");
}

TEST_F(FileReplacementTest, AFileThatIsNotThereIsNotMade) {
    std::string error;
    const std::string missing = (folder / "missing.json").string();
    EXPECT_FALSE(tovwb::replaceFile(missing, "new", error));
    EXPECT_EQ(error, "cannot find " + missing + ": No such file or directory");
    EXPECT_FALSE(std::filesystem::exists(missing));
}

TEST_F(FileReplacementTest, AFolderIsNoDocument) {
    std::string error;
    EXPECT_FALSE(tovwb::replaceFile(folder.string(), "new", error));
    EXPECT_EQ(error, "cannot save " + folder.string() + ": it is no regular file");
}

TEST_F(FileReplacementTest, AWriteThatFailsLeavesTheOldTextAndNoNewFile) {
    // A file size limit makes the write fail for every user, root included.
    const auto previousHandler = std::signal(SIGXFSZ, SIG_IGN);
    rlimit previous{};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &previous), 0);
    rlimit small = previous;
    small.rlim_cur = 10;
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
    std::string error;
    const bool replaced = tovwb::replaceFile(path, std::string(100, 'x'), error);
    ::setrlimit(RLIMIT_FSIZE, &previous);
    std::signal(SIGXFSZ, previousHandler);
    EXPECT_FALSE(replaced);
    EXPECT_EQ(error, "cannot write the new text of " + path + ": File too large");
    EXPECT_EQ(tovwbtest::readFile(path), "old");
    EXPECT_EQ(entries(), 1U);
}

}  // namespace
