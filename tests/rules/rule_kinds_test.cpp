// The table of rule kinds against the rules schema, the section parsers and
// the load's messages: each says the same of every kind.
#include <fstream>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "json/TOVJsonParser.h"
#include "json/json_types.h"
#include "rules/TOVInitializationJsonParser.h"
#include "rules/rule_kinds.h"
#include "tov/TOVLifecycleBusinessRules.h"
#include "tov/rule_kinds.h"

namespace {

using Words = std::set<std::string>;

tovjson::Document readSchema() {
    std::ifstream file(std::string(TOV_SCHEMAS_DIR) + "/rules.schema.json");
    std::stringstream text;
    text << file.rdbuf();
    tovjson::Document schema;
    schema.Parse<kTOVParseFlags>(text.str().c_str());
    return schema;
}

Words namesOf(const tovjson::Value& object) {
    Words names;
    for (const auto& member : object.GetObject()) {
        names.insert(member.name.GetString());
    }
    return names;
}

// The definition that a "$ref" of the schema's own definitions names.
const tovjson::Value& definition(const tovjson::Value& schema, const std::string& ref) {
    const std::string prefix = "#/$defs/";
    return schema["$defs"][ref.substr(prefix.size()).c_str()];
}

// The properties of a definition with those of the definitions it refers to.
Words propertiesOf(const tovjson::Value& schema, const tovjson::Value& type) {
    Words properties;
    if (type.HasMember("properties")) {
        properties = namesOf(type["properties"]);
    }
    if (type.HasMember("$ref")) {
        const Words inherited = propertiesOf(schema, definition(schema, type["$ref"].GetString()));
        properties.insert(inherited.begin(), inherited.end());
    }
    return properties;
}

Words wordsOf(const TOVWordList& list) {
    return Words(list.begin(), list.end());
}

TEST(RuleKinds, EachStandsAtItsKindsIndex) {
    for (std::size_t i = 0; i < TOVRuleKindCount; ++i) {
        EXPECT_EQ(static_cast<std::size_t>(GetTOVRuleKinds()[i].kind), i);
    }
}

TEST(RuleKinds, TheSchemasSectionsAreTheTablesSections) {
    const tovjson::Document schema = readSchema();
    ASSERT_TRUE(schema.IsObject());
    Words sections;
    for (const TOVRuleKindWords& kind : GetTOVRuleKinds()) {
        sections.insert(kind.section);
    }
    EXPECT_EQ(namesOf(schema["properties"]), sections);
}

TEST(RuleKinds, TheSchemasRuleObjectsHaveTheTablesMembers) {
    const tovjson::Document schema = readSchema();
    ASSERT_TRUE(schema.IsObject());
    for (const TOVRuleKindWords& kind : GetTOVRuleKinds()) {
        const tovjson::Value& rules = schema["properties"][kind.section]["additionalProperties"];
        const tovjson::Value& rule = definition(schema, rules["items"]["$ref"].GetString());
        EXPECT_EQ(propertiesOf(schema, rule), wordsOf(kind.members)) << kind.section;
        for (const char* member : kind.attributeMembers) {
            EXPECT_EQ(wordsOf(kind.members).count(member), 1u) << kind.section << " " << member;
        }
    }
}

TEST(RuleKinds, ThePublicTableIsTheLibrarysOwn) {
    EXPECT_EQ(&GetTOVRuleKinds(), &rulekinds::kRuleKinds);
    EXPECT_STREQ(rulekinds::wordsOf(TOVRuleKind_Transition).section, "transitions");
    EXPECT_STREQ(rulekinds::wordsOf(TOVRuleKind_Trigger).ruleName, "Triggers rule");
}

TEST(RuleKinds, ARuleClassAndItsKindGoBothWays) {
    static_assert(rulekinds::kindOf<TOVHistoryLink>() == TOVRuleKind_HistoryLink);
    static_assert(rulekinds::kindOf<rulekinds::RuleAt<TOVRuleKind_FileConstraint>>() ==
                  TOVRuleKind_FileConstraint);
    for (std::size_t position = 0; position < TOVRuleKindCount; ++position) {
        EXPECT_EQ(rulekinds::wordsOf(rulekinds::kindReadAt(position)).readingPosition, position);
    }
}

// One bad rule in every section: each section's message, in the reading order,
// starts with the kind's rule name and is kept with the kind's section.
TEST(RuleKinds, ALoadTellsEachSectionsFaultInReadingOrderUnderItsRuleName) {
    std::string text = "{";
    for (const TOVRuleKindWords& kind : GetTOVRuleKinds()) {
        text += std::string(text.size() > 1 ? "," : "") + "\"" + kind.section + "\":{\"Part\":[1]}";
    }
    text += "}";
    TOVLifecycleBusinessRules store;
    TOVInitializationJsonParser parser(&store);
    ASSERT_TRUE(parser.load(text, false));
    EXPECT_FALSE(parser.parseAllSections());

    std::vector<std::string> expected(TOVRuleKindCount);
    std::vector<std::string> sections(TOVRuleKindCount);
    for (const TOVRuleKindWords& kind : GetTOVRuleKinds()) {
        expected[kind.readingPosition] =
            std::string(kind.ruleName) + " in list for Part should be a map.";
        sections[kind.readingPosition] = kind.section;
    }
    std::string comment;
    for (const std::string& message : expected) {
        comment += (comment.empty() ? "" : "|") + message;
    }
    EXPECT_EQ(parser.getParsingErrorComment(), comment);
    ASSERT_EQ(parser.getSectionFaults().size(), TOVRuleKindCount);
    for (std::size_t i = 0; i < TOVRuleKindCount; ++i) {
        EXPECT_EQ(parser.getSectionFaults()[i].first, sections[i]);
        EXPECT_EQ(parser.getSectionFaults()[i].second, expected[i]);
    }
}

TEST(RuleKinds, ALoadThatSucceedsKeepsNoSectionFaults) {
    TOVLifecycleBusinessRules store;
    TOVInitializationJsonParser parser(&store);
    ASSERT_TRUE(parser.load(R"({"transitions":{"Part":[{"attribute":"Status",
        "fromValue":"A","toValue":["B"]}]}})",
                            false));
    EXPECT_TRUE(parser.parseAllSections());
    EXPECT_TRUE(parser.getSectionFaults().empty());
}

}  // namespace
