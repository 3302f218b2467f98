// Tests of the base of all input parsers: loading, member access, extraction,
// and the wording of every error message.
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "json/TOVJsonParser.h"
#include "json/json_types.h"
#include "test_support.h"
#include "tov/vocabulary.h"

namespace {

using tovtest::TempFile;

const char* const kFundamental = "Json has fundamental parsing error";

// The base parser with its protected operations opened up.
class ExposedParser : public TOVJsonParser {
public:
    using TOVJsonParser::getAllNecessaryKeywords;
    using TOVJsonParser::getRuleName;

    using TOVJsonParser::fillJsonDocumentFromJsonFile;
    using TOVJsonParser::fillJsonDocumentFromJsonString;

    using TOVJsonParser::getJsonArraySection;
    using TOVJsonParser::getJsonBoolSection;
    using TOVJsonParser::getJsonSection;
    using TOVJsonParser::getJsonStringSection;

    using TOVJsonParser::collectBoolFromValue;
    using TOVJsonParser::collectKeyValuesPairsFromSection;
    using TOVJsonParser::collectStringFromValue;
    using TOVJsonParser::collectStringsFromArray;
    using TOVJsonParser::getStringNamesValuesPair;

    using TOVJsonParser::appendToParsingErrorComment;
    using TOVJsonParser::getCommentSeparator;
    using TOVJsonParser::setParsingErrorComment;
    using TOVJsonParser::setParsingResult;
    using TOVJsonParser::updateParsingResult;

    // Each appends one message as an error site does, leaving the result alone.
    void setAttributeValueBoolParsingError(const std::string& owner, const std::string& attribute) {
        appendToParsingErrorComment(attributeValueBoolParsingError(owner, attribute).c_str());
    }
    void setAttributeValueStringParsingError(const std::string& owner,
                                             const std::string& attribute) {
        appendToParsingErrorComment(attributeValueStringParsingError(owner, attribute).c_str());
    }
    void setAttributeValuesStringListParsingError(const std::string& owner,
                                                  const std::string& attribute) {
        appendToParsingErrorComment(
            attributeValuesStringListParsingError(owner, attribute).c_str());
    }
    void setErrorParsingTheKeysValuesMapOfAttribute(const std::string& attribute) {
        appendToParsingErrorComment(errorParsingTheKeysValuesMapOfAttribute(attribute).c_str());
    }
    void setImmediateContentsShouldBeMapParsingError() {
        appendToParsingErrorComment(immediateContentsShouldBeMapParsingError().c_str());
    }
    void setJsonSectionNotAListError(const std::string& section) {
        appendToParsingErrorComment(jsonSectionNotAListError(section).c_str());
    }
    void setJsonSectionNotAMapError(const std::string& section) {
        appendToParsingErrorComment(jsonSectionNotAMapError(section).c_str());
    }
    void setNotAllNecessaryKeywordsFoundParsingError(const std::string& owner) {
        appendToParsingErrorComment(notAllNecessaryKeywordsFoundParsingError(owner).c_str());
    }
    void setObjectListedRuleNotAMapError(const std::string& owner) {
        appendToParsingErrorComment(objectListedRuleNotAMapError(owner).c_str());
    }
    void setObjectRulesNotAListError(const std::string& owner) {
        appendToParsingErrorComment(objectRulesNotAListError(owner).c_str());
    }
};

// A parser of a named thing with mandatory keywords, as derived parsers are.
class NamedParser : public ExposedParser {
public:
    explicit NamedParser(std::string name, std::vector<std::string> keywords = {})
        : name(std::move(name)), keywords(std::move(keywords)) {}

    std::string getRuleName() override { return name; }
    void getAllNecessaryKeywords(std::vector<std::string>& out) override {
        out.insert(out.end(), keywords.begin(), keywords.end());
    }

    std::string name;
    std::vector<std::string> keywords;
};

tovjson::Document parseOrDie(const char* text) {
    tovjson::Document document;
    document.Parse(text);
    EXPECT_FALSE(document.HasParseError()) << text;
    return document;
}

void expectFundamentalFailureFromText(const std::string& text) {
    ExposedParser parser;
    tovjson::Document document;
    EXPECT_FALSE(parser.fillJsonDocumentFromJsonString(text, document)) << text;
    EXPECT_FALSE(parser.getParsingResult()) << text;
    EXPECT_EQ(parser.getParsingErrorComment(), kFundamental) << text;
}

void expectFundamentalFailureFromFile(const std::string& path) {
    ExposedParser parser;
    tovjson::Document document;
    EXPECT_FALSE(parser.fillJsonDocumentFromJsonFile(path, document)) << path;
    EXPECT_FALSE(parser.getParsingResult()) << path;
    EXPECT_EQ(parser.getParsingErrorComment(), kFundamental) << path;
}

}  // namespace

