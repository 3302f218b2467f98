// Tests of the forms a response takes on its way out (maps, the single JSON
// string, the info message) and of the reader that turns the string back.
#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "frame/TOVResponseJsonParser.h"
#include "tov/TOVJsonComposer.h"
#include "tov/TOVResponse.h"
#include "tov/vocabulary.h"

namespace {

using StringMap = std::map<std::string, std::string>;

std::string commentUnder(const TOVResponse& response, const std::string& keyword) {
    std::string comment = "<absent>";
    response.getCommentUnderKeyword(keyword, comment);
    return comment;
}

// A response that has been used already: successful, with an extra keyword.
TOVResponse usedResponse() {
    TOVResponse response;
    response.setGeneralResult(true);
    response.setGeneralResultComment("earlier");
    response.setCommentUnderKeyword("Extra", "kept");
    return response;
}

void expectUsedResponseUntouched(const TOVResponse& response) {
    EXPECT_TRUE(response.getGeneralResult());
    EXPECT_EQ(response.getStringStringMapOfResponse(),
              (StringMap{{"Extra", "kept"}, {"ResultComment", "earlier"}}));
}

}  // namespace

// --- Maps ---

TEST(ResponseFormsMaps, NewResponseMaps) {
    const TOVResponse response;
    EXPECT_EQ(response.getStringStringMapOfResponse(), (StringMap{{"ResultComment", ""}}));
    EXPECT_EQ(response.getStringStringMapResponseWithGeneralResult(),
              (StringMap{{"Result", "Failure"}, {"ResultComment", ""}}));
}

TEST(ResponseFormsMaps, MapWithResultSaysSuccess) {
    TOVResponse response;
    response.setGeneralResult(true);
    response.setCommentUnderKeyword("K", "v");
    EXPECT_EQ(response.getStringStringMapResponseWithGeneralResult(),
              (StringMap{{"K", "v"}, {"Result", "Success"}, {"ResultComment", ""}}));
    EXPECT_EQ(response.getStringStringMapOfResponse(),
              (StringMap{{"K", "v"}, {"ResultComment", ""}}));
}

TEST(ResponseFormsMaps, ResultKeywordInTheMapIsOverwrittenInTheForms) {
    TOVResponse response;
    response.setCommentUnderKeyword("Result", "bogus");
    EXPECT_EQ(commentUnder(response, "Result"), "bogus");
    EXPECT_EQ(response.getStringStringMapResponseWithGeneralResult().at("Result"), "Failure");
    EXPECT_EQ(response.turnResponseIntoASingleString(),
              R"({"Result":"Failure","ResultComment":""})");
}

// --- Single string ---

// The single string is the map with the result, written: its keys in their
// order around "Result" wherever it falls, a keyword "Result" overwritten,
// names and values sanitized, whatever the keywords hold.
TEST(ResponseFormsSingleString, IsTheMapWithTheResultWritten) {
    const std::vector<StringMap> keywordSets = {
        {},
        {{"A", "1"}},
        {{"Result", "bogus"}},
        {{"Resul", "x"}, {"Result ", "y"}, {"ResultA", "z"}, {"Res", "w"}},
        {{"  spaced  key ", " a\tvalue  with  runs "}, {"zzz", ""}, {"Result", ""}},
        {{"\xC3\xA9", "\x01\x7F"}, {"quote\"", "back\\slash"}, {"Z", "last"}},
    };
    for (const StringMap& keywords : keywordSets) {
        for (const bool result : {false, true}) {
            TOVResponse response;
            response.setGeneralResult(result);
            for (const auto& [keyword, value] : keywords) {
                response.setCommentUnderKeyword(keyword, value);
            }
            EXPECT_EQ(response.turnResponseIntoASingleString(),
                      turnStringStringMapIntoJsonString(
                          response.getStringStringMapResponseWithGeneralResult()));
        }
    }
}

TEST(ResponseFormsSingleString, NewResponse) {
    const TOVResponse response;
    EXPECT_EQ(response.turnResponseIntoASingleString(),
              R"({"Result":"Failure","ResultComment":""})");
}

