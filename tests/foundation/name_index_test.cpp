// The hash of names to places: exact bytes, first place kept, and room made
// when more names come than were announced.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "foundation/name_index.h"

TEST(NameIndex, FindsEachNameAtThePlaceItWasAddedIn) {
    const std::vector<std::string> names = {"Status", "Owner", "attr1", "attr10", "attr11"};
    NameIndex index(names.size());
    for (const std::string& name : names) {
        index.add(name);
    }
    for (std::size_t place = 0; place < names.size(); ++place) {
        EXPECT_EQ(index.find(names[place]), place) << names[place];
    }
}

TEST(NameIndex, MatchesBytesExactly) {
    const std::string status = "Status";
    NameIndex index(1);
    index.add(status);
    EXPECT_EQ(index.find("status"), NameIndex::npos);
    EXPECT_EQ(index.find("Status "), NameIndex::npos);
    EXPECT_EQ(index.find("Statu"), NameIndex::npos);
    EXPECT_EQ(index.find(""), NameIndex::npos);
    EXPECT_EQ(index.find(std::string("Status\0", 7)), NameIndex::npos);
}

TEST(NameIndex, AnEmptyNameIsANameLikeAnyOther) {
    const std::string empty;
    NameIndex index(2);
    EXPECT_EQ(index.find(""), NameIndex::npos);
    index.add(empty);
    EXPECT_EQ(index.find(""), 0U);
}

TEST(NameIndex, ANameAddedTwiceKeepsItsFirstPlace) {
    const std::vector<std::string> names = {"a", "b", "a"};
    NameIndex index(names.size());
    for (const std::string& name : names) {
        index.add(name);
    }
    EXPECT_EQ(index.find("a"), 0U);
    EXPECT_EQ(index.find("b"), 1U);
}

TEST(NameIndex, GrowsBeyondTheCountItWasGiven) {
    std::vector<std::string> names;
    names.reserve(300);
    for (int i = 0; i < 300; ++i) {
        // Long names too, so that more than one word is mixed in.
        names.push_back(i % 2 == 0 ? "attr" + std::to_string(i)
                                   : "a rather long attribute name " + std::to_string(i));
    }
    NameIndex index(1);
    for (const std::string& name : names) {
        index.add(name);
    }
    for (std::size_t place = 0; place < names.size(); ++place) {
        EXPECT_EQ(index.find(names[place]), place) << names[place];
    }
    EXPECT_EQ(index.find("attr1"), NameIndex::npos);
}