// --- State, comment and result ---

TEST(JsonParserState, StartsWithTrueResultAndEmptyComment) {
    ExposedParser parser;
    EXPECT_TRUE(parser.getParsingResult());
    EXPECT_EQ(parser.getParsingErrorComment(), "");
}

TEST(JsonParserState, BaseRuleNameAndNoNecessaryKeywords) {
    ExposedParser parser;
    EXPECT_EQ(parser.getRuleName(), "Lifecycle Business");
    std::vector<std::string> keywords{"prior"};
    parser.getAllNecessaryKeywords(keywords);
    EXPECT_EQ(keywords, std::vector<std::string>{"prior"});
}

TEST(JsonParserState, SeparatorIsVerticalBar) {
    ExposedParser parser;
    EXPECT_EQ(parser.getCommentSeparator(), '|');
}

TEST(JsonParserState, AppendJoinsWithSeparator) {
    ExposedParser parser;
    parser.appendToParsingErrorComment("first");
    EXPECT_EQ(parser.getParsingErrorComment(), "first");
    parser.appendToParsingErrorComment("second");
    parser.appendToParsingErrorComment("third");
    EXPECT_EQ(parser.getParsingErrorComment(), "first|second|third");
    EXPECT_TRUE(parser.getParsingResult());
}

TEST(JsonParserState, AppendOfEmptyTextAddsNoStraySeparator) {
    ExposedParser parser;
    parser.appendToParsingErrorComment("");
    EXPECT_EQ(parser.getParsingErrorComment(), "");
    parser.appendToParsingErrorComment("only");
    parser.appendToParsingErrorComment("");
    EXPECT_EQ(parser.getParsingErrorComment(), "only");
}

TEST(JsonParserState, AppendKeepsSeparatorsInsideCopiedChildComment) {
    ExposedParser parent;
    ExposedParser child;
    child.appendToParsingErrorComment("c1");
    child.appendToParsingErrorComment("c2");
    child.setParsingResult(false);
    parent.appendToParsingErrorComment("p1");
    parent.appendToParsingErrorComment(child.getParsingErrorComment().c_str());
    parent.updateParsingResult(child.getParsingResult());
    EXPECT_EQ(parent.getParsingErrorComment(), "p1|c1|c2");
    EXPECT_FALSE(parent.getParsingResult());
}

TEST(JsonParserState, SetCommentReplacesWholeComment) {
    ExposedParser parser;
    parser.appendToParsingErrorComment("a");
    parser.appendToParsingErrorComment("b");
    parser.setParsingErrorComment("fresh");
    EXPECT_EQ(parser.getParsingErrorComment(), "fresh");
    parser.setParsingErrorComment("");
    EXPECT_EQ(parser.getParsingErrorComment(), "");
}

TEST(JsonParserState, SetResultOverwrites) {
    ExposedParser parser;
    parser.setParsingResult(false);
    EXPECT_FALSE(parser.getParsingResult());
    parser.setParsingResult(true);
    EXPECT_TRUE(parser.getParsingResult());
}

TEST(JsonParserState, UpdateResultOnlyGoesFromTrueToFalse) {
    ExposedParser parser;
    parser.updateParsingResult(true);
    EXPECT_TRUE(parser.getParsingResult());
    parser.updateParsingResult(false);
    EXPECT_FALSE(parser.getParsingResult());
    parser.updateParsingResult(true);
    EXPECT_FALSE(parser.getParsingResult());
}

TEST(JsonParserState, CopyAndAssignmentCopyCommentAndResult) {
    ExposedParser original;
    original.appendToParsingErrorComment("broken");
    original.setParsingResult(false);

    ExposedParser copy(original);
    EXPECT_EQ(copy.getParsingErrorComment(), "broken");
    EXPECT_FALSE(copy.getParsingResult());

    ExposedParser assigned;
    assigned.appendToParsingErrorComment("other");
    assigned = original;
    EXPECT_EQ(assigned.getParsingErrorComment(), "broken");
    EXPECT_FALSE(assigned.getParsingResult());
}

// --- Error composers ---

TEST(JsonParserErrors, AttributeValueBool) {
    NamedParser parser("Transition rule");
    parser.setAttributeValueBoolParsingError("R1", "fromValue");
    parser.setAttributeValueBoolParsingError("", "fromValue");
    EXPECT_EQ(parser.getParsingErrorComment(),
              "Transition rule value for fromValue of R1 should be a boolean.|"
              "Transition rule value for fromValue should be a boolean.");
    EXPECT_TRUE(parser.getParsingResult());
}

