// The program's note on a rule that does not load: its table of member shapes
// held to the library's own loads, member by member and kind by kind, and the
// note placed at the refused rule.
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "json/json_types.h"
#include "json_output.h"
#include "rule_load_faults.h"
#include "session.h"
#include "tov/TOVResponse.h"
#include "tov/entry_points.h"
#include "tov/rule_kinds.h"

namespace {

using tovcli::MemberRule;
using tovcli::MemberShape;

// A value that fits `shape`.
std::string fitting(MemberShape shape) {
    switch (shape) {
        case MemberShape::kTextList:
        case MemberShape::kNonEmptyTextList:
            return "[\"x\"]";
        case MemberShape::kBoolean:
            return "true";
        default:
            return "\"x\"";
    }
}

// A rule object of `kind` with every member that fits, `member` given
// `value` instead (left out when `value` is empty), and `extra` added.
std::string ruleText(TOVRuleKind kind, const std::string& member, const std::string& value,
                     const std::string& extra = {}) {
    std::string text = "{";
    for (const MemberRule& known : tovcli::ruleShapeOf(kind).members) {
        if (known.shape == MemberShape::kAnything) {
            continue;  // read for a notice only
        }
        const std::string given = known.name == member ? value : fitting(known.shape);
        if (!given.empty()) {
            text += (text.size() > 1 ? ", \"" : "\"") + std::string(known.name) + "\": " + given;
        }
    }
    if (!extra.empty()) {
        text += (text.size() > 1 ? ", " : "") + extra;
    }
    return text + "}";
}

class RuleLoadFaultsTest : public ::testing::Test {
protected:
    // Whether the library loads the one rule, and whether the program finds
    // a fault in it: the two must agree.
    void expectAgreement(TOVRuleKind kind, const std::string& objectType, const std::string& rule) {
        const std::string section = GetTOVRuleKinds()[kind].section;
        const std::string document =
            "{\"" + section + "\": {\"" + objectType + "\": [" + rule + "]}}";
        const bool loads = InitializeTOVRules(document, core.get()).getGeneralResult();
        tovjson::Document json;
        json.Parse(rule.c_str());
        ASSERT_TRUE(json.IsObject()) << rule;
        const std::string fault = tovcli::shapeFaultOf(kind, objectType, json);
        EXPECT_EQ(loads, fault.empty())
            << section << " " << objectType << " " << rule << ": " << fault;
        ++asked;
    }

