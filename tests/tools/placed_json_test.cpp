// PlacedJson: the place of every value and member name in the text, repeated
// names kept, deep nesting read without recursion, and faults told as the
// program tells them.
#include <gtest/gtest.h>

#include <string>

#include "placed_json.h"

namespace {

TEST(PlacedJson, TellsTheLineAndColumnOfValuesAndNames) {
    tovcli::PlacedJson json;
    std::string error;
    ASSERT_TRUE(
        json.parse("{\"a\": {},\n \"b\": [1, \"x\",\r\n  {\"c\" :null}], \"d\":true}", error));
    const tovjson::Value& root = json.root();
    EXPECT_EQ(json.placeOf(root), "1:1");
    EXPECT_EQ(json.placeOf(root.MemberBegin()->name), "1:2");
    EXPECT_EQ(json.placeOf(root["a"]), "1:7");
    EXPECT_EQ(json.placeOf((root.MemberBegin() + 1)->name), "2:2");
    EXPECT_EQ(json.placeOf(root["b"]), "2:7");
    EXPECT_EQ(json.placeOf(root["b"][0]), "2:8");
    EXPECT_EQ(json.placeOf(root["b"][1]), "2:11");
    EXPECT_EQ(json.placeOf(root["b"][2]), "3:3");
    EXPECT_EQ(json.placeOf(root["b"][2].MemberBegin()->name), "3:4");
    EXPECT_EQ(json.placeOf(root["b"][2]["c"]), "3:9");
    EXPECT_EQ(json.placeOf(root["d"]), "3:21");
    const tovjson::Value other;
    EXPECT_EQ(json.placeOf(other), "");
}

TEST(PlacedJson, KeepsRepeatedNamesEachWithItsPlace) {
    tovcli::PlacedJson json;
    std::string error;
    ASSERT_TRUE(json.parse(R"({"t": {"x": 1}, "t": {"y": 2}})", error));
    const tovjson::Value& root = json.root();
    ASSERT_EQ(root.MemberCount(), 2U);
    const auto places = json.placesOf({&root.MemberBegin()->name, &(root.MemberBegin() + 1)->name,
                                       &(root.MemberBegin() + 1)->value["y"]});
    EXPECT_EQ(places.at(&root.MemberBegin()->name), "1:2");
    EXPECT_EQ(places.at(&(root.MemberBegin() + 1)->name), "1:17");
    EXPECT_EQ(places.at(&(root.MemberBegin() + 1)->value["y"]), "1:28");
}

TEST(PlacedJson, ReadsDeepNestingWithoutRecursion) {
    const std::size_t depth = 100000;
    const std::string text = std::string(depth, '[') + "\"deep\"" + std::string(depth, ']');
    tovcli::PlacedJson json;
    std::string error;
    ASSERT_TRUE(json.parse(text, error)) << error;
    const tovjson::Value* innermost = &json.root();
    while (innermost->IsArray()) {
        innermost = &(*innermost)[0];
    }
    EXPECT_EQ(json.placeOf(*innermost), "1:" + std::to_string(depth + 1));
}

TEST(PlacedJson, TellsWhereTheTextIsNoJson) {
    tovcli::PlacedJson json;
    std::string error;
    EXPECT_FALSE(json.parse("{\"a\":\n  [1,}", error));
    EXPECT_EQ(error, "2:6: Invalid value.");
}

}  // namespace