TEST(JsonParserErrors, AttributeValueString) {
    NamedParser parser("Transition rule");
    parser.setAttributeValueStringParsingError("R1", "toValue");
    parser.setAttributeValueStringParsingError("", "toValue");
    EXPECT_EQ(parser.getParsingErrorComment(),
              "Transition rule value for toValue of R1 should be a string.|"
              "Transition rule value for toValue should be a string.");
    EXPECT_TRUE(parser.getParsingResult());
}

TEST(JsonParserErrors, AttributeValuesStringListKeepsOfForEmptyOwner) {
    NamedParser parser("History Link rule");
    parser.setAttributeValuesStringListParsingError("R1", "acceptableHistoryLinkValues");
    parser.setAttributeValuesStringListParsingError("", "acceptableHistoryLinkValues");
    EXPECT_EQ(parser.getParsingErrorComment(),
              "History Link rule value for acceptableHistoryLinkValues of R1 should be a List of "
              "strings.|"
              "History Link rule value for acceptableHistoryLinkValues of  should be a List of "
              "strings.");
    EXPECT_TRUE(parser.getParsingResult());
}

TEST(JsonParserErrors, KeysValuesMapOfAttribute) {
    NamedParser parser("Initial Attributes");
    parser.setErrorParsingTheKeysValuesMapOfAttribute("initialAttributes");
    parser.setErrorParsingTheKeysValuesMapOfAttribute("");
    EXPECT_EQ(parser.getParsingErrorComment(),
              "Initial Attributes: parsing error on keys - values of initialAttributes.|"
              "Initial Attributes: parsing error on keys - values.");
}

TEST(JsonParserErrors, KeysValuesMapOfAttributeWithColonName) {
    NamedParser parser("Structure object:");
    parser.setErrorParsingTheKeysValuesMapOfAttribute("attributes");
    EXPECT_EQ(parser.getParsingErrorComment(),
              "Structure object: parsing error on keys - values of attributes.");
}

TEST(JsonParserErrors, ImmediateContentsShouldBeMap) {
    NamedParser parser("Target Attributes");
    parser.setImmediateContentsShouldBeMapParsingError();
    EXPECT_EQ(parser.getParsingErrorComment(),
              "Target Attributes immediate contents should be a map of keys - values.");
}

TEST(JsonParserErrors, SectionNotAList) {
    NamedParser parser("Members of family");
    parser.setJsonSectionNotAListError("membersOfFamily");
    EXPECT_EQ(parser.getParsingErrorComment(),
              "Members of family: membersOfFamily should be in a List.");

    NamedParser colon("Name:");
    colon.setJsonSectionNotAListError("section");
    EXPECT_EQ(colon.getParsingErrorComment(), "Name: section should be in a List.");
}

TEST(JsonParserErrors, SectionNotAMap) {
    NamedParser parser("Object Type");
    parser.setJsonSectionNotAMapError("objectType");
    EXPECT_EQ(parser.getParsingErrorComment(),
              "Object Type: objectType should be a map of keys-values.");
}

TEST(JsonParserErrors, SectionNotAMapWithColonNameGetsOneBlankOnly) {
    NamedParser parser("Structure object:");
    parser.setJsonSectionNotAMapError("attributes");
    EXPECT_EQ(parser.getParsingErrorComment(),
              "Structure object: attributes should be a map of keys-values.");
}

TEST(JsonParserErrors, ColonOnlyMattersAtTheEndOfTheName) {
    NamedParser parser("A:B");
    parser.setJsonSectionNotAMapError("s");
    EXPECT_EQ(parser.getParsingErrorComment(), "A:B: s should be a map of keys-values.");
}

TEST(JsonParserErrors, ColonNameChangesOnlyTheSeparatedMessages) {
    NamedParser parser("Name:", {"k"});
    parser.setAttributeValueBoolParsingError("o", "a");
    parser.setAttributeValueStringParsingError("", "a");
    parser.setAttributeValuesStringListParsingError("o", "a");
    parser.setImmediateContentsShouldBeMapParsingError();
    parser.setNotAllNecessaryKeywordsFoundParsingError("o");
    parser.setObjectListedRuleNotAMapError("o");
    parser.setObjectRulesNotAListError("o");
    EXPECT_EQ(parser.getParsingErrorComment(),
              "Name: value for a of o should be a boolean.|"
              "Name: value for a should be a string.|"
              "Name: value for a of o should be a List of strings.|"
              "Name: immediate contents should be a map of keys - values.|"
              "Name: for o demands ALL keywords: [k]|"
              "Name: in list for o should be a map.|"
              "Name:s for o should be in a List.");
}

