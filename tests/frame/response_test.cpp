// Tests of the response record: the general result, the keyword map, the
// missing-data marks and the debug lines.
#include <cstdio>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "test_support.h"
#include "tov/TOVLogger.h"
#include "tov/TOVResponse.h"
#include "tov/vocabulary.h"

namespace {

using Strings = std::vector<std::string>;

std::string commentUnder(const TOVResponse& response, const std::string& keyword) {
    std::string comment = "<absent>";
    response.getCommentUnderKeyword(keyword, comment);
    return comment;
}

// Runs `print` with a console logger and returns what reached standard output.
template <typename Print>
std::string captureConsole(Print print) {
    TOVLogger logger(LogNowhere);
    return tovtest::captureConsole(&logger, [&] { print(&logger); });
}

}  // namespace

// --- Construction, copy and move ---

TEST(ResponseRecord, NewResponseFailsWithEmptyComment) {
    TOVResponse response;
    EXPECT_FALSE(response.getGeneralResult());
    std::string comment = "before";
    EXPECT_TRUE(response.getCommentUnderKeyword("ResultComment", comment));
    EXPECT_EQ(comment, "");
    EXPECT_EQ(response.getGeneralResultComment(), "");
    EXPECT_EQ(response.getStringStringMapOfResponse(),
              (std::map<std::string, std::string>{{"ResultComment", ""}}));
}

TEST(ResponseRecord, InitLeavesNoCommentKeyword) {
    TOVResponse response;
    response.setGeneralResult(true);
    response.setGeneralResultComment("text");
    response.setCommentUnderKeyword("Other", "x");
    response.init();
    EXPECT_FALSE(response.getGeneralResult());
    std::string comment = "before";
    EXPECT_FALSE(response.getCommentUnderKeyword("ResultComment", comment));
    EXPECT_EQ(comment, "before");
    EXPECT_EQ(response.getGeneralResultComment(), "");
    EXPECT_TRUE(response.getStringStringMapOfResponse().empty());
}

TEST(ResponseRecord, CopyConstructionIsMemberWise) {
    TOVResponse original;
    original.setGeneralResult(true);
    original.setGeneralResultComment("approved");
    original.setCommentUnderKeyword("K", "v");

    TOVResponse copy(original);
    EXPECT_TRUE(copy.getGeneralResult());
    EXPECT_EQ(copy.getStringStringMapOfResponse(), original.getStringStringMapOfResponse());

    copy.setCommentUnderKeyword("K", "changed");
    EXPECT_EQ(commentUnder(original, "K"), "v");
    EXPECT_EQ(commentUnder(copy, "K"), "changed");
}

TEST(ResponseRecord, CopyAssignmentReplacesEverything) {
    TOVResponse original;
    original.setGeneralResult(true);
    original.setCommentUnderKeyword("K", "v");

    TOVResponse target;
    target.setCommentUnderKeyword("Old", "o");
    target = original;
    EXPECT_TRUE(target.getGeneralResult());
    EXPECT_EQ(target.getStringStringMapOfResponse(),
              (std::map<std::string, std::string>{{"K", "v"}, {"ResultComment", ""}}));
    EXPECT_EQ(original.getStringStringMapOfResponse().size(), 2u);
}

TEST(ResponseRecord, MoveConstructionEmptiesTheSourceMap) {
    TOVResponse source;
    source.setGeneralResult(true);
    source.setGeneralResultComment("moved");
    source.setCommentUnderKeyword("K", "v");

    TOVResponse target(std::move(source));
    EXPECT_TRUE(target.getGeneralResult());
    EXPECT_EQ(target.getStringStringMapOfResponse(),
              (std::map<std::string, std::string>{{"K", "v"}, {"ResultComment", "moved"}}));
    // A moved-from response keeps an empty map, which callers may rely on.
    // NOLINTNEXTLINE(bugprone-use-after-move): the moved-from state is what is tested.
    EXPECT_TRUE(source.getStringStringMapOfResponse().empty());
    EXPECT_TRUE(source.getGeneralResult());
}

TEST(ResponseRecord, MoveAssignmentEmptiesTheSourceMap) {
    TOVResponse source;
    source.setCommentUnderKeyword("K", "v");

    TOVResponse target;
    target.setGeneralResult(true);
    target.setCommentUnderKeyword("Old", "o");
    target = std::move(source);
    EXPECT_FALSE(target.getGeneralResult());
    EXPECT_EQ(target.getStringStringMapOfResponse(),
              (std::map<std::string, std::string>{{"K", "v"}, {"ResultComment", ""}}));
    // A moved-from response keeps an empty map, which callers may rely on.
    // NOLINTNEXTLINE(bugprone-use-after-move): the moved-from state is what is tested.
    EXPECT_TRUE(source.getStringStringMapOfResponse().empty());
}