TEST(ResponseFormsSingleString, RulesLoaded) {
    TOVResponse response;
    response.setGeneralResult(true);
    response.setGeneralResultComment("Successfully initialized TOV rules");
    EXPECT_EQ(response.turnResponseIntoASingleString(),
              R"({"Result":"Success","ResultComment":"Successfully initialized TOV rules"})");
}

TEST(ResponseFormsSingleString, EditNeedsMoreData) {
    TOVResponse response;
    response.setThisKeywordToReportMissingData(TOVResponseKeyword_ObjectFamilyMembers);
    response.setThisKeywordToReportMissingData(TOVResponseKeyword_ManualAncestors);
    response.setGeneralResultComment("Reason");
    EXPECT_EQ(response.turnResponseIntoASingleString(),
              R"({"ManualLinkAncestors":"MissingData","ObjectFamilyMembers":"MissingData",)"
              R"("Result":"Failure","ResultComment":"Reason"})");
}

TEST(ResponseFormsSingleString, ApprovedEditWithTriggers) {
    TOVResponse response;
    response.setGeneralResult(true);
    response.setGeneralResultComment("Edit attempt approved");
    response.setAttrToTriggerInitialization({{"revision", "A"}});
    EXPECT_EQ(response.turnResponseIntoASingleString(),
              R"({"Result":"Success","ResultComment":"Edit attempt approved",)"
              R"("TriggerInitialization":"{revision:A}"})");
}

TEST(ResponseFormsSingleString, OptionsQuery) {
    TOVResponse response;
    response.setGeneralResult(true);
    response.setGeneralResultComment("Options");
    response.setConflictResolutionOptions({"revision", "overwrite"});
    EXPECT_EQ(response.turnResponseIntoASingleString(),
              R"({"Result":"Success","ResultComment":"Options",)"
              R"("SelectedVersioningAttribute":"[revision,overwrite]"})");
}

TEST(ResponseFormsSingleString, KnownKeywordsInByteOrder) {
    TOVResponse response;
    response.setCommentUnderKeyword(TOVResponseKeyword_TriggerInitialization, "t");
    response.setCommentUnderKeyword(TOVResponseKeyword_SelectedVersioningAttribute, "s");
    response.setCommentUnderKeyword(TOVResponseKeyword_ObjectFamilyMembers, "o");
    response.setCommentUnderKeyword(TOVResponseKeyword_ManualAncestors, "m");
    response.setCommentUnderKeyword(TOVResponseKeyword_ForcedSpinup, "true");
    response.setCommentUnderKeyword(TOVResponseKeyword_ForcedOverwrite, "true");
    response.setGeneralResultComment("c");
    EXPECT_EQ(response.turnResponseIntoASingleString(),
              R"({"ForcedOverwrite":"true","ForcedSpinup":"true","ManualLinkAncestors":"m",)"
              R"("ObjectFamilyMembers":"o","Result":"Failure","ResultComment":"c",)"
              R"("SelectedVersioningAttribute":"s","TriggerInitialization":"t"})");
}

TEST(ResponseFormsSingleString, AfterInit) {
    TOVResponse response;
    response.init();
    EXPECT_EQ(response.turnResponseIntoASingleString(), R"({"Result":"Failure"})");
}

// --- Info message ---

TEST(ResponseFormsInfo, ResultWordThenComment) {
    TOVResponse response;
    response.setGeneralResult(true);
    response.setGeneralResultComment("Edit attempt approved");
    EXPECT_EQ(response.createVemoInfoMessage(), "Success! Edit attempt approved");
}

TEST(ResponseFormsInfo, EmptyCommentEndsInTheBlank) {
    const TOVResponse response;
    EXPECT_EQ(response.createVemoInfoMessage(), "Failure! ");
    TOVResponse removed;
    removed.removeKeyword("ResultComment");
    EXPECT_EQ(removed.createVemoInfoMessage(), "Failure! ");
}