TEST(JsonParserErrors, NotAllNecessaryKeywordsFound) {
    NamedParser parser("Transition rule", {"attribute", "fromValue", "toValue"});
    parser.setNotAllNecessaryKeywordsFoundParsingError("Document");
    parser.setNotAllNecessaryKeywordsFoundParsingError("");
    EXPECT_EQ(parser.getParsingErrorComment(),
              "Transition rule for Document demands ALL keywords: [attribute,fromValue,toValue]|"
              "Transition rule demands ALL keywords: [attribute,fromValue,toValue]");
    EXPECT_TRUE(parser.getParsingResult());
}

TEST(JsonParserErrors, NotAllNecessaryKeywordsFoundOnBaseAppendsNothing) {
    ExposedParser parser;
    parser.setNotAllNecessaryKeywordsFoundParsingError("owner");
    EXPECT_EQ(parser.getParsingErrorComment(), "");
    parser.appendToParsingErrorComment("earlier");
    parser.setNotAllNecessaryKeywordsFoundParsingError("owner");
    EXPECT_EQ(parser.getParsingErrorComment(), "earlier");
    EXPECT_TRUE(parser.getParsingResult());
}

TEST(JsonParserErrors, ObjectListedRuleNotAMap) {
    NamedParser parser("Triggers rule");
    parser.setObjectListedRuleNotAMapError("Part");
    EXPECT_EQ(parser.getParsingErrorComment(), "Triggers rule in list for Part should be a map.");
}

TEST(JsonParserErrors, ObjectRulesNotAListHasPluralS) {
    NamedParser parser("Triggers rule");
    parser.setObjectRulesNotAListError("Part");
    parser.setObjectRulesNotAListError("");
    EXPECT_EQ(parser.getParsingErrorComment(),
              "Triggers rules for Part should be in a List.|Triggers rules should be in a List.");
}

TEST(JsonParserErrors, BaseRuleNameStartsMessages) {
    ExposedParser parser;
    parser.setJsonSectionNotAListError("rules");
    parser.setObjectRulesNotAListError("");
    EXPECT_EQ(parser.getParsingErrorComment(),
              "Lifecycle Business: rules should be in a List.|Lifecycle Businesss should be in a "
              "List.");
}

TEST(JsonParserErrors, RuleNameIsReadAtEachCall) {
    NamedParser parser("First");
    parser.setImmediateContentsShouldBeMapParsingError();
    parser.name = "Second:";
    parser.setJsonSectionNotAListError("x");
    EXPECT_EQ(parser.getParsingErrorComment(),
              "First immediate contents should be a map of keys - values.|Second: x should be in a "
              "List.");
}

TEST(JsonParserErrors, ComposersNeverTouchTheResult) {
    NamedParser parser("R", {"k"});
    parser.setAttributeValueBoolParsingError("o", "a");
    parser.setAttributeValueStringParsingError("o", "a");
    parser.setAttributeValuesStringListParsingError("o", "a");
    parser.setErrorParsingTheKeysValuesMapOfAttribute("a");
    parser.setImmediateContentsShouldBeMapParsingError();
    parser.setJsonSectionNotAListError("s");
    parser.setJsonSectionNotAMapError("s");
    parser.setNotAllNecessaryKeywordsFoundParsingError("o");
    parser.setObjectListedRuleNotAMapError("o");
    parser.setObjectRulesNotAListError("o");
    EXPECT_TRUE(parser.getParsingResult());
    EXPECT_EQ(parser.getParsingErrorComment(),
              "R value for a of o should be a boolean.|"
              "R value for a of o should be a string.|"
              "R value for a of o should be a List of strings.|"
              "R: parsing error on keys - values of a.|"
              "R immediate contents should be a map of keys - values.|"
              "R: s should be in a List.|"
              "R: s should be a map of keys-values.|"
              "R for o demands ALL keywords: [k]|"
              "R in list for o should be a map.|"
              "Rs for o should be in a List.");
}

// --- Loading from text ---

TEST(JsonParserLoadText, ObjectRootLoads) {
    ExposedParser parser;
    tovjson::Document document;
    ASSERT_TRUE(parser.fillJsonDocumentFromJsonString(R"({"a":"b","n":{"c":[1,2]}})", document));
    EXPECT_TRUE(parser.getParsingResult());
    EXPECT_EQ(parser.getParsingErrorComment(), "");
    ASSERT_TRUE(document.IsObject());
    EXPECT_STREQ(document["a"].GetString(), "b");
    EXPECT_EQ(document["n"]["c"].Size(), 2u);
}