    tovcli::PrivateCore core{""};
    std::size_t asked = 0;
};

TEST_F(RuleLoadFaultsTest, TheTableOfShapesAgreesWithTheLibraryMemberByMember) {
    const std::vector<std::string> variants = {"1",     "{}", "null",    "true", "\"\"",
                                               "\"x\"", "[]", "[\"x\"]", "[1]",  "[\"\"]"};
    for (const TOVRuleKindWords& words : GetTOVRuleKinds()) {
        const TOVRuleKind kind = words.kind;
        expectAgreement(kind, "Part", ruleText(kind, "", ""));
        expectAgreement(kind, "", ruleText(kind, "", ""));
        expectAgreement(kind, "Part", ruleText(kind, "", "", "\"other\": 1"));
        expectAgreement(kind, "Part", ruleText(kind, "", "", "\"other\": \"x\""));
        for (const MemberRule& member : tovcli::ruleShapeOf(kind).members) {
            if (member.shape == MemberShape::kAnything) {
                continue;
            }
            expectAgreement(kind, "Part", ruleText(kind, member.name, ""));
            for (const std::string& value : variants) {
                expectAgreement(kind, "Part", ruleText(kind, member.name, value));
            }
        }
    }
    EXPECT_EQ(asked, 384U);
}

TEST(RuleShapes, NameTheMemberAndWhatItShouldBe) {
    const auto faultOf = [](TOVRuleKind kind, const char* rule) {
        tovjson::Document json;
        json.Parse(rule);
        return tovcli::shapeFaultOf(kind, "Part", json);
    };
    EXPECT_EQ(faultOf(TOVRuleKind_Transition,
                      R"({"attribute": "Status", "fromValue": "Draft", "toValue": "Released"})"),
              R"("toValue" is a JSON string, not a list of strings: write ["Released"])");
    EXPECT_EQ(faultOf(TOVRuleKind_Transition, R"({"attribute": "Status", "fromValue": "Draft"})"),
              R"(has no "toValue", and a transition rule needs "attribute", "fromValue" and )"
              R"("toValue")");
    EXPECT_EQ(faultOf(TOVRuleKind_Transition,
                      R"({"attribute": "Status", "fromValue": "", "toValue": ["A"]})"),
              R"("fromValue" is empty, and a transition rule needs a value there)");
    EXPECT_EQ(faultOf(TOVRuleKind_Transition,
                      R"({"attribute": "Status", "fromValue": "A", "toValue": []})"),
              R"("toValue" is an empty list, and a transition rule needs at least one value )"
              R"(there)");
    EXPECT_EQ(
        faultOf(TOVRuleKind_HistoryLink, R"({"attribute": "S", "fromValue": "A", "toValue": "B",)"
                                         R"( "acceptableHistoryLinkValues": ["C", 2]})"),
        R"("acceptableHistoryLinkValues" holds a JSON number (its element 2), where it )"
        R"(takes strings only)");
    EXPECT_EQ(faultOf(TOVRuleKind_FileConstraint,
                      R"({"attribute": "S", "fromValue": "A", "toValue": "B",)"
                      R"( "updateFile": "MANDATORY", "why": 1})"),
              R"("why" is a JSON number, and every member of a file constraint rule must be )"
              R"(a string)");
    EXPECT_EQ(faultOf(TOVRuleKind_ConflictResolution,
                      R"({"attribute": "S", "fromValue": "A", "toValue": "B", "updatesFile": "NO",)"
                      R"( "conflictResolution": "spinup", "hasDifferentPrimaries": "yes"})"),
              R"("hasDifferentPrimaries" is a JSON string, not true or false)");
    // Read for a notice only, whatever it holds.
    EXPECT_EQ(
        faultOf(TOVRuleKind_Transition,
                R"({"attribute": "S", "fromValue": "A", "toValue": ["B"], "allowJumps": [1]})"),
        "");
    tovjson::Document json;
    json.Parse(R"({"attribute": "S", "fromValue": "A", "toValue": ["B"]})");
    EXPECT_EQ(tovcli::shapeFaultOf(TOVRuleKind_Transition, "", json),
              R"(the object type is empty, and a transition rule needs one ("ALL" for every )"
              R"(type))");
}

TEST(RuleLoadFaults, PlaceTheFirstRuleThatTheLibraryRefuses) {
    const std::string text =
        "{\n"
        "  \"transitions\": {\n"
        "    \"Part\": [\n"
        "      {\"attribute\": \"Status\", \"fromValue\": \"A\", \"toValue\": [\"B\"]},\n"
        "      {\"attribute\": \"Status\", \"fromValue\": \"B\", \"toValue\": \"C\"}\n"
        "    ],\n"
        "    \"Drawing\": {}\n"
        "  },\n"
        "  \"fileConstraints\": {\"Part\": [{\"attribute\": \"Status\"}]},\n"
        "  \"triggers\": {\"Part\": [7]}\n"
        "}\n";
    const tovcli::Document document{tovcli::Document::kRules, "rules.json", text.size(), &text};
    tovcli::RuleLoadFaults faults(document, text.size());
    const std::optional<tovcli::Finding> transition = faults.noteFor("transitions");
    ASSERT_TRUE(transition.has_value());
    EXPECT_EQ(transition->location, "5:60");
    EXPECT_EQ(transition->section, "transitions");
    EXPECT_EQ(transition->message,
              "transitions: Part #2: \"toValue\" is a JSON string, not a list of strings: write "
              "[\"C\"]");
    const std::optional<tovcli::Finding> constraint = faults.noteFor("fileConstraints");
    ASSERT_TRUE(constraint.has_value());
    EXPECT_EQ(constraint->location, "9:32");
    EXPECT_EQ(constraint->message,
              "fileConstraints: Part #1: has no \"fromValue\", and a file constraint rule needs "
              "\"attribute\", \"fromValue\", \"toValue\" and \"updateFile\"");
    const std::optional<tovcli::Finding> trigger = faults.noteFor("triggers");
    ASSERT_TRUE(trigger.has_value());
    EXPECT_EQ(trigger->location, "10:25");
    EXPECT_EQ(trigger->message, "triggers: Part #1: the rule is a JSON number, not an object");
    EXPECT_FALSE(faults.noteFor("manualLinks").has_value());
    EXPECT_FALSE(faults.noteFor("transitionz").has_value());
}

TEST(RuleLoadFaults, TellNothingWhereEveryRuleLoadsAlone) {
    const std::string text =
        R"({"transitions": {"Part": [{"attribute": "S", "fromValue": "A", "toValue": ["B"]}]}})";
    const tovcli::Document document{tovcli::Document::kRules, "rules.json", text.size(), &text};
    tovcli::RuleLoadFaults faults(document, text.size());
    EXPECT_FALSE(faults.noteFor("transitions").has_value());
}

}  // namespace