// --- General result and comment ---

TEST(ResponseRecord, GeneralResultIsStored) {
    TOVResponse response;
    response.setGeneralResult(true);
    EXPECT_TRUE(response.getGeneralResult());
    response.setGeneralResult(false);
    EXPECT_FALSE(response.getGeneralResult());
}

TEST(ResponseRecord, SetCommentReplaces) {
    TOVResponse response;
    response.setGeneralResultComment("first");
    response.setGeneralResultComment("second");
    EXPECT_EQ(response.getGeneralResultComment(), "second");
    EXPECT_EQ(commentUnder(response, "ResultComment"), "second");
}

TEST(ResponseRecord, AppendToEmptyCommentGivesTheTextAlone) {
    TOVResponse response;
    response.appendToGeneralResultComment("Uninitialized TOV rules");
    EXPECT_EQ(response.getGeneralResultComment(), "Uninitialized TOV rules");
}

TEST(ResponseRecord, AppendClosesThePreviousSentenceOnce) {
    TOVResponse withoutStop;
    withoutStop.setGeneralResultComment("Rule one objects");
    withoutStop.appendToGeneralResultComment("Rule two objects");

    TOVResponse withStop;
    withStop.setGeneralResultComment("Rule one objects.");
    withStop.appendToGeneralResultComment("Rule two objects");

    EXPECT_EQ(withoutStop.getGeneralResultComment(), "Rule one objects. Rule two objects");
    EXPECT_EQ(withStop.getGeneralResultComment(), "Rule one objects. Rule two objects");
}

TEST(ResponseRecord, AppendChainsSentences) {
    TOVResponse response;
    response.appendToGeneralResultComment("A");
    response.appendToGeneralResultComment("B");
    response.appendToGeneralResultComment("C.");
    response.appendToGeneralResultComment("D");
    EXPECT_EQ(response.getGeneralResultComment(), "A. B. C. D");
}

TEST(ResponseRecord, AppendAfterInitCreatesTheComment) {
    TOVResponse response;
    response.init();
    response.appendToGeneralResultComment("X");
    EXPECT_EQ(commentUnder(response, "ResultComment"), "X");
}

// --- Keywords ---

TEST(ResponseRecord, CommentUnderKeyword) {
    TOVResponse response;
    response.setCommentUnderKeyword("Key", "one");
    response.setCommentUnderKeyword("Key", "two");
    std::string comment;
    EXPECT_TRUE(response.getCommentUnderKeyword("Key", comment));
    EXPECT_EQ(comment, "two");

    comment = "unchanged";
    EXPECT_FALSE(response.getCommentUnderKeyword("key", comment));
    EXPECT_FALSE(response.getCommentUnderKeyword("Key ", comment));
    EXPECT_FALSE(response.getCommentUnderKeyword("Missing", comment));
    EXPECT_EQ(comment, "unchanged");
}

TEST(ResponseRecord, RemoveKeyword) {
    TOVResponse response;
    response.setCommentUnderKeyword("Key", "v");
    EXPECT_TRUE(response.removeKeyword("Key"));
    EXPECT_FALSE(response.removeKeyword("Key"));
    EXPECT_FALSE(response.removeKeyword("Never"));
    EXPECT_EQ(commentUnder(response, "Key"), "<absent>");
}

TEST(ResponseRecord, RemoveCommentKeywordWorksLikeAnyOther) {
    TOVResponse response;
    response.setGeneralResultComment("something");
    EXPECT_TRUE(response.removeKeyword("ResultComment"));
    EXPECT_EQ(response.getGeneralResultComment(), "");
    EXPECT_EQ(commentUnder(response, "ResultComment"), "<absent>");
    EXPECT_EQ(response.turnResponseIntoASingleString(), R"({"Result":"Failure"})");
}

TEST(ResponseRecord, GeneralResultIsNeverInTheMap) {
    TOVResponse response;
    response.setGeneralResult(true);
    EXPECT_EQ(commentUnder(response, "Result"), "<absent>");
}

// --- Missing data ---

TEST(ResponseMissingData, MarkStoresMissingData) {
    TOVResponse response;
    response.setThisKeywordToReportMissingData(TOVResponseKeyword_ObjectFamilyMembers);
    EXPECT_EQ(commentUnder(response, "ObjectFamilyMembers"), "MissingData");
    EXPECT_TRUE(response.doesThisKeywordReportMissingData("ObjectFamilyMembers"));
}