TEST(JsonParserLoadText, EmptyObjectLoads) {
    ExposedParser parser;
    tovjson::Document document;
    EXPECT_TRUE(parser.fillJsonDocumentFromJsonString(" {} ", document));
    EXPECT_TRUE(document.IsObject());
    EXPECT_EQ(document.MemberCount(), 0u);
}

TEST(JsonParserLoadText, RootThatIsNoObjectFails) {
    expectFundamentalFailureFromText("[]");
    expectFundamentalFailureFromText(R"(["a"])");
    expectFundamentalFailureFromText(R"("text")");
    expectFundamentalFailureFromText("42");
    expectFundamentalFailureFromText("true");
    expectFundamentalFailureFromText("null");
}

TEST(JsonParserLoadText, EmptyAndBlankTextFail) {
    expectFundamentalFailureFromText("");
    expectFundamentalFailureFromText("   \n");
}

TEST(JsonParserLoadText, BadSyntaxFails) {
    expectFundamentalFailureFromText("{");
    expectFundamentalFailureFromText(R"({"a":})");
    expectFundamentalFailureFromText("{a:1}");
    expectFundamentalFailureFromText(R"({'a':'b'})");
}

TEST(JsonParserLoadText, TextBehindTheRootFails) {
    expectFundamentalFailureFromText("{} x");
    expectFundamentalFailureFromText("{}{}");
}

TEST(JsonParserLoadText, DefaultGrammarOnly) {
    expectFundamentalFailureFromText(R"({"a":"b",})");
    expectFundamentalFailureFromText(R"({/* note */"a":"b"})");
    expectFundamentalFailureFromText("{\"a\":\"b\"} // note");
    expectFundamentalFailureFromText(R"({"a":NaN})");
    expectFundamentalFailureFromText(R"({"a":Infinity})");
}

TEST(JsonParserLoadText, TextEndsAtItsFirstZeroByte) {
    ExposedParser parser;
    tovjson::Document document;
    const std::string text("{}\0garbage", 10);
    EXPECT_TRUE(parser.fillJsonDocumentFromJsonString(text, document));
    EXPECT_TRUE(document.IsObject());
}

TEST(JsonParserLoadText, FailureReplacesCommentAndIsNotRepeated) {
    ExposedParser parser;
    tovjson::Document document;
    parser.appendToParsingErrorComment("earlier message");
    EXPECT_FALSE(parser.fillJsonDocumentFromJsonString("[]", document));
    EXPECT_EQ(parser.getParsingErrorComment(), kFundamental);
    EXPECT_FALSE(parser.fillJsonDocumentFromJsonString("", document));
    EXPECT_EQ(parser.getParsingErrorComment(), kFundamental);
}

TEST(JsonParserLoadText, SuccessAfterFailureKeepsTheFalseResult) {
    ExposedParser parser;
    tovjson::Document first;
    tovjson::Document second;
    EXPECT_FALSE(parser.fillJsonDocumentFromJsonString("x", first));
    EXPECT_TRUE(parser.fillJsonDocumentFromJsonString("{}", second));
    EXPECT_FALSE(parser.getParsingResult());
    EXPECT_EQ(parser.getParsingErrorComment(), kFundamental);
}

// --- Loading from a file ---

TEST(JsonParserLoadFile, ObjectFileLoads) {
    const TempFile file("{\n  \"a\": \"b\",\n  \"list\": [\"x\"]\n}\n");
    ExposedParser parser;
    tovjson::Document document;
    ASSERT_TRUE(parser.fillJsonDocumentFromJsonFile(file.path, document));
    EXPECT_TRUE(parser.getParsingResult());
    EXPECT_EQ(parser.getParsingErrorComment(), "");
    EXPECT_STREQ(document["a"].GetString(), "b");
    EXPECT_STREQ(document["list"][0].GetString(), "x");
}

TEST(JsonParserLoadFile, MissingPathFails) {
    expectFundamentalFailureFromFile(
        (std::filesystem::temp_directory_path() / "tov_json_parser_no_such_dir" / "none.json")
            .string());
}

TEST(JsonParserLoadFile, DirectoryFails) {
    const tovtest::TempFolder directory;
    ASSERT_FALSE(directory.path().empty());
    expectFundamentalFailureFromFile(directory.path());
}

TEST(JsonParserLoadFile, EmptyFileFails) {
    const TempFile file("");
    expectFundamentalFailureFromFile(file.path);
}

TEST(JsonParserLoadFile, ByteOrderMarkCountsAsBadSyntax) {
    const TempFile withMark("\xEF\xBB\xBF{\"a\":\"b\"}");
    expectFundamentalFailureFromFile(withMark.path);

    const TempFile withoutMark("{\"a\":\"b\"}");
    ExposedParser parser;
    tovjson::Document document;
    EXPECT_TRUE(parser.fillJsonDocumentFromJsonFile(withoutMark.path, document));
}

