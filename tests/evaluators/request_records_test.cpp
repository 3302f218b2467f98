// The request parsers alone: each fills its record, and no controller is
// needed to read what a request says.
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "evaluators/TOVConflictsResolutionOptionsFinderParser.h"
#include "evaluators/TOVLinkCreationParser.h"
#include "evaluators/TOVTransitionJsonParsers.h"
#include "evaluators/request_records.h"

namespace {

using Packets = std::vector<AttributesMap>;

// Loads and parses `text`; true when every section parsed.
template <typename Parser>
bool parse(Parser& parser, const std::string& text) {
    return parser.load(text, false) && parser.parseAllSections();
}

TEST(EditRequestRecord, HoldsEverySectionOfTheRequest) {
    TOVTransitionJsonParser parser;
    ASSERT_TRUE(parse(parser, R"({"objectType":"Part","initialAttributes":{"Status":"A"},
        "targetAttributes":{"Status":"B"},
        "membersOfFamily":{"S1":{"attributes":{"Status":"C"}}},
        "manualLinkAncestors":{}})"));
    const EditRequest& request = parser.getRequest();
    EXPECT_EQ(request.objectType, "Part");
    EXPECT_EQ(request.initialAttributes, (AttributesMap{{"Status", "A"}}));
    EXPECT_EQ(request.targetAttributes, (AttributesMap{{"Status", "B"}}));
    EXPECT_EQ(request.familyMembers, (Packets{{{"ServerId", "S1"}, {"Status", "C"}}}));
    // An empty object says that there are none.
    EXPECT_EQ(request.manualLinkAncestors, Packets{});
}

// The text is parsed from a copy of its own, in place: escapes are decoded,
// a zero byte ends a name or a value and the text itself, and the strings
// outlive the parse however large the request is.
TEST(EditRequestRecord, ATextParsedInPlaceReadsAsItsCharactersSay) {
    TOVTransitionJsonParser parser;
    const std::string text =
        R"({"objectType":"P\u0061rt","initialAttributes":{"A\"b":"x\\y","Cut":"ab\u0000cd"},)"
        R"("targetAttributes":{"A\"b":"\u00e9"}})";
    ASSERT_TRUE(parse(parser, text)) << parser.getParsingErrorComment();
    EXPECT_EQ(parser.getRequest().objectType, "Part");
    EXPECT_EQ(parser.getRequest().initialAttributes,
              (AttributesMap{{"A\"b", "x\\y"}, {"Cut", "ab"}}));
    EXPECT_EQ(parser.getRequest().targetAttributes, (AttributesMap{{"A\"b", "\xC3\xA9"}}));

    TOVTransitionJsonParser cutShort;
    EXPECT_TRUE(parse(cutShort, text + std::string(1, '\0') + "garbage"));
    EXPECT_EQ(cutShort.getRequest().objectType, "Part");

    TOVTransitionJsonParser large;
    std::string attributes;
    AttributesMap expected;
    for (int i = 0; i < 500; ++i) {
        const std::string name = "attribute number " + std::to_string(i);
        attributes += (i == 0 ? "\"" : ",\"") + name + "\":\"value " + std::to_string(i) + "\"";
        expected[name] = "value " + std::to_string(i);
    }
    ASSERT_TRUE(parse(large, R"({"objectType":"Part","initialAttributes":{)" + attributes +
                                 R"(},"targetAttributes":{}})"));
    EXPECT_EQ(large.getRequest().initialAttributes, expected);

    TOVTransitionJsonParser broken;
    EXPECT_FALSE(parse(broken, text + "x"));
    EXPECT_EQ(broken.getParsingErrorComment(), "Json has fundamental parsing error");
}

TEST(EditRequestRecord, LeftOutLinkSectionsAreNoLists) {
    TOVTransitionJsonParser parser;
    ASSERT_TRUE(parse(parser, R"({"objectType":"","initialAttributes":{},"targetAttributes":{},
        "membersOfFamily":3})"));
    EXPECT_EQ(parser.getRequest().familyMembers, std::nullopt);
    EXPECT_EQ(parser.getRequest().manualLinkAncestors, std::nullopt);
}