TEST(ResponseMissingData, ReportIsCaseSensitive) {
    TOVResponse response;
    response.setCommentUnderKeyword("A", "missingdata");
    response.setCommentUnderKeyword("B", "MISSINGDATA");
    response.setCommentUnderKeyword("C", "MissingData ");
    response.setCommentUnderKeyword("D", "MissingData");
    EXPECT_FALSE(response.doesThisKeywordReportMissingData("A"));
    EXPECT_FALSE(response.doesThisKeywordReportMissingData("B"));
    EXPECT_FALSE(response.doesThisKeywordReportMissingData("C"));
    EXPECT_TRUE(response.doesThisKeywordReportMissingData("D"));
    EXPECT_FALSE(response.doesThisKeywordReportMissingData("d"));
    EXPECT_FALSE(response.doesThisKeywordReportMissingData("Absent"));
}

TEST(ResponseMissingData, AnyKeywordListsAllMarksInKeyOrderAppending) {
    TOVResponse response;
    response.setThisKeywordToReportMissingData("Zeta");
    response.setThisKeywordToReportMissingData("ObjectFamilyMembers");
    response.setCommentUnderKeyword("Beta", "missingData");
    response.setThisKeywordToReportMissingData("Alpha");
    Strings keywords{"prior"};
    EXPECT_TRUE(response.doesAnyKeywordReportMissingData(keywords));
    EXPECT_EQ(keywords, (Strings{"prior", "Alpha", "ObjectFamilyMembers", "Zeta"}));
}

TEST(ResponseMissingData, AnyKeywordFalseWhenNoneMarked) {
    TOVResponse response;
    response.setCommentUnderKeyword("K", "v");
    Strings keywords{"prior"};
    EXPECT_FALSE(response.doesAnyKeywordReportMissingData(keywords));
    EXPECT_EQ(keywords, Strings{"prior"});
}

TEST(ResponseMissingData, MissingDataRecord) {
    const TOVMissingDataForEvaluation none;
    EXPECT_FALSE(none.objectFamilyMembersMissing);
    EXPECT_FALSE(none.manualLinkAncestorsMissing);
    EXPECT_FALSE(none.areThereAnyMissingData());

    const TOVMissingDataForEvaluation family(true, false);
    EXPECT_TRUE(family.objectFamilyMembersMissing);
    EXPECT_FALSE(family.manualLinkAncestorsMissing);
    EXPECT_TRUE(family.areThereAnyMissingData());

    const TOVMissingDataForEvaluation ancestors(false, true);
    EXPECT_FALSE(ancestors.objectFamilyMembersMissing);
    EXPECT_TRUE(ancestors.manualLinkAncestorsMissing);
    EXPECT_TRUE(ancestors.areThereAnyMissingData());

    TOVMissingDataForEvaluation copy = ancestors;
    EXPECT_FALSE(copy.objectFamilyMembersMissing);
    EXPECT_TRUE(copy.manualLinkAncestorsMissing);
}

TEST(ResponseMissingData, SuccessfulResponseNeverAsksForReevaluation) {
    TOVResponse response;
    response.setGeneralResult(true);
    response.setThisKeywordToReportMissingData(TOVResponseKeyword_ObjectFamilyMembers);
    response.setThisKeywordToReportMissingData(TOVResponseKeyword_ManualAncestors);
    TOVMissingDataForEvaluation data;
    EXPECT_FALSE(response.needsReevaluation(data));
    EXPECT_FALSE(data.objectFamilyMembersMissing);
    EXPECT_FALSE(data.manualLinkAncestorsMissing);

    TOVMissingDataForEvaluation preset(true, false);
    EXPECT_FALSE(response.needsReevaluation(preset));
    EXPECT_TRUE(preset.objectFamilyMembersMissing);
    EXPECT_FALSE(preset.manualLinkAncestorsMissing);
}

TEST(ResponseMissingData, FailedResponseWithFamilyMark) {
    TOVResponse response;
    response.setThisKeywordToReportMissingData(TOVResponseKeyword_ObjectFamilyMembers);
    TOVMissingDataForEvaluation data;
    EXPECT_TRUE(response.needsReevaluation(data));
    EXPECT_TRUE(data.objectFamilyMembersMissing);
    EXPECT_FALSE(data.manualLinkAncestorsMissing);
}

TEST(ResponseMissingData, FailedResponseWithAncestorsMark) {
    TOVResponse response;
    response.setThisKeywordToReportMissingData(TOVResponseKeyword_ManualAncestors);
    TOVMissingDataForEvaluation data;
    EXPECT_TRUE(response.needsReevaluation(data));
    EXPECT_FALSE(data.objectFamilyMembersMissing);
    EXPECT_TRUE(data.manualLinkAncestorsMissing);
}