TEST(JsonParserLoadFile, NonObjectRootsAndTrailingTextFail) {
    const TempFile array("[{\"a\":\"b\"}]");
    expectFundamentalFailureFromFile(array.path);
    const TempFile text("\"text\"");
    expectFundamentalFailureFromFile(text.path);
    const TempFile number("7");
    expectFundamentalFailureFromFile(number.path);
    const TempFile trailing("{\"a\":\"b\"} {}");
    expectFundamentalFailureFromFile(trailing.path);
}

TEST(JsonParserLoadFile, FailureReplacesEarlierComment) {
    ExposedParser parser;
    tovjson::Document document;
    parser.appendToParsingErrorComment("earlier");
    EXPECT_FALSE(parser.fillJsonDocumentFromJsonFile("", document));
    EXPECT_FALSE(parser.getParsingResult());
    EXPECT_EQ(parser.getParsingErrorComment(), kFundamental);
}

// --- Deep nesting must not exhaust the stack ---

namespace {
constexpr std::size_t kDepth = 1000000;
}  // namespace

TEST(JsonParserDeepNesting, MillionOpeningBracketsFail) {
    expectFundamentalFailureFromText(std::string(kDepth, '['));
}

TEST(JsonParserDeepNesting, MillionLevelArrayFailsAsNoObject) {
    expectFundamentalFailureFromText(std::string(kDepth, '[') + std::string(kDepth, ']'));
}

TEST(JsonParserDeepNesting, MillionLevelObjectLoads) {
    std::string text;
    text.reserve(kDepth * 6);
    for (std::size_t level = 1; level < kDepth; ++level) {
        text += "{\"a\":";
    }
    text += "{}";
    text.append(kDepth - 1, '}');

    ExposedParser parser;
    {
        tovjson::Document document;
        EXPECT_TRUE(parser.fillJsonDocumentFromJsonString(text, document));
        ASSERT_TRUE(document.IsObject());
        EXPECT_EQ(document.MemberCount(), 1u);
        EXPECT_TRUE(document["a"].IsObject());
        // Destroying the deep document at the end of this scope must be harmless.
    }
    EXPECT_TRUE(parser.getParsingResult());
    EXPECT_EQ(parser.getParsingErrorComment(), "");
}

// --- Section getters ---

TEST(JsonParserSections, ObjectSectionIsMovedOutOnce) {
    ExposedParser parser;
    tovjson::Document document = parseOrDie(R"({"sec":{"k":"v"}})");
    tovjson::Value out;
    ASSERT_TRUE(parser.getJsonSection(document, "sec", out));
    ASSERT_TRUE(out.IsObject());
    EXPECT_STREQ(out["k"].GetString(), "v");
    EXPECT_TRUE(document.HasMember("sec"));
    EXPECT_TRUE(document["sec"].IsNull());

    tovjson::Value again;
    EXPECT_FALSE(parser.getJsonSection(document, "sec", again));
    EXPECT_TRUE(again.IsNull());
    EXPECT_TRUE(parser.getParsingResult());
    EXPECT_EQ(parser.getParsingErrorComment(), "");
}

TEST(JsonParserSections, ArraySectionIsMovedOutOnce) {
    ExposedParser parser;
    tovjson::Document document = parseOrDie(R"({"list":["a","b"]})");
    tovjson::Value out;
    ASSERT_TRUE(parser.getJsonArraySection(document, "list", out));
    ASSERT_TRUE(out.IsArray());
    EXPECT_EQ(out.Size(), 2u);
    EXPECT_TRUE(document["list"].IsNull());
    tovjson::Value again;
    EXPECT_FALSE(parser.getJsonArraySection(document, "list", again));
}

TEST(JsonParserSections, BoolSectionIsMovedOutOnce) {
    ExposedParser parser;
    tovjson::Document document = parseOrDie(R"({"flag":false})");
    tovjson::Value out;
    ASSERT_TRUE(parser.getJsonBoolSection(document, "flag", out));
    ASSERT_TRUE(out.IsBool());
    EXPECT_FALSE(out.GetBool());
    EXPECT_TRUE(document["flag"].IsNull());
    tovjson::Value again;
    EXPECT_FALSE(parser.getJsonBoolSection(document, "flag", again));
}

TEST(JsonParserSections, StringSectionIsMovedOutOnce) {
    ExposedParser parser;
    tovjson::Document document = parseOrDie(R"({"name":"value"})");
    tovjson::Value out;
    ASSERT_TRUE(parser.getJsonStringSection(document, "name", out));
    EXPECT_STREQ(out.GetString(), "value");
    EXPECT_TRUE(document["name"].IsNull());
    tovjson::Value again;
    EXPECT_FALSE(parser.getJsonStringSection(document, "name", again));
}

