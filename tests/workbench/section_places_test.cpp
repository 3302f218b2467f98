// Where the sections of a document and the rules in them begin, for findings
// that name only their section and trace steps that name a rule by its place.
#include "section_places.h"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

namespace {

using Places = std::map<std::string, std::string>;
using RulePlaces = std::map<std::string, std::vector<std::string>>;

TEST(DocumentPlaces, EachTopLevelKeyWithItsLineAndColumn) {
    const std::string text =
        "{\n  \"transitions\": {\"Part\": [{\"attribute\": \"Status\"}]},\n"
        "\t\"triggers\" :{},   \"x\\\"y\": [1, {\"inner\": 2}],\n\"last\": null\n}";
    EXPECT_EQ(
        tovwb::documentPlaces(text).sections,
        (Places{{"transitions", "2:3"}, {"triggers", "3:2"}, {"x\"y", "3:20"}, {"last", "4:1"}}));
}

TEST(DocumentPlaces, ColumnsCountBytes) {
    EXPECT_EQ(tovwb::documentPlaces("{\"\xc3\xa9t\xc3\xa9\": 1, \"b\": 2}").sections,
              (Places{{"\xc3\xa9t\xc3\xa9", "1:2"}, {"b", "1:14"}}));
}

TEST(DocumentPlaces, TheFirstOfTwoNamesCounts) {
    EXPECT_EQ(tovwb::documentPlaces("{\"a\": 1,\n\"a\": 2}").sections, (Places{{"a", "1:2"}}));
}

TEST(DocumentPlaces, TheRulesOfASectionInDocumentOrderAcrossObjectTypes) {
    const std::string text =
        "{\n"
        "  \"transitions\": {\n"
        "    \"Part\": [\n"
        "      {\"attribute\": \"Status\", \"toValue\": [\"a\", {\"deep\": [1]}]},\n"
        "      { \"attribute\": \"Owner\" }\n"
        "    ],\n"
        "    \"ALL\": [{}, 7]\n"
        "  },\n"
        "  \"triggers\": {\"Part\": []},\n"
        "  \"notes\": [[{\"not\": \"a rule\"}]],\n"
        "  \"transitions\": {\"Part\": [{\"a repeated section\": \"does not count\"}]}\n"
        "}\n";
    EXPECT_EQ(tovwb::documentPlaces(text).rules,
              (RulePlaces{{"transitions", {"4:7", "5:7", "7:13", "7:17"}}}));
}

TEST(DocumentPlaces, RulesOfEveryJsonTypeBeginWhereTheyAreWritten) {
    const std::string text =
        "{\"s\": {\"T\": [{}, [], \"x\", 12.5e3, -1, true, false, null, {\"k\": [1]}]}, "
        "\"after\": 1}";
    EXPECT_EQ(
        tovwb::documentPlaces(text).rules,
        (RulePlaces{
            {"s", {"1:14", "1:18", "1:22", "1:27", "1:35", "1:39", "1:45", "1:52", "1:58"}}}));
    EXPECT_EQ(tovwb::documentPlaces(text).sections, (Places{{"s", "1:2"}, {"after", "1:72"}}));
}

TEST(DocumentPlaces, TextThatIsNoJsonGivesThePlacesBeforeItsFault) {
    EXPECT_EQ(tovwb::documentPlaces("{\"a\": 1, \"b\": [1,, \"c\": 3}").sections,
              (Places{{"a", "1:2"}, {"b", "1:10"}}));
    EXPECT_EQ(tovwb::documentPlaces("{\"s\": {\"T\": [{}, {}, ").rules,
              (RulePlaces{{"s", {"1:14", "1:18"}}}));
    EXPECT_EQ(tovwb::documentPlaces("").sections, Places{});
    EXPECT_EQ(tovwb::documentPlaces("[{\"a\": 1}]").sections, Places{});
    EXPECT_EQ(tovwb::documentPlaces("\"text\"").sections, Places{});
}

TEST(DocumentPlaces, DeepNestingNeedsNoStack) {
    const std::string deep =
        "{\"a\": " + std::string(100000, '[') + std::string(100000, ']') + ", \"b\": 1}";
    EXPECT_EQ(tovwb::documentPlaces(deep).sections, (Places{{"a", "1:2"}, {"b", "1:200009"}}));
    const std::string deepRule =
        "{\"s\": {\"T\": [" + std::string(100000, '[') + std::string(100000, ']') + "]}}";
    EXPECT_EQ(tovwb::documentPlaces(deepRule).rules, (RulePlaces{{"s", {"1:14"}}}));
}

}  // namespace
