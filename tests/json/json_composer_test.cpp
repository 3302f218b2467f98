// Tests of the JSON writer: white-space normalization, string-only members,
// member order, and the three request composers.
#include <map>
#include <string>

#include <gtest/gtest.h>

#include "json/TOVJsonDocumentWriter.h"
#include "json/json_types.h"
#include "tov/TOVJsonComposer.h"
#include "tov/TOVResponse.h"

namespace {

// The composer with its white-space helpers opened up.
class ExposedComposer : public TOVJsonComposer {
public:
    using TOVJsonComposer::getSanitizedStringForJsonDoc;
    using TOVJsonComposer::removeHeadSpaces;
    using TOVJsonComposer::removeTailSpaces;
    using TOVJsonComposer::simplifyAnStdString;
};

std::string headTrimmed(std::string text) {
    ExposedComposer::removeHeadSpaces(text);
    return text;
}

std::string tailTrimmed(std::string text) {
    ExposedComposer::removeTailSpaces(text);
    return text;
}

std::string simplified(std::string text) {
    ExposedComposer::simplifyAnStdString(text);
    return text;
}

std::string compose(const std::map<std::string, std::string>& map) {
    return TOVJsonComposer().createJsonFromStringStringMap(map);
}

}  // namespace

// --- White space ---

TEST(JsonComposerWhiteSpace, RemoveHeadSpaces) {
    EXPECT_EQ(headTrimmed(" \t\n\v\f\rab c "), "ab c ");
    EXPECT_EQ(headTrimmed("abc"), "abc");
    EXPECT_EQ(headTrimmed(""), "");
    EXPECT_EQ(headTrimmed(" \t\n"), "");
}

TEST(JsonComposerWhiteSpace, RemoveTailSpaces) {
    EXPECT_EQ(tailTrimmed(" ab c \t\n\v\f\r"), " ab c");
    EXPECT_EQ(tailTrimmed("abc"), "abc");
    EXPECT_EQ(tailTrimmed(""), "");
    EXPECT_EQ(tailTrimmed("\r\n "), "");
}

TEST(JsonComposerWhiteSpace, SimplifyCollapsesRunsIntoOneBlank) {
    EXPECT_EQ(simplified("  a  b\t\tc\n\nd \t\n\v\f\re  "), "a b c d e");
    EXPECT_EQ(simplified("a\tb"), "a b");
    EXPECT_EQ(simplified("a\vb"), "a b");
    EXPECT_EQ(simplified("a\fb"), "a b");
    EXPECT_EQ(simplified("a\rb"), "a b");
    EXPECT_EQ(simplified("plain"), "plain");
    EXPECT_EQ(simplified(""), "");
    EXPECT_EQ(simplified(" \t\n\v\f\r"), "");
}

TEST(JsonComposerWhiteSpace, OtherControlCharactersAreNoWhiteSpace) {
    EXPECT_EQ(simplified("a\x01\x01z"), "a\x01\x01z");
    EXPECT_EQ(simplified(std::string("a\0b", 3)), std::string("a\0b", 3));
}

TEST(JsonComposerWhiteSpace, WhiteSpaceIsTheSixOfTheDefaultLocaleAndNoOtherByte) {
    const std::string whiteSpace = " \t\n\v\f\r";
    for (int byte = 1; byte < 256; ++byte) {
        const char c = static_cast<char>(byte);
        const bool isWhite = whiteSpace.find(c) != std::string::npos;
        // Inside a value, at its ends and in a response's single string alike.
        EXPECT_EQ(simplified(std::string("a") + c + "b"),
                  isWhite ? "a b" : std::string("a") + c + "b")
            << "byte " << byte;
        EXPECT_EQ(simplified(std::string(1, c) + "x" + c),
                  isWhite ? "x" : std::string(1, c) + "x" + c)
            << "byte " << byte;
    }
}

TEST(JsonComposerWhiteSpace, SanitizedStringIsACopy) {
    const std::string original = " a  b ";
    EXPECT_EQ(ExposedComposer::getSanitizedStringForJsonDoc(original), "a b");
    EXPECT_EQ(original, " a  b ");
}

// --- Maps ---

