#include "tov/string_helpers.h"

#include <gtest/gtest.h>

TEST(StringHelpers, ComparesIgnoringCase) {
    EXPECT_TRUE(areStringsEqualSimple("abc", "ABC"));
    EXPECT_FALSE(areStringsEqualSimple("abc", "abcd"));
    EXPECT_TRUE(areStringsEqualSimple("", ""));
}
