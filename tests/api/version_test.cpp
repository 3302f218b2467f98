// The version macros agree with the library's answer and with the build's
// project version, so that none of the three can be bumped alone.
#include "tov/version.h"

#include <gtest/gtest.h>

#include <string>

#include "tov/entry_points.h"

namespace {

TEST(VersionHeader, TheStringIsWhatTheLibraryAnswers) {
    EXPECT_EQ(std::string(TOV_VERSION_STRING), GetTOVVersion());
}

TEST(VersionHeader, TheStringIsMajorDotMinor) {
    EXPECT_EQ(std::string(TOV_VERSION_STRING),
              std::to_string(TOV_VERSION_MAJOR) + "." + std::to_string(TOV_VERSION_MINOR));
}

TEST(VersionHeader, TheNumbersAreTheProjectVersion) {
    EXPECT_EQ(TOV_VERSION_MAJOR, TOV_PROJECT_VERSION_MAJOR);
    EXPECT_EQ(TOV_VERSION_MINOR, TOV_PROJECT_VERSION_MINOR);
}

}  // namespace