TEST(JsonComposerMap, EmptyMapGivesEmptyObject) {
    EXPECT_EQ(compose({}), "{}");
    EXPECT_EQ(turnStringStringMapIntoJsonString({}), "{}");
}

TEST(JsonComposerMap, MembersInByteOrderOfKeys) {
    const std::map<std::string, std::string> map{{"b", "2"}, {"a", "1"}, {"_", "u"}, {"B", "3"}};
    EXPECT_EQ(compose(map), R"({"B":"3","_":"u","a":"1","b":"2"})");
    EXPECT_EQ(turnStringStringMapIntoJsonString(map), R"({"B":"3","_":"u","a":"1","b":"2"})");
}

TEST(JsonComposerMap, KeyAndValueAreTrimmedAndCollapsed) {
    EXPECT_EQ(compose({{" key  name ", "\tvalue\n\ntext "}}), R"({"key name":"value text"})");
}

TEST(JsonComposerMap, WhiteSpaceOnlyValueGivesEmptyString) {
    EXPECT_EQ(compose({{"k", " \t\n "}}), R"({"k":""})");
}

TEST(JsonComposerMap, WhiteSpaceOnlyKeyGivesEmptyName) {
    EXPECT_EQ(compose({{" \t ", "v"}}), R"({"":"v"})");
}

TEST(JsonComposerMap, KeysThatSanitizeAlikeGiveTwoMembers) {
    // "a  b" sorts before "a b", so its value comes first.
    EXPECT_EQ(compose({{"a b", "1"}, {"a  b", "2"}}), R"({"a b":"2","a b":"1"})");
}

TEST(JsonComposerMap, QuotesBackSlashesAndControlCharactersAreEscaped) {
    EXPECT_EQ(compose({{"k", "say \"hi\""}}), R"({"k":"say \"hi\""})");
    EXPECT_EQ(compose({{"k", "a\\b"}}), R"({"k":"a\\b"})");
    EXPECT_EQ(compose({{"k", "a\x01z"}}), R"({"k":"a\u0001z"})");
    EXPECT_EQ(compose({{"q\"k", "v"}}), R"({"q\"k":"v"})");
}

TEST(JsonComposerMap, ValuesAreNeverInterpreted) {
    EXPECT_EQ(compose({{"list", "[a,b]"}}), R"({"list":"[a,b]"})");
    EXPECT_EQ(compose({{"map", "{a:1}"}}), R"({"map":"{a:1}"})");
    EXPECT_EQ(compose({{"json", R"({"a":"1"})"}}), R"({"json":"{\"a\":\"1\"}"})");
    EXPECT_EQ(compose({{"n", "12"}}), R"({"n":"12"})");
    EXPECT_EQ(compose({{"f", " -1.5e3 "}}), R"({"f":"-1.5e3"})");
    EXPECT_EQ(compose({{"b", "true"}}), R"({"b":"true"})");
    EXPECT_EQ(compose({{"z", "null"}}), R"({"z":"null"})");
}

TEST(JsonComposerMap, KeyAndValueEndAtFirstZeroByte) {
    EXPECT_EQ(compose({{std::string("ke\0y", 4), std::string("va\0lue", 6)}}), R"({"ke":"va"})");
}

TEST(JsonComposerMap, Utf8PassesAsItStands) {
    EXPECT_EQ(compose({{"caf\xC3\xA9", "\xE2\x82\xAC 5"}}), "{\"caf\xC3\xA9\":\"\xE2\x82\xAC 5\"}");
}

TEST(JsonComposerMap, ResponseFromClass) {
    TOVResponse response;
    EXPECT_EQ(TOVJsonComposer().createJsonResponseFromClass(&response),
              R"({"Result":"Failure","ResultComment":""})");
    response.setGeneralResult(true);
    response.setGeneralResultComment("  Edit  attempt\napproved ");
    response.setCommentUnderKeyword("TriggerInitialization", "{a:1}");
    EXPECT_EQ(TOVJsonComposer().createJsonResponseFromClass(&response),
              R"({"Result":"Success","ResultComment":"Edit attempt approved",)"
              R"("TriggerInitialization":"{a:1}"})");
}