TEST(ResponseFormsInfo, OnlyTheFirstAnyIsReworded) {
    TOVResponse response;
    response.setGeneralResultComment("Rule for <any> forbids <any> value");
    EXPECT_EQ(response.createVemoInfoMessage(),
              "Failure! Rule for any object type forbids <any> value");
    EXPECT_EQ(response.getGeneralResultComment(), "Rule for <any> forbids <any> value");
}

TEST(ResponseFormsInfo, CommentWithoutAnyStaysAsItIs) {
    TOVResponse response;
    response.setGeneralResultComment("Rule for <ANY> and <any");
    EXPECT_EQ(response.createVemoInfoMessage(), "Failure! Rule for <ANY> and <any");
}

// --- Result word ---

TEST(ResponseFormsReader, GeneralResultWordIgnoresCase) {
    TOVResponse response;
    EXPECT_TRUE(response.fillGeneralResultFromStringValue("sUcCeSs"));
    EXPECT_TRUE(response.getGeneralResult());
    EXPECT_TRUE(response.fillGeneralResultFromStringValue("FAILURE"));
    EXPECT_FALSE(response.getGeneralResult());
    EXPECT_TRUE(response.fillGeneralResultFromStringValue("Success"));
    EXPECT_TRUE(response.getGeneralResult());
}

TEST(ResponseFormsReader, OtherWordsLeaveTheResult) {
    TOVResponse response;
    response.setGeneralResult(true);
    for (const char* word : {"", "Succes", "Successs", "true", "Failure ", "1"}) {
        EXPECT_FALSE(response.fillGeneralResultFromStringValue(word)) << word;
        EXPECT_TRUE(response.getGeneralResult()) << word;
    }
}

// --- Map reader ---

TEST(ResponseFormsReader, FillFromMapMerges) {
    TOVResponse response = usedResponse();
    EXPECT_TRUE(response.fillFromStringStringMap(
        {{"Result", "failure"}, {"ResultComment", "new"}, {"Other", "o"}, {"Extra", "replaced"}}));
    EXPECT_FALSE(response.getGeneralResult());
    EXPECT_EQ(response.getStringStringMapOfResponse(),
              (StringMap{{"Extra", "replaced"}, {"Other", "o"}, {"ResultComment", "new"}}));
}

TEST(ResponseFormsReader, FillFromEmptyMapChangesNothing) {
    TOVResponse response = usedResponse();
    EXPECT_TRUE(response.fillFromStringStringMap({}));
    expectUsedResponseUntouched(response);
}

TEST(ResponseFormsReader, FillFromMapIgnoresUnknownResultWord) {
    TOVResponse response = usedResponse();
    EXPECT_TRUE(response.fillFromStringStringMap({{"Result", "maybe"}}));
    expectUsedResponseUntouched(response);
}

TEST(ResponseFormsReader, FillFromMapMatchesKeywordsExactly) {
    TOVResponse response;
    EXPECT_TRUE(
        response.fillFromStringStringMap({{"result", "Success"}, {"resultcomment", "lower"}}));
    EXPECT_FALSE(response.getGeneralResult());
    EXPECT_EQ(
        response.getStringStringMapOfResponse(),
        (StringMap{{"ResultComment", ""}, {"result", "Success"}, {"resultcomment", "lower"}}));
}

// --- String reader ---

TEST(ResponseFormsReader, FreshRecordCopiesWhatWasWritten) {
    TOVResponse original;
    original.setGeneralResult(true);
    original.setGeneralResultComment("Edit attempt approved");
    original.setAttrToTriggerInitialization({{"a", "1"}, {"b", "2"}});
    original.setConflictResolutionOptions({"rev", "overwrite"});

    TOVResponse copy;
    EXPECT_TRUE(
        copy.fillResponseFromASingleString(original.turnResponseIntoASingleString().c_str()));
    EXPECT_TRUE(copy.getGeneralResult());
    EXPECT_EQ(copy.getStringStringMapOfResponse(), original.getStringStringMapOfResponse());

    AttributesMap triggers;
    EXPECT_TRUE(copy.collectAttrsToTriggerInitialization(triggers));
    EXPECT_EQ(triggers, (AttributesMap{{"a", "1"}, {"b", "2"}}));
    std::vector<std::string> options;
    EXPECT_TRUE(copy.collectConflictResolutionOptions(options));
    EXPECT_EQ(options, (std::vector<std::string>{"rev", "overwrite"}));
}

