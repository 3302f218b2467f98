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