TEST(ResponseMissingData, FailedResponseWithBothMarks) {
    TOVResponse response;
    response.setThisKeywordToReportMissingData(TOVResponseKeyword_ObjectFamilyMembers);
    response.setThisKeywordToReportMissingData(TOVResponseKeyword_ManualAncestors);
    TOVMissingDataForEvaluation data;
    EXPECT_TRUE(response.needsReevaluation(data));
    EXPECT_TRUE(data.objectFamilyMembersMissing);
    EXPECT_TRUE(data.manualLinkAncestorsMissing);
}

TEST(ResponseMissingData, OtherKeywordsAndOtherWordsDoNotCount) {
    TOVResponse response;
    response.setThisKeywordToReportMissingData("SomethingElse");
    response.setCommentUnderKeyword(TOVResponseKeyword_ObjectFamilyMembers, "missingdata");
    response.setCommentUnderKeyword(TOVResponseKeyword_ManualAncestors, "Present");
    TOVMissingDataForEvaluation data;
    EXPECT_FALSE(response.needsReevaluation(data));
    EXPECT_FALSE(data.areThereAnyMissingData());
}

TEST(ResponseMissingData, FlagsAreOnlyEverSet) {
    TOVResponse marked;
    marked.setThisKeywordToReportMissingData(TOVResponseKeyword_ManualAncestors);
    TOVMissingDataForEvaluation data(true, false);
    EXPECT_TRUE(marked.needsReevaluation(data));
    EXPECT_TRUE(data.objectFamilyMembersMissing);
    EXPECT_TRUE(data.manualLinkAncestorsMissing);

    TOVResponse unmarked;
    TOVMissingDataForEvaluation preset(true, true);
    EXPECT_FALSE(unmarked.needsReevaluation(preset));
    EXPECT_TRUE(preset.objectFamilyMembersMissing);
    EXPECT_TRUE(preset.manualLinkAncestorsMissing);
}

// --- Trigger initialization ---

TEST(ResponseTriggers, StoresMapTextForm) {
    TOVResponse response;
    response.setAttrToTriggerInitialization({{"b", "2"}, {"a", "1"}});
    EXPECT_EQ(commentUnder(response, "TriggerInitialization"), "{a:1, b:2}");
    response.setAttrToTriggerInitialization({{"c", "3"}});
    EXPECT_EQ(commentUnder(response, "TriggerInitialization"), "{c:3}");
}

TEST(ResponseTriggers, CollectInsertsIntoArgument) {
    TOVResponse response;
    response.setAttrToTriggerInitialization({{"a", "1"}, {"b", "2"}});
    AttributesMap attributes{{"a", "old"}, {"z", "kept"}};
    EXPECT_TRUE(response.collectAttrsToTriggerInitialization(attributes));
    EXPECT_EQ(attributes, (AttributesMap{{"a", "1"}, {"b", "2"}, {"z", "kept"}}));
}

TEST(ResponseTriggers, EmptyMapStoresBracesAndCollectsFalse) {
    TOVResponse response;
    response.setAttrToTriggerInitialization({});
    EXPECT_EQ(commentUnder(response, "TriggerInitialization"), "{}");
    AttributesMap attributes{{"x", "y"}};
    EXPECT_FALSE(response.collectAttrsToTriggerInitialization(attributes));
    EXPECT_EQ(attributes, (AttributesMap{{"x", "y"}}));
}

TEST(ResponseTriggers, AbsentKeywordCollectsFalse) {
    TOVResponse response;
    AttributesMap attributes{{"x", "y"}};
    EXPECT_FALSE(response.collectAttrsToTriggerInitialization(attributes));
    EXPECT_EQ(attributes, (AttributesMap{{"x", "y"}}));
}

// --- Conflict resolution options ---

TEST(ResponseOptions, StoresListTextForm) {
    TOVResponse response;
    response.setConflictResolutionOptions({"revision", "overwrite"});
    EXPECT_EQ(commentUnder(response, "SelectedVersioningAttribute"), "[revision,overwrite]");
}

TEST(ResponseOptions, EmptyListStoresBrackets) {
    TOVResponse response;
    response.setConflictResolutionOptions({});
    EXPECT_EQ(commentUnder(response, "SelectedVersioningAttribute"), "[]");

    Strings list;
    EXPECT_TRUE(response.collectConflictResolutionOptions(list));
    EXPECT_EQ(list, Strings{""});

    std::set<std::string> set;
    EXPECT_TRUE(response.collectConflictResolutionOptions(set));
    EXPECT_EQ(set, std::set<std::string>{""});
}