TEST(ResponseFormsReader, OnlyResultIsRefused) {
    TOVResponse response = usedResponse();
    EXPECT_FALSE(response.fillResponseFromASingleString(R"({"Result":"Failure"})"));
    expectUsedResponseUntouched(response);
}

TEST(ResponseFormsReader, OnlyCommentIsRefused) {
    TOVResponse response = usedResponse();
    EXPECT_FALSE(response.fillResponseFromASingleString(R"({"ResultComment":"x","K":"v"})"));
    expectUsedResponseUntouched(response);
}

TEST(ResponseFormsReader, NumberBesideKeywordsIsAcceptedButFillsNothing) {
    TOVResponse response = usedResponse();
    EXPECT_TRUE(response.fillResponseFromASingleString(
        R"({"Result":"Failure","ResultComment":"new","Count":3})"));
    expectUsedResponseUntouched(response);
}

TEST(ResponseFormsReader, FirstNonStringMemberEndsCollection) {
    TOVResponse response = usedResponse();
    EXPECT_TRUE(response.fillResponseFromASingleString(
        R"({"Flag":true,"Result":"Failure","ResultComment":"new"})"));
    expectUsedResponseUntouched(response);
    EXPECT_TRUE(response.fillResponseFromASingleString(
        R"({"Result":"Failure","ResultComment":"new","Nested":{"a":"b"}})"));
    expectUsedResponseUntouched(response);
}

TEST(ResponseFormsReader, NoJsonObjectIsRefused) {
    TOVResponse response = usedResponse();
    for (const char* text : {"", "   ", "[]", R"(["Result","ResultComment"])", R"("text")", "1",
                             "{", R"({"Result":"Success","ResultComment":"x"} trailing)"}) {
        EXPECT_FALSE(response.fillResponseFromASingleString(text)) << text;
        expectUsedResponseUntouched(response);
    }
}

TEST(ResponseFormsReader, ResultInCapitalsSetsTheResult) {
    TOVResponse response;
    EXPECT_TRUE(
        response.fillResponseFromASingleString(R"({"Result":"SUCCESS","ResultComment":"ok"})"));
    EXPECT_TRUE(response.getGeneralResult());
    EXPECT_EQ(response.getGeneralResultComment(), "ok");

    EXPECT_TRUE(
        response.fillResponseFromASingleString(R"({"Result":"failure","ResultComment":""})"));
    EXPECT_FALSE(response.getGeneralResult());
    EXPECT_EQ(response.getGeneralResultComment(), "");
}

TEST(ResponseFormsReader, UnknownResultWordKeepsTheFormerResult) {
    TOVResponse successful;
    successful.setGeneralResult(true);
    EXPECT_TRUE(
        successful.fillResponseFromASingleString(R"({"Result":"Unknown","ResultComment":"c"})"));
    EXPECT_TRUE(successful.getGeneralResult());
    EXPECT_EQ(successful.getGeneralResultComment(), "c");

    TOVResponse failed;
    EXPECT_TRUE(
        failed.fillResponseFromASingleString(R"({"Result":"Unknown","ResultComment":"c"})"));
    EXPECT_FALSE(failed.getGeneralResult());
}

TEST(ResponseFormsReader, RemovedCommentKeywordWritesATextItsReaderRefuses) {
    TOVResponse writer;
    writer.setGeneralResult(true);
    writer.removeKeyword("ResultComment");
    const std::string text = writer.turnResponseIntoASingleString();
    EXPECT_EQ(text, R"({"Result":"Success"})");
    TOVResponse reader;
    EXPECT_FALSE(reader.fillResponseFromASingleString(text.c_str()));
    EXPECT_FALSE(reader.getGeneralResult());
    EXPECT_EQ(reader.getStringStringMapOfResponse(), (StringMap{{"ResultComment", ""}}));
}