TEST(JsonParserSections, ArrayGetterOnStringConsumesTheMember) {
    ExposedParser parser;
    tovjson::Document document = parseOrDie(R"({"list":"not a list"})");
    tovjson::Value out;
    EXPECT_FALSE(parser.getJsonArraySection(document, "list", out));
    ASSERT_TRUE(out.IsString());
    EXPECT_STREQ(out.GetString(), "not a list");
    EXPECT_TRUE(document["list"].IsNull());
    tovjson::Value again;
    EXPECT_FALSE(parser.getJsonStringSection(document, "list", again));
}

TEST(JsonParserSections, WrongTypeConsumesTheMemberForEveryGetter) {
    ExposedParser parser;
    tovjson::Document document = parseOrDie(R"({"o":"s","a":{"k":"v"},"b":"true","s":["x"]})");
    tovjson::Value out;
    EXPECT_FALSE(parser.getJsonSection(document, "o", out));
    EXPECT_TRUE(out.IsString());
    EXPECT_FALSE(parser.getJsonArraySection(document, "a", out));
    EXPECT_TRUE(out.IsObject());
    EXPECT_FALSE(parser.getJsonBoolSection(document, "b", out));
    EXPECT_TRUE(out.IsString());
    EXPECT_FALSE(parser.getJsonStringSection(document, "s", out));
    EXPECT_TRUE(out.IsArray());
    for (const char* key : {"o", "a", "b", "s"}) {
        EXPECT_TRUE(document.HasMember(key)) << key;
        EXPECT_TRUE(document[key].IsNull()) << key;
    }
    EXPECT_TRUE(parser.getParsingResult());
    EXPECT_EQ(parser.getParsingErrorComment(), "");
}

TEST(JsonParserSections, AbsentMemberLeavesOutputAlone) {
    ExposedParser parser;
    tovjson::Document document = parseOrDie(R"({"a":"b"})");
    tovjson::Value out(42);
    EXPECT_FALSE(parser.getJsonSection(document, "missing", out));
    EXPECT_FALSE(parser.getJsonArraySection(document, "missing", out));
    EXPECT_FALSE(parser.getJsonBoolSection(document, "missing", out));
    EXPECT_FALSE(parser.getJsonStringSection(document, "missing", out));
    ASSERT_TRUE(out.IsInt());
    EXPECT_EQ(out.GetInt(), 42);
    EXPECT_STREQ(document["a"].GetString(), "b");
}

TEST(JsonParserSections, KeywordsAreCaseSensitive) {
    ExposedParser parser;
    tovjson::Document document = parseOrDie(R"({"Name":"v"})");
    tovjson::Value out;
    EXPECT_FALSE(parser.getJsonStringSection(document, "name", out));
    EXPECT_TRUE(out.IsNull());
    EXPECT_STREQ(document["Name"].GetString(), "v");
}

TEST(JsonParserSections, NestedSectionsOfAFetchedSection) {
    ExposedParser parser;
    tovjson::Document document = parseOrDie(R"({"outer":{"inner":{"k":"v"}}})");
    tovjson::Value outer;
    ASSERT_TRUE(parser.getJsonSection(document, "outer", outer));
    tovjson::Value inner;
    ASSERT_TRUE(parser.getJsonSection(outer, "inner", inner));
    EXPECT_STREQ(inner["k"].GetString(), "v");
}

// --- Extraction ---

TEST(JsonParserExtraction, CollectBool) {
    ExposedParser parser;
    bool out = false;
    EXPECT_TRUE(parser.collectBoolFromValue(tovjson::Value(true), out));
    EXPECT_TRUE(out);
    EXPECT_TRUE(parser.collectBoolFromValue(tovjson::Value(false), out));
    EXPECT_FALSE(out);

    out = true;
    tovjson::Document document = parseOrDie(R"({"s":"false","n":0,"z":null})");
    EXPECT_FALSE(parser.collectBoolFromValue(document["s"], out));
    EXPECT_FALSE(parser.collectBoolFromValue(document["n"], out));
    EXPECT_FALSE(parser.collectBoolFromValue(document["z"], out));
    EXPECT_TRUE(out);
}

TEST(JsonParserExtraction, CollectStringNeverTurnsOtherTypesIntoText) {
    ExposedParser parser;
    tovjson::Document document = parseOrDie(R"({"s":"text","n":3,"b":true,"z":null,"a":[]})");
    std::string out = "kept";
    EXPECT_FALSE(parser.collectStringFromValue(document["n"], out));
    EXPECT_FALSE(parser.collectStringFromValue(document["b"], out));
    EXPECT_FALSE(parser.collectStringFromValue(document["z"], out));
    EXPECT_FALSE(parser.collectStringFromValue(document["a"], out));
    EXPECT_EQ(out, "kept");
    EXPECT_TRUE(parser.collectStringFromValue(document["s"], out));
    EXPECT_EQ(out, "text");
}