TEST(ResponseOptions, CollectListAppendsInOrder) {
    TOVResponse response;
    response.setConflictResolutionOptions({"b", "a", "b"});
    Strings list{"prior"};
    EXPECT_TRUE(response.collectConflictResolutionOptions(list));
    EXPECT_EQ(list, (Strings{"prior", "b", "a", "b"}));
}

TEST(ResponseOptions, CollectSetCollapsesDuplicates) {
    TOVResponse response;
    response.setConflictResolutionOptions({"b", "a", "b"});
    std::set<std::string> set{"prior"};
    EXPECT_TRUE(response.collectConflictResolutionOptions(set));
    EXPECT_EQ(set, (std::set<std::string>{"a", "b", "prior"}));
}

TEST(ResponseOptions, AbsentKeywordCollectsFalseAndAddsNothing) {
    TOVResponse response;
    std::set<std::string> set{"prior"};
    EXPECT_FALSE(response.collectConflictResolutionOptions(set));
    EXPECT_EQ(set, std::set<std::string>{"prior"});

    Strings empty;
    EXPECT_FALSE(response.collectConflictResolutionOptions(empty));
    EXPECT_TRUE(empty.empty());
}

// --- Debug lines ---

TEST(ResponseDebug, PrintContentsOfNewResponse) {
    TOVResponse response;
    EXPECT_EQ(captureConsole([&](TOVLogger* logger) { response.printContentsDBG(logger); }),
              "*************TOVResponse******************\n{Result:Failure, ResultComment:}\n");
}

TEST(ResponseDebug, PrintContentsTakesNoCareOfQuoting) {
    TOVResponse response;
    response.setGeneralResult(true);
    response.setGeneralResultComment("Edit attempt approved");
    response.setAttrToTriggerInitialization({{"a", "x"}});
    response.setCommentUnderKeyword("Quote", "say \"hi\"");
    EXPECT_EQ(captureConsole([&](TOVLogger* logger) { response.printContentsDBG(logger); }),
              "*************TOVResponse******************\n"
              "{Quote:say \"hi\", Result:Success, ResultComment:Edit attempt approved, "
              "TriggerInitialization:{a:x}}\n");
}

TEST(ResponseDebug, PrintContentsForJniOfNewResponse) {
    TOVResponse response;
    EXPECT_EQ(captureConsole([&](TOVLogger* logger) { response.printContentsForJNIDBG(logger); }),
              "*************JNI_TOVResponse******************\n"
              "{\"Result\":\"Failure\",\"ResultComment\":\"\"}\n");
}

TEST(ResponseDebug, PrintContentsForJniIsTheSingleString) {
    TOVResponse response;
    response.setGeneralResult(true);
    response.setGeneralResultComment("Successfully  initialized\tTOV rules");
    EXPECT_EQ(
        captureConsole([&](TOVLogger* logger) { response.printContentsForJNIDBG(logger); }),
        "*************JNI_TOVResponse******************\n"
        "{\"Result\":\"Success\",\"ResultComment\":\"Successfully initialized TOV rules\"}\n");
}

TEST(ResponseDebug, BothInTransactionOrder) {
    TOVResponse response;
    response.setGeneralResultComment("Insufficient input data");
    EXPECT_EQ(captureConsole([&](TOVLogger* logger) {
                  response.printContentsDBG(logger);
                  response.printContentsForJNIDBG(logger);
              }),
              "*************TOVResponse******************\n"
              "{Result:Failure, ResultComment:Insufficient input data}\n"
              "*************JNI_TOVResponse******************\n"
              "{\"Result\":\"Failure\",\"ResultComment\":\"Insufficient input data\"}\n");
}

TEST(ResponseDebug, SilentLoggerPrintsNothing) {
    TOVResponse response;
    TOVLogger logger(LogToConsole);
    logger.setTOVLoggingOutput("");
    testing::internal::CaptureStdout();
    response.printContentsDBG(&logger);
    response.printContentsForJNIDBG(&logger);
    std::fflush(stdout);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

TEST(ResponseDebug, PrintingLeavesTheRecordAlone) {
    TOVResponse response;
    response.setCommentUnderKeyword("K", "v");
    captureConsole([&](TOVLogger* logger) {
        response.printContentsDBG(logger);
        response.printContentsForJNIDBG(logger);
    });
    EXPECT_FALSE(response.getGeneralResult());
    EXPECT_EQ(response.getStringStringMapOfResponse(),
              (std::map<std::string, std::string>{{"K", "v"}, {"ResultComment", ""}}));
}