TEST(ResponseFormsReader, DoubleBlanksComeBackAsOne) {
    TOVResponse writer;
    writer.setGeneralResultComment("two  blanks");
    TOVResponse reader;
    EXPECT_TRUE(
        reader.fillResponseFromASingleString(writer.turnResponseIntoASingleString().c_str()));
    EXPECT_EQ(reader.getGeneralResultComment(), "two blanks");
}

TEST(ResponseFormsReader, LineBreaksAndListValuesAreCollapsed) {
    TOVResponse writer;
    writer.setGeneralResultComment("First line\nsecond\t\tline ");
    writer.setCommentUnderKeyword("List", "[a,  b]");
    writer.setAttrToTriggerInitialization({{"a", "x  y"}});
    const std::string text = writer.turnResponseIntoASingleString();
    EXPECT_EQ(text,
              R"({"List":"[a, b]","Result":"Failure","ResultComment":"First line second line",)"
              R"("TriggerInitialization":"{a:x y}"})");
    TOVResponse reader;
    EXPECT_TRUE(reader.fillResponseFromASingleString(text.c_str()));
    EXPECT_EQ(reader.getGeneralResultComment(), "First line second line");
    EXPECT_EQ(commentUnder(reader, "List"), "[a, b]");
    AttributesMap triggers;
    EXPECT_TRUE(reader.collectAttrsToTriggerInitialization(triggers));
    EXPECT_EQ(triggers, (AttributesMap{{"a", "x y"}}));
}

TEST(ResponseFormsReader, KeysDifferingOnlyInWhiteSpaceBecomeOneEntry) {
    TOVResponse writer;
    writer.setCommentUnderKeyword(" k", "1");
    writer.setCommentUnderKeyword("k", "2");
    const std::string text = writer.turnResponseIntoASingleString();
    EXPECT_EQ(text, R"({"k":"1","Result":"Failure","ResultComment":"","k":"2"})");
    TOVResponse reader;
    EXPECT_TRUE(reader.fillResponseFromASingleString(text.c_str()));
    EXPECT_EQ(reader.getStringStringMapOfResponse(),
              (StringMap{{"ResultComment", ""}, {"k", "2"}}));
}

// A keyword that differs from "Result" only in white space is written as a
// second "Result" member, in front of the real one or behind it by byte order,
// and the reader takes the later one.
std::string approvedWithStrayResultKeyword(const std::string& keyword) {
    TOVResponse writer;
    writer.setGeneralResult(true);
    writer.setGeneralResultComment("Edit attempt approved");
    writer.setCommentUnderKeyword(keyword, "Failure");
    return writer.turnResponseIntoASingleString();
}

// The general result that reading `text` leaves in a record whose result
// stood at `before`, so that a test sees what the reading set.
bool resultReadBack(const std::string& text, bool before) {
    TOVResponse reader;
    reader.setGeneralResult(before);
    EXPECT_TRUE(reader.fillResponseFromASingleString(text.c_str()));
    EXPECT_EQ(reader.getStringStringMapOfResponse(),
              (StringMap{{"ResultComment", "Edit attempt approved"}}));
    return reader.getGeneralResult();
}

TEST(ResponseFormsReader, ResultKeywordWithLeadingBlankIsOverruledByTheRealResult) {
    const std::string text = approvedWithStrayResultKeyword(" Result");
    EXPECT_EQ(text,
              R"({"Result":"Failure","Result":"Success","ResultComment":"Edit attempt approved"})");
    EXPECT_TRUE(resultReadBack(text, false));
}

TEST(ResponseFormsReader, ResultKeywordWithTrailingBlankOverrulesTheRealResult) {
    const std::string text = approvedWithStrayResultKeyword("Result ");
    EXPECT_EQ(text,
              R"({"Result":"Success","Result":"Failure","ResultComment":"Edit attempt approved"})");
    EXPECT_FALSE(resultReadBack(text, true));
}