// --- Document steps ---

TEST(JsonComposerDocument, AddNameValueAppendsBehindExistingMembersWithoutDuplicateCheck) {
    tovjson::Document document;
    document.SetObject();
    auto& allocator = document.GetAllocator();
    TOVJsonDocumentWriter::addNameValueToJsonDoc("z", "1", document, allocator);
    TOVJsonDocumentWriter::addNameValueToJsonDoc(" a ", " [x,  y] ", document, allocator);
    TOVJsonDocumentWriter::addNameValueToJsonDoc("z", "2", document, allocator);
    EXPECT_EQ(TOVJsonDocumentWriter::createStringFromJsonDocument(document),
              R"({"z":"1","a":"[x, y]","z":"2"})");
}

TEST(JsonComposerDocument, AddNamesValuesFollowsMapOrder) {
    tovjson::Document document;
    document.SetObject();
    auto& allocator = document.GetAllocator();
    TOVJsonDocumentWriter::addNameValueToJsonDoc("first", "f", document, allocator);
    TOVJsonDocumentWriter::addNamesValuesToJsonDoc({{"b", "2"}, {"a", "1"}}, document, allocator);
    EXPECT_EQ(TOVJsonDocumentWriter::createStringFromJsonDocument(document),
              R"({"first":"f","a":"1","b":"2"})");
}

TEST(JsonComposerDocument, WriterIsCompact) {
    tovjson::Document document;
    document.Parse("{ \"a\" : [ 1 , true , null ] , \"b\" : { } }");
    ASSERT_FALSE(document.HasParseError());
    EXPECT_EQ(TOVJsonDocumentWriter::createStringFromJsonDocument(document),
              R"({"a":[1,true,null],"b":{}})");
}

// --- composeSimpleTransitionJson ---

TEST(JsonComposerTransition, ComposesThreeMembersInOrder) {
    std::string json;
    EXPECT_EQ(composeSimpleTransitionJson("Part", {{"state", " In  Work "}, {"a", "1"}},
                                          {{"state", "Released"}}, json),
              1);
    EXPECT_EQ(json, R"({"objectType":"Part","initialAttributes":{"a":"1","state":"In Work"},)"
                    R"("targetAttributes":{"state":"Released"}})");
}

TEST(JsonComposerTransition, EmptyInitialAttributesGiveEmptyObject) {
    std::string json = "old";
    EXPECT_EQ(composeSimpleTransitionJson("Part", {}, {{"a", "1"}}, json), 1);
    EXPECT_EQ(json, R"({"objectType":"Part","initialAttributes":{},"targetAttributes":{"a":"1"}})");
}

TEST(JsonComposerTransition, RefusesEmptyObjectTypeOrTarget) {
    std::string json = "untouched";
    EXPECT_EQ(composeSimpleTransitionJson("", {{"a", "0"}}, {{"a", "1"}}, json), 0);
    EXPECT_EQ(json, "untouched");
    EXPECT_EQ(composeSimpleTransitionJson("Part", {{"a", "0"}}, {}, json), 0);
    EXPECT_EQ(json, "untouched");
}

TEST(JsonComposerTransition, ObjectTypeIsNotSanitizedButKeysAre) {
    std::string json;
    EXPECT_EQ(composeSimpleTransitionJson(" My  Type ", {}, {{"my  key", "v"}}, json), 1);
    EXPECT_EQ(json, R"({"objectType":" My  Type ","initialAttributes":{},)"
                    R"("targetAttributes":{"my key":"v"}})");
}

TEST(JsonComposerTransition, ObjectTypeEndsAtFirstZeroByte) {
    std::string json;
    EXPECT_EQ(composeSimpleTransitionJson(std::string("Pa\0rt", 5), {}, {{"a", "1"}}, json), 1);
    EXPECT_EQ(json, R"({"objectType":"Pa","initialAttributes":{},"targetAttributes":{"a":"1"}})");
}

TEST(JsonComposerTransition, ObjectTypeIsEscaped) {
    std::string json;
    EXPECT_EQ(composeSimpleTransitionJson("a\"b", {}, {{"a", "1"}}, json), 1);
    EXPECT_EQ(json, R"({"objectType":"a\"b","initialAttributes":{},"targetAttributes":{"a":"1"}})");
}

