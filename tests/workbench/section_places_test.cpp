// Where the sections of a document begin, for findings that name only their section.
#include "section_places.h"

#include <gtest/gtest.h>

#include <map>
#include <string>

namespace {

using Places = std::map<std::string, std::string>;

TEST(SectionPlaces, EachTopLevelKeyWithItsLineAndColumn) {
    const std::string text =
        "{\n  \"transitions\": {\"Part\": [{\"attribute\": \"Status\"}]},\n"
        "\t\"triggers\" :{},   \"x\\\"y\": [1, {\"inner\": 2}],\n\"last\": null\n}";
    EXPECT_EQ(
        tovwb::sectionPlaces(text),
        (Places{{"transitions", "2:3"}, {"triggers", "3:2"}, {"x\"y", "3:20"}, {"last", "4:1"}}));
}

TEST(SectionPlaces, ColumnsCountBytes) {
    EXPECT_EQ(tovwb::sectionPlaces("{\"\xc3\xa9t\xc3\xa9\": 1, \"b\": 2}"),
              (Places{{"\xc3\xa9t\xc3\xa9", "1:2"}, {"b", "1:14"}}));
}

TEST(SectionPlaces, TheFirstOfTwoNamesCounts) {
    EXPECT_EQ(tovwb::sectionPlaces("{\"a\": 1,\n\"a\": 2}"), (Places{{"a", "1:2"}}));
}

TEST(SectionPlaces, TextThatIsNoJsonGivesTheMembersBeforeItsFault) {
    EXPECT_EQ(tovwb::sectionPlaces("{\"a\": 1, \"b\": [1,, \"c\": 3}"),
              (Places{{"a", "1:2"}, {"b", "1:10"}}));
    EXPECT_EQ(tovwb::sectionPlaces(""), Places{});
    EXPECT_EQ(tovwb::sectionPlaces("[{\"a\": 1}]"), Places{});
    EXPECT_EQ(tovwb::sectionPlaces("\"text\""), Places{});
}

TEST(SectionPlaces, DeepNestingNeedsNoStack) {
    const std::string deep =
        "{\"a\": " + std::string(100000, '[') + std::string(100000, ']') + ", \"b\": 1}";
    EXPECT_EQ(tovwb::sectionPlaces(deep), (Places{{"a", "1:2"}, {"b", "1:200009"}}));
}

}  // namespace