TEST(ResponseFormsReader, LaterDuplicateMemberWins) {
    TOVResponse reader;
    EXPECT_TRUE(reader.fillResponseFromASingleString(
        R"({"Result":"Success","ResultComment":"a","ResultComment":"b","Result":"Failure"})"));
    EXPECT_FALSE(reader.getGeneralResult());
    EXPECT_EQ(reader.getGeneralResultComment(), "b");
}

TEST(ResponseFormsReader, QuotingComesBackUnchanged) {
    const std::string comment = "say \"hi\" \\ back\x01slash /";
    TOVResponse writer;
    writer.setGeneralResultComment(comment.c_str());
    const std::string text = writer.turnResponseIntoASingleString();
    EXPECT_EQ(text, R"({"Result":"Failure","ResultComment":"say \"hi\" \\ back\u0001slash /"})");
    TOVResponse reader;
    EXPECT_TRUE(reader.fillResponseFromASingleString(text.c_str()));
    EXPECT_EQ(reader.getGeneralResultComment(), comment);
}

TEST(ResponseFormsReader, FillingAUsedRecordMerges) {
    TOVResponse response = usedResponse();
    EXPECT_TRUE(response.fillResponseFromASingleString(
        R"({"Result":"Failure","ResultComment":"new","TriggerInitialization":"{a:1}"})"));
    EXPECT_FALSE(response.getGeneralResult());
    EXPECT_EQ(
        response.getStringStringMapOfResponse(),
        (StringMap{
            {"Extra", "kept"}, {"ResultComment", "new"}, {"TriggerInitialization", "{a:1}"}}));
}

TEST(ResponseFormsReader, WhiteSpaceOnlyCommentIsLost) {
    TOVResponse writer;
    writer.setGeneralResultComment(" \t\n ");
    const std::string text = writer.turnResponseIntoASingleString();
    EXPECT_EQ(text, R"({"Result":"Failure","ResultComment":""})");
    TOVResponse reader;
    reader.setGeneralResultComment("before");
    EXPECT_TRUE(reader.fillResponseFromASingleString(text.c_str()));
    EXPECT_EQ(reader.getGeneralResultComment(), "");
}

TEST(ResponseFormsReader, OtherMembersComeBackUnderTheirKeywords) {
    TOVResponse reader;
    EXPECT_TRUE(reader.fillResponseFromASingleString(
        R"({"ManualLinkAncestors":"MissingData","Result":"Failure","ResultComment":"r",)"
        R"("TriggerInitialization":"{state:New, owner:me}"})"));
    EXPECT_TRUE(reader.doesThisKeywordReportMissingData(TOVResponseKeyword_ManualAncestors));
    TOVMissingDataForEvaluation data;
    EXPECT_TRUE(reader.needsReevaluation(data));
    EXPECT_FALSE(data.objectFamilyMembersMissing);
    EXPECT_TRUE(data.manualLinkAncestorsMissing);
    AttributesMap triggers;
    EXPECT_TRUE(reader.collectAttrsToTriggerInitialization(triggers));
    EXPECT_EQ(triggers, (AttributesMap{{"owner", "me"}, {"state", "New"}}));
}

// The reader's own comment never reaches the caller, but it is worded like
// every other parser's.
TEST(ResponseFormsReader, ParserNamesBothMandatoryKeywordsUnderItsRuleName) {
    TOVResponse response;
    TOVResponseJsonParser parser(&response);
    EXPECT_FALSE(parser.fill(R"({"Result":"Success"})"));
    EXPECT_FALSE(parser.getParsingResult());
    EXPECT_EQ(parser.getParsingErrorComment(),
              "TOV Response demands ALL keywords: [Result,ResultComment]");
    EXPECT_EQ(response.turnResponseIntoASingleString(),
              R"({"Result":"Failure","ResultComment":""})");
}