// A host's keys are collapsed after its map ordered them, so two that differ
// only in white space meet under one name; nothing merges them.
TEST(JsonComposerTransition, TargetKeysDifferingOnlyInWhiteSpaceGiveTwoMembers) {
    std::string json;
    EXPECT_EQ(composeSimpleTransitionJson("Part", {{"Status", "In Review"}},
                                          {{"Status", "Released"}, {" Status", "In Work"}}, json),
              1);
    EXPECT_EQ(json, R"({"objectType":"Part","initialAttributes":{"Status":"In Review"},)"
                    R"("targetAttributes":{"Status":"In Work","Status":"Released"}})");
}

// --- composeConflictResolutionsOptionsJson ---

TEST(JsonComposerOptions, ComposesFourMembersWithBool) {
    std::string json;
    EXPECT_EQ(
        composeConflictResolutionsOptionsJson("Part", {{"rev", "A"}}, {{"rev", "B"}}, true, json),
        1);
    EXPECT_EQ(json, R"({"objectType":"Part","initialAttributes":{"rev":"A"},)"
                    R"("targetAttributes":{"rev":"B"},"uploadsRepresentationFile":true})");
    EXPECT_EQ(composeConflictResolutionsOptionsJson("Part", {{"rev", "A"}}, {{"rev", " B "}}, false,
                                                    json),
              1);
    EXPECT_EQ(json, R"({"objectType":"Part","initialAttributes":{"rev":"A"},)"
                    R"("targetAttributes":{"rev":"B"},"uploadsRepresentationFile":false})");
}

TEST(JsonComposerOptions, RefusesAnyEmptyInput) {
    std::string json = "untouched";
    EXPECT_EQ(composeConflictResolutionsOptionsJson("", {{"a", "0"}}, {{"a", "1"}}, true, json), 0);
    EXPECT_EQ(composeConflictResolutionsOptionsJson("Part", {}, {{"a", "1"}}, true, json), 0);
    EXPECT_EQ(composeConflictResolutionsOptionsJson("Part", {{"a", "0"}}, {}, false, json), 0);
    EXPECT_EQ(json, "untouched");
}

// --- composeSimpleManualLinkEvaluationJson ---

TEST(JsonComposerManualLink, ComposesAncestorThenDescendant) {
    std::string json;
    EXPECT_EQ(composeSimpleManualLinkEvaluationJson("Assembly", {{"state", "Released"}}, "Part",
                                                    {{"b", "2"}, {" a ", " 1 "}}, json),
              1);
    EXPECT_EQ(json, R"({"ancestor":{"objectType":"Assembly","attributes":{"state":"Released"}},)"
                    R"("descendant":{"objectType":"Part","attributes":{"a":"1","b":"2"}}})");
}

TEST(JsonComposerManualLink, ObjectTypesAreNotSanitized) {
    std::string json;
    EXPECT_EQ(
        composeSimpleManualLinkEvaluationJson(" A  B", {{"x", "1"}}, "C  D ", {{"y", "2"}}, json),
        1);
    EXPECT_EQ(json, R"({"ancestor":{"objectType":" A  B","attributes":{"x":"1"}},)"
                    R"("descendant":{"objectType":"C  D ","attributes":{"y":"2"}}})");
}

TEST(JsonComposerManualLink, RefusesAnyEmptyInput) {
    std::string json = "untouched";
    EXPECT_EQ(composeSimpleManualLinkEvaluationJson("", {{"x", "1"}}, "D", {{"y", "2"}}, json), 0);
    EXPECT_EQ(composeSimpleManualLinkEvaluationJson("A", {}, "D", {{"y", "2"}}, json), 0);
    EXPECT_EQ(composeSimpleManualLinkEvaluationJson("A", {{"x", "1"}}, "", {{"y", "2"}}, json), 0);
    EXPECT_EQ(composeSimpleManualLinkEvaluationJson("A", {{"x", "1"}}, "D", {}, json), 0);
    EXPECT_EQ(json, "untouched");
}