TEST(EditRequestRecord, AFaultKeepsWhatEachSectionReadBeforeIt) {
    TOVTransitionJsonParser parser;
    EXPECT_FALSE(parse(parser, R"({"initialAttributes":{"A":"1"},"targetAttributes":{"A":2},
        "membersOfFamily":{"S1":{"attributes":{"A":"x"}},"S2":1,"S3":{"attributes":{}}}})"));
    EXPECT_EQ(parser.getParsingErrorComment(),
              "Members of familyMember with server id\"S2\":Data should be a map|"
              "Object Type demands ALL keywords: [objectType]|"
              "Target Attributes: parsing error on keys - values of targetAttributes.");
    const EditRequest request = parser.takeRequest();
    EXPECT_EQ(request.familyMembers, (Packets{{{"A", "x"}, {"ServerId", "S1"}}}));
    EXPECT_EQ(request.objectType, "");
    EXPECT_EQ(request.initialAttributes, (AttributesMap{{"A", "1"}}));
    EXPECT_TRUE(request.targetAttributes.empty());
}

TEST(LinkCreationRecord, HoldsBothSides) {
    TOVLinkCreationParser parser;
    ASSERT_TRUE(parse(parser, R"({"ancestor":{"objectType":"Part","attributes":{"Status":"R"}},
        "descendant":{"objectType":"Assembly","attributes":{"Status":"W"}}})"));
    const LinkCreationRequest& request = parser.getRequest();
    EXPECT_EQ(request.ancestorType, "Part");
    EXPECT_EQ(request.ancestorAttributes, (AttributesMap{{"Status", "R"}}));
    EXPECT_EQ(request.descendantType, "Assembly");
    EXPECT_EQ(request.descendantAttributes, (AttributesMap{{"Status", "W"}}));
}

TEST(LinkCreationRecord, ASideThatGivesUpStaysEmpty) {
    TOVLinkCreationParser parser;
    EXPECT_FALSE(parse(parser, R"({"ancestor":{"objectType":"Part"},
        "descendant":{"objectType":"Assembly","attributes":{"Status":"W"}}})"));
    const LinkCreationRequest& request = parser.getRequest();
    EXPECT_EQ(request.ancestorType, "");
    EXPECT_TRUE(request.ancestorAttributes.empty());
    EXPECT_EQ(request.descendantType, "Assembly");
}

TEST(OptionsQueryRecord, HoldsTheQueryAndTheUploadFlag) {
    TOVConflictsResolutionOptionsFinderParser parser;
    ASSERT_TRUE(parse(parser, R"({"objectType":"Part","initialAttributes":{"Status":"A"},
        "targetAttributes":{"Status":"B"},"uploadsRepresentationFile":false})"));
    const OptionsQuery& query = parser.getQuery();
    EXPECT_EQ(query.objectType, "Part");
    EXPECT_EQ(query.initialAttributes, (AttributesMap{{"Status", "A"}}));
    EXPECT_EQ(query.targetAttributes, (AttributesMap{{"Status", "B"}}));
    EXPECT_EQ(query.uploadsRepresentationFile, std::optional<bool>(false));
}

TEST(OptionsQueryRecord, AnUploadFlagThatIsNoBoolIsLeftOut) {
    for (const char* flag : {"", R"(,"uploadsRepresentationFile":"true")"}) {
        TOVConflictsResolutionOptionsFinderParser parser;
        ASSERT_TRUE(parse(parser, std::string(R"({"objectType":"Part","initialAttributes":{},)"
                                              R"("targetAttributes":{})") +
                                      flag + "}"));
        EXPECT_EQ(parser.getQuery().uploadsRepresentationFile, std::nullopt) << flag;
    }
}

}  // namespace