TEST(JsonParserExtraction, CollectStringStopsAtZeroByte) {
    ExposedParser parser;
    tovjson::Document document = parseOrDie(R"({"s":"ab\u0000cd"})");
    std::string out;
    EXPECT_TRUE(parser.collectStringFromValue(document["s"], out));
    EXPECT_EQ(out, "ab");
}

TEST(JsonParserExtraction, NamesValuesPair) {
    ExposedParser parser;
    tovjson::Document document = parseOrDie(R"({"key":"value","num":5})");
    std::string name;
    std::string value;
    auto member = document.MemberBegin();
    EXPECT_TRUE(parser.getStringNamesValuesPair(member, name, value));
    EXPECT_EQ(name, "key");
    EXPECT_EQ(value, "value");

    ++member;
    EXPECT_FALSE(parser.getStringNamesValuesPair(member, name, value));
    EXPECT_EQ(name, "num");
    EXPECT_EQ(value, "value");
}

TEST(JsonParserExtraction, StringsFromArray) {
    ExposedParser parser;
    tovjson::Document document = parseOrDie(R"({"l":["a","","b"],"e":[],"s":"a","o":{}})");
    std::vector<std::string> out{"prior"};
    EXPECT_TRUE(parser.collectStringsFromArray(document["l"], out));
    EXPECT_EQ(out, (std::vector<std::string>{"prior", "a", "", "b"}));

    EXPECT_TRUE(parser.collectStringsFromArray(document["e"], out));
    EXPECT_EQ(out.size(), 4u);

    EXPECT_FALSE(parser.collectStringsFromArray(document["s"], out));
    EXPECT_FALSE(parser.collectStringsFromArray(document["o"], out));
    EXPECT_EQ(out.size(), 4u);
}

TEST(JsonParserExtraction, StringsFromArrayStopAtFirstOtherTypeKeepingEarlier) {
    ExposedParser parser;
    tovjson::Document document = parseOrDie(R"({"l":["a","b",7,"c"]})");
    std::vector<std::string> out;
    EXPECT_FALSE(parser.collectStringsFromArray(document["l"], out));
    EXPECT_EQ(out, (std::vector<std::string>{"a", "b"}));
    EXPECT_TRUE(parser.getParsingResult());
}

TEST(JsonParserExtraction, KeyValuesPairsOfEmptySection) {
    ExposedParser parser;
    tovjson::Document document = parseOrDie("{}");
    AttributesMap map{{"old", "1"}};
    EXPECT_TRUE(parser.collectKeyValuesPairsFromSection(document, map));
    EXPECT_EQ(map, (AttributesMap{{"old", "1"}}));
}

TEST(JsonParserExtraction, KeyValuesPairsLastDuplicateWinsAndReplacesEarlierCall) {
    ExposedParser parser;
    tovjson::Document document = parseOrDie(R"({"k":"first","other":"o","k":"second"})");
    AttributesMap map{{"other", "before"}, {"keep", "x"}};
    EXPECT_TRUE(parser.collectKeyValuesPairsFromSection(document, map));
    EXPECT_EQ(map, (AttributesMap{{"k", "second"}, {"keep", "x"}, {"other", "o"}}));
}

TEST(JsonParserExtraction, KeyValuesPairsStopAtFirstNonStringKeepingEarlier) {
    ExposedParser parser;
    tovjson::Document document = parseOrDie(R"({"b":"1","a":"2","n":3,"c":"4"})");
    AttributesMap map;
    EXPECT_FALSE(parser.collectKeyValuesPairsFromSection(document, map));
    EXPECT_EQ(map, (AttributesMap{{"a", "2"}, {"b", "1"}}));
    EXPECT_TRUE(parser.getParsingResult());
    EXPECT_EQ(parser.getParsingErrorComment(), "");
}

TEST(JsonParserExtraction, KeyValuesPairsRefuseNestedAndBoolValues) {
    ExposedParser parser;
    tovjson::Document nested = parseOrDie(R"({"m":{"a":"b"}})");
    tovjson::Document flag = parseOrDie(R"({"f":true})");
    AttributesMap map;
    EXPECT_FALSE(parser.collectKeyValuesPairsFromSection(nested, map));
    EXPECT_FALSE(parser.collectKeyValuesPairsFromSection(flag, map));
    EXPECT_TRUE(map.empty());
}
