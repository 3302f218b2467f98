// Conflict resolution options end to end: the query document and its messages,
// each outcome of the two stages (forced resolutions, then versioning
// selection), and the spin-up finder that the edit controller builds in code.
#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "evaluators/TOVConflictsResolutionOptionsFinderParser.h"
#include "test_support.h"
#include "tov/TOVActionController.h"
#include "tov/TOVConflictsResolutionOptionsFinder.h"
#include "tov/TOVFunctionality.h"
#include "tov/TOVResponse.h"
#include "tov/TOVSpinupOptionsFinder.h"
#include "tov/TOVTransactionController.h"
#include "tov/entry_points.h"
#include "tov/vocabulary.h"

namespace {

using tovtest::asText;
using tovtest::PrivateCore;
using tovtest::TempFile;

const char* const kRulesLoaded =
    R"({"Result":"Success","ResultComment":"Successfully initialized TOV rules"})";
const char* const kDMLoaded =
    R"({"Result":"Success","ResultComment":"Succesfully initialized DM info"})";

// Parts have the versioning attributes Iteration, Revision and Variant, in
// data-model order once sorted; Edition is a secondary and does not count.
// Notes have none.
const char* const kDataModel = R"({"OverwriteLabel":"Overwrite","structureObjects":[
    {"name":"Part","dmObjectType":"DMITEM","attributes":[
        {"name":"Number","type":"REGULAR","primary":true},
        {"name":"Variant","type":"VERSIONING","primary":true},
        {"name":"Revision","type":"VERSIONING","primary":true},
        {"name":"Iteration","type":"VERSIONING","primary":true},
        {"name":"Status","type":"REGULAR","primary":false},
        {"name":"Edition","type":"VERSIONING","primary":false}]},
    {"name":"Note","dmObjectType":"DMITEM","attributes":[
        {"name":"Status","type":"REGULAR","primary":true}]}]})";

// Conflict resolution rules for the transition of Status from "In Work".
const char* const kForceOverwrite =
    R"({"attribute":"Status","fromValue":"In Work","toValue":"In Review","updatesFile":"N_A",
        "conflictResolution":"overwrite"})";
const char* const kForceSpinup =
    R"({"attribute":"Status","fromValue":"In Work","toValue":"<any>","updatesFile":"N_A",
        "conflictResolution":"spinup","hasDifferentPrimaries":true})";
// Holds only while the representation file is not updated.
const char* const kForceOverwriteWithoutUpload =
    R"({"attribute":"Status","fromValue":"In Work","toValue":"In Review","updatesFile":"NO",
        "conflictResolution":"overwrite"})";

// Versioning selection rules on the initial attributes of a part.
const char* const kSelectRevisionOrVariant =
    R"({"conditionAttribute1":"Status","conditionValue1":["In Work"],
        "versioningOption":["Revision","Variant"]})";
const char* const kSelectIterationOrRevision =
    R"({"conditionAttribute1":"Owner","conditionValue1":["Ann"],
        "versioningOption":["Iteration","Revision"]})";
const char* const kSelectIteration =
    R"({"conditionAttribute1":"Status","conditionValue1":["<any>"],
        "versioningOption":["Iteration"]})";
const char* const kSelectWhenReleased =
    R"({"conditionAttribute1":"Status","conditionValue1":["Released"],
        "versioningOption":["Revision"]})";

// The rules in words, as they stand inside a single JSON string, where runs of
// blanks are one blank.
const char* const kForceOverwriteWords =
    R"(For Part: When Status transitions from \"In Work\" to \"In Review\" then we MUST )"
    R"(overwrite)";
const char* const kForceSpinupWords =
    R"(For Part: When Status transitions from \"In Work\" to \"<any>\" then we MUST spinup)";
const char* const kSelectRevisionOrVariantWords =
    R"(For Part: When {\"Status\" equals \"In Work\"} then you should spin up versions using )"
    R"(one of the attributes: [Revision,Variant])";
const char* const kSelectIterationWords =
    R"(For Part: When {\"Status\" equals \"<any>\"} then you should spin up versions using one )"
    R"(of the attributes: [Iteration])";

const char* const kFound = "Found TOV rule for specific versioning attribute selection";
const char* const kNotFound =
    "Did not find any TOV rule for specific versioning attribute selection";
const char* const kAllPartOptions = "[Iteration,Revision,Variant,Overwrite]";

// A rules document with these conflict resolution and versioning selection
// rules for parts, and one transition rule elsewhere so that the store is
// never empty.
std::string partRules(const std::vector<std::string>& conflicts,
                      const std::vector<std::string>& selections) {
    auto join = [](const std::vector<std::string>& rules) {
        std::string text;
        for (const std::string& rule : rules) {
            text += (text.empty() ? "" : ",") + rule;
        }
        return text;
    };
    return R"({"transitions":{"Elsewhere":[{"attribute":"Status","fromValue":"A","toValue":["B"]}]},)"
           R"("conflictResolutions":{"Part":[)" +
           join(conflicts) + R"(]},"versioningSelections":{"Part":[)" + join(selections) + "]}}";
}

std::string query(const std::string& objectType, const std::string& initial,
                  const std::string& target, const std::string& extra = "") {
    return R"({"objectType":")" + objectType + R"(","initialAttributes":)" + initial +
           R"(,"targetAttributes":)" + target + extra + "}";
}

const char* const kInWork = R"({"Status":"In Work","Owner":"Ann"})";
const char* const kInReview = R"({"Status":"In Review","Owner":"Ann"})";
const AttributesMap kInWorkPacket{{"Owner", "Ann"}, {"Status", "In Work"}};
const AttributesMap kInReviewPacket{{"Owner", "Ann"}, {"Status", "In Review"}};

// The part's Status goes from "In Work" to "In Review".
std::string partToReview(const std::string& extra = "") {
    return query("Part", kInWork, kInReview, extra);
}

std::string success(const char* comment, const std::string& options) {
    return R"({"Result":"Success","ResultComment":")" + std::string(comment) +
           R"(","SelectedVersioningAttribute":")" + options + R"("})";
}

std::string found(const std::string& options) {
    return success(kFound, options);
}

std::string notFound(const std::string& options) {
    return success(kNotFound, options);
}

// `comment` is written as it stands inside the JSON string.
std::string failure(const std::string& comment) {
    return R"({"Result":"Failure","ResultComment":")" + comment + R"("})";
}

std::string forcedContradiction(const std::vector<std::string>& words) {
    std::string comment = "Contradicting conflict resolution detected!!";
    for (std::size_t i = 0; i < words.size(); ++i) {
        comment += (i == 0 ? "" : ", ") + words[i];
    }
    return failure(comment + ".");
}

std::string selectionContradiction(const std::vector<std::string>& words) {
    std::string comment = "Contradicting versioning rules detected!!";
    for (std::size_t i = 0; i < words.size(); ++i) {
        comment += (i == 0 ? "" : ", ") + words[i];
    }
    return failure(comment + ".");
}

bool hasForcedMarks(const TOVResponse& response) {
    std::string mark;
    return response.getCommentUnderKeyword("ForcedOverwrite", mark) ||
           response.getCommentUnderKeyword("ForcedSpinup", mark);
}

class ConflictOptions : public ::testing::Test {
protected:
    void loadRules(const std::string& document) {
        ASSERT_EQ(asText(InitializeTOVRules(document, core.get())), kRulesLoaded);
    }
    void loadDataModel(const std::string& document = kDataModel) {
        ASSERT_EQ(asText(InitializeTOV_DMInfo(document, core.get())), kDMLoaded);
    }
    // Rules for parts and the data model of parts and notes.
    void load(const std::vector<std::string>& conflicts,
              const std::vector<std::string>& selections) {
        loadRules(partRules(conflicts, selections));
        loadDataModel();
    }
    TOVResponse ask(const std::string& text) {
        return EvaluateTOVProperConflictResolutionOptions(text, core.get());
    }
    std::string evaluate(const std::string& text) { return asText(ask(text)); }
    // Runs a spin-up finder the way the edit controller does: built in code,
    // evaluateRequest on a fresh response.
    TOVResponse spinup(const std::string& objectType, const AttributesMap& initial,
                       const AttributesMap& target) {
        TOVSpinupOptionsFinder finder(objectType, initial, target, core.get());
        TOVResponse response;
        EXPECT_FALSE(finder.evaluateRequest(response));
        return response;
    }

    PrivateCore core;
};

// The finder with its parse step opened up, to see what a query stores.
class ExposedFinder : public TOVConflictsResolutionOptionsFinder {
public:
    using TOVConflictsResolutionOptionsFinder::parseInputData;
    using TOVConflictsResolutionOptionsFinder::TOVConflictsResolutionOptionsFinder;
};

class ExposedTopParser : public TOVConflictsResolutionOptionsFinderParser {
public:
    using TOVConflictsResolutionOptionsFinderParser::getAllNecessaryKeywords;
    using TOVConflictsResolutionOptionsFinderParser::getRuleName;
    using TOVConflictsResolutionOptionsFinderParser::TOVConflictsResolutionOptionsFinderParser;
};

template <typename Parser>
class Exposed : public Parser {
public:
    using Parser::getAllNecessaryKeywords;
    using Parser::getRuleName;
};

template <typename Parser>
std::vector<std::string> keywordsOf(Parser& parser) {
    std::vector<std::string> keywords;
    parser.getAllNecessaryKeywords(keywords);
    return keywords;
}

// ---------------------------------------------------------------- frame

TEST_F(ConflictOptions, EmptyInputIsInsufficient) {
    load({kForceOverwrite}, {});
    EXPECT_EQ(evaluate(""), failure("Insufficient input data"));
}

TEST_F(ConflictOptions, FinderWithoutItsLabelIsInsufficient) {
    load({kForceOverwrite}, {});
    TOVConflictsResolutionOptionsFinder finder({{"All_link_creation_values", partToReview()}},
                                               core.get());
    EXPECT_EQ(asText(finder.evaluateAndRespond()), failure("Insufficient input data"));
}

TEST_F(ConflictOptions, FinderReportsFunctionalitySixAndItsLabels) {
    TOVConflictsResolutionOptionsFinder finder({}, core.get());
    EXPECT_EQ(finder.getFunctionality(), TOVFunctionality_ProperConflictResolutionOptions);
    TOVConflictsResolutionOptionsFinder inCode("Part", {}, {}, core.get());
    EXPECT_EQ(inCode.getFunctionality(), TOVFunctionality_ProperConflictResolutionOptions);
    TOVSpinupOptionsFinder spinupFinder("Part", {}, {}, core.get());
    EXPECT_EQ(spinupFinder.getFunctionality(), TOVFunctionality_ProperConflictResolutionOptions);
    EXPECT_EQ(TOVConflictsResolutionOptionsFinder::
                  getInputDataLabelIdentifierForConflictsResolutionOptionsQuery(),
              "Conflicts_Resolution_Options_query_data");
    EXPECT_EQ(TOVConflictsResolutionOptionsFinder::getInputDataLabelIdentifierForJsonFilepath(),
              "Input_is_filepath");
}

TEST_F(ConflictOptions, FactoryBuildsTheFinderForFunctionalitySix) {
    TOVActionController* controller =
        createProperController(TOVFunctionality_ProperConflictResolutionOptions, {}, core.get());
    ASSERT_NE(controller, nullptr);
    EXPECT_NE(dynamic_cast<TOVConflictsResolutionOptionsFinder*>(controller), nullptr);
    EXPECT_EQ(dynamic_cast<TOVSpinupOptionsFinder*>(controller), nullptr);
    delete controller;
}

TEST_F(ConflictOptions, TextThatIsNoJsonObjectHasAFundamentalError) {
    load({kForceOverwrite}, {});
    for (const char* text : {"[]", "{", "\"Part\"", "{} {}", "{\"objectType\":\"Part\",}"}) {
        EXPECT_EQ(evaluate(text), failure("Json has fundamental parsing error")) << text;
    }
}

TEST_F(ConflictOptions, UnreadableFileHasAFundamentalError) {
    load({kForceOverwrite}, {});
    EXPECT_EQ(asText(EvaluateTOVProperConflictResolutionOptionsFromFile("/nonexistent/query.json",
                                                                        core.get())),
              failure("Json has fundamental parsing error"));
}

TEST_F(ConflictOptions, QueryFromAFileIsAnsweredLikeText) {
    load({kForceOverwrite}, {});
    const TempFile file(partToReview());
    EXPECT_EQ(asText(EvaluateTOVProperConflictResolutionOptionsFromFile(file.path, core.get())),
              found("[Overwrite]"));
}

TEST_F(ConflictOptions, AnyValueUnderTheFilePathLabelMakesThePathAFile) {
    load({kForceOverwrite}, {});
    const TempFile file(partToReview());
    TOVConflictsResolutionOptionsFinder finder(
        {{"Conflicts_Resolution_Options_query_data", file.path}, {"Input_is_filepath", "no"}},
        core.get());
    EXPECT_EQ(asText(finder.evaluateAndRespond()), found("[Overwrite]"));
}

TEST_F(ConflictOptions, NoRulesLoadedIsRefusedAsUninitialized) {
    loadDataModel();
    EXPECT_EQ(evaluate(partToReview()), failure("Uninitialized TOV rules"));
}

TEST_F(ConflictOptions, NoDataModelLoadedIsRefusedAsUninitialized) {
    loadRules(partRules({kForceOverwrite}, {}));
    EXPECT_EQ(evaluate(partToReview()), failure("Uninitialized Dm Information"));
}

TEST_F(ConflictOptions, NothingLoadedTellsOfTheRulesAlone) {
    EXPECT_EQ(evaluate(partToReview()), failure("Uninitialized TOV rules"));
}

TEST_F(ConflictOptions, ParseErrorsComeBeforeTheLoadChecks) {
    EXPECT_EQ(evaluate(R"({"initialAttributes":{},"targetAttributes":{}})"),
              failure("Object Type demands ALL keywords: [objectType]"));
}

// ---------------------------------------------------------------- query

TEST_F(ConflictOptions, MissingObjectTypeIsReported) {
    load({}, {});
    EXPECT_EQ(evaluate(R"({"initialAttributes":{},"targetAttributes":{}})"),
              failure("Object Type demands ALL keywords: [objectType]"));
}

TEST_F(ConflictOptions, ObjectTypeThatIsNoStringCountsAsMissing) {
    load({}, {});
    EXPECT_EQ(evaluate(R"({"objectType":["Part"],"initialAttributes":{},"targetAttributes":{}})"),
              failure("Object Type demands ALL keywords: [objectType]"));
}

TEST_F(ConflictOptions, MissingInitialAttributesAreReported) {
    load({}, {});
    EXPECT_EQ(evaluate(R"({"objectType":"Part","targetAttributes":{}})"),
              failure("Initial Attributes demands ALL keywords: [initialAttributes]"));
    EXPECT_EQ(evaluate(R"({"objectType":"Part","initialAttributes":[],"targetAttributes":{}})"),
              failure("Initial Attributes demands ALL keywords: [initialAttributes]"));
}

TEST_F(ConflictOptions, MissingTargetAttributesAreReportedInWords) {
    // Unlike an edit request, the query names its missing target packet.
    load({}, {});
    EXPECT_EQ(evaluate(R"({"objectType":"Part","initialAttributes":{}})"),
              failure("Target Attributes demands ALL keywords: [targetAttributes]"));
    EXPECT_EQ(evaluate(R"({"objectType":"Part","initialAttributes":{},"targetAttributes":"x"})"),
              failure("Target Attributes demands ALL keywords: [targetAttributes]"));
}

TEST_F(ConflictOptions, ValueThatIsNoStringIsReportedForEachPacket) {
    load({}, {});
    EXPECT_EQ(evaluate(query("Part", R"({"Status":"In Work","Rank":3})", kInReview)),
              failure("Initial Attributes: parsing error on keys - values of initialAttributes."));
    EXPECT_EQ(evaluate(query("Part", kInWork, R"({"Status":null})")),
              failure("Target Attributes: parsing error on keys - values of targetAttributes."));
}

TEST_F(ConflictOptions, AllFaultsAreJoinedInSectionOrder) {
    load({}, {});
    EXPECT_EQ(evaluate("{}"), failure("Object Type demands ALL keywords: [objectType]|"
                                      "Initial Attributes demands ALL keywords: "
                                      "[initialAttributes]|Target Attributes demands ALL "
                                      "keywords: [targetAttributes]"));
    EXPECT_EQ(evaluate(R"({"objectType":1,"initialAttributes":{"A":{}},"targetAttributes":{}})"),
              failure("Object Type demands ALL keywords: [objectType]|Initial Attributes: "
                      "parsing error on keys - values of initialAttributes."));
}

TEST_F(ConflictOptions, QueryIsStoredInTheFinder) {
    ExposedFinder finder({{"Conflicts_Resolution_Options_query_data",
                           partToReview(R"(,"uploadsRepresentationFile":false,"extra":[1])")}},
                         core.get());
    TOVResponse response;
    EXPECT_TRUE(finder.parseInputData(response));
    EXPECT_EQ(finder.getObjectType(), "Part");
    EXPECT_EQ(finder.getInitialAttributes(), kInWorkPacket);
    EXPECT_EQ(
        finder.getTargetAttributes(),
        (AttributesMap{{"Owner", "Ann"}, {"Status", "In Review"}, {"_file_upload_", "false"}}));
}

TEST_F(ConflictOptions, FailedPacketIsDroppedWhole) {
    ExposedFinder finder({{"Conflicts_Resolution_Options_query_data",
                           query("Part", R"({"Status":"In Work","Rank":3})", kInReview)}},
                         core.get());
    TOVResponse response;
    EXPECT_FALSE(finder.parseInputData(response));
    EXPECT_TRUE(finder.getInitialAttributes().empty());
    EXPECT_EQ(finder.getTargetAttributes(), kInReviewPacket);
}

TEST_F(ConflictOptions, UploadFlagGivenAsAStringCountsAsAbsent) {
    ExposedFinder finder({{"Conflicts_Resolution_Options_query_data",
                           partToReview(R"(,"uploadsRepresentationFile":"true")")}},
                         core.get());
    TOVResponse response;
    EXPECT_TRUE(finder.parseInputData(response));
    EXPECT_EQ(finder.getTargetAttributes(), kInReviewPacket);

    // The rule that holds only without an upload therefore still forces.
    load({kForceOverwriteWithoutUpload}, {});
    EXPECT_EQ(evaluate(partToReview(R"(,"uploadsRepresentationFile":"true")")),
              found("[Overwrite]"));
    EXPECT_EQ(evaluate(partToReview(R"(,"uploadsRepresentationFile":true)")),
              notFound(kAllPartOptions));
    EXPECT_EQ(evaluate(partToReview(R"(,"uploadsRepresentationFile":false)")),
              found("[Overwrite]"));
}

TEST_F(ConflictOptions, UploadFlagWinsOverTheTargetPacket) {
    const std::string text =
        query("Part", kInWork, R"({"Status":"In Review","_file_upload_":"false"})",
              R"(,"uploadsRepresentationFile":true)");
    ExposedFinder finder({{"Conflicts_Resolution_Options_query_data", text}}, core.get());
    TOVResponse response;
    EXPECT_TRUE(finder.parseInputData(response));
    EXPECT_EQ(finder.getTargetAttributes(),
              (AttributesMap{{"Status", "In Review"}, {"_file_upload_", "true"}}));

    load({kForceOverwriteWithoutUpload}, {});
    EXPECT_EQ(evaluate(text), notFound(kAllPartOptions));
}

TEST_F(ConflictOptions, TargetPacketIsNotNarrowedToWhatChanges) {
    // Status keeps its value, and a rule on that very transition still forces.
    load({R"({"attribute":"Status","fromValue":"Released","toValue":"Released",
              "updatesFile":"N_A","conflictResolution":"spinup"})"},
         {});
    EXPECT_EQ(evaluate(query("Part", R"({"Status":"Released"})", R"({"Status":"Released"})")),
              found("[Iteration,Revision,Variant]"));
}

TEST(ConflictOptionsParsers, RuleNamesAndKeywords) {
    ExposedTopParser top;
    Exposed<TOVVersionerObjectTypeJsonParser> objectType;
    Exposed<TOVVersionerInitialAttributesParser> initial;
    Exposed<TOVVersionerTargetAttributesParser> target;
    Exposed<TOVUploadsReprFileParser> uploads;
    EXPECT_EQ(top.getRuleName(), "Lifecycle Business");
    EXPECT_EQ(objectType.getRuleName(), "Object Type");
    EXPECT_EQ(initial.getRuleName(), "Initial Attributes");
    EXPECT_EQ(target.getRuleName(), "Target Attributes");
    EXPECT_EQ(uploads.getRuleName(), "Uploads Representation File");
    EXPECT_TRUE(keywordsOf(top).empty());
    EXPECT_EQ(keywordsOf(objectType), (std::vector<std::string>{"objectType"}));
    EXPECT_EQ(keywordsOf(initial), (std::vector<std::string>{"initialAttributes"}));
    EXPECT_EQ(keywordsOf(target), (std::vector<std::string>{"targetAttributes"}));
    EXPECT_TRUE(keywordsOf(uploads).empty());
}

TEST_F(ConflictOptions, AccessorsOfAFinderBuiltInCode) {
    TOVConflictsResolutionOptionsFinder finder("Part", kInWorkPacket, kInReviewPacket, core.get());
    EXPECT_EQ(finder.getObjectType(), "Part");
    std::string value = "kept";
    EXPECT_TRUE(finder.getValueOfInitialAttribute("Status", value));
    EXPECT_EQ(value, "In Work");
    EXPECT_FALSE(finder.getValueOfInitialAttribute("status", value));
    EXPECT_EQ(value, "In Work");
    finder.addTargetAttribute("Status", "Released");
    finder.addTargetAttribute("_file_upload_", "true");
    EXPECT_TRUE(finder.getValueOfTargetAttribute("Status", value));
    EXPECT_EQ(value, "Released");
    EXPECT_EQ(finder.getTargetAttributes(),
              (AttributesMap{{"Owner", "Ann"}, {"Status", "Released"}, {"_file_upload_", "true"}}));
    finder.setObjectType("Note");
    finder.setInitialAttributes({});
    finder.setTargetAttributes({{"A", "B"}});
    EXPECT_EQ(finder.getObjectType(), "Note");
    EXPECT_TRUE(finder.getInitialAttributes().empty());
    EXPECT_FALSE(finder.getValueOfTargetAttribute("Status", value));
}

TEST_F(ConflictOptions, AddingATargetAttributeFromNullPointersNeitherThrowsNorCrashes) {
    TOVConflictsResolutionOptionsFinder finder("Part", kInWorkPacket, kInReviewPacket, core.get());
    finder.addTargetAttribute(nullptr, "true");
    EXPECT_EQ(finder.getTargetAttributes(), kInReviewPacket);
    finder.addTargetAttribute("Status", nullptr);
    EXPECT_EQ(finder.getTargetAttributes(), (AttributesMap{{"Owner", "Ann"}, {"Status", ""}}));
}

// ---------------------------------------------------------------- outcomes

TEST_F(ConflictOptions, OverwriteAndSpinupForcedContradict) {
    load({kForceOverwrite, kForceSpinup}, {kSelectRevisionOrVariant});
    EXPECT_EQ(evaluate(partToReview()),
              forcedContradiction({kForceSpinupWords, kForceOverwriteWords}));
}

TEST_F(ConflictOptions, ForcedOverwriteLeavesTheOverwriteLabelAlone) {
    load({kForceOverwrite}, {});
    EXPECT_EQ(evaluate(partToReview()), found("[Overwrite]"));
}

TEST_F(ConflictOptions, ForcedSpinupWithCommonAttributesOffersThemAlone) {
    load({kForceSpinup}, {kSelectRevisionOrVariant});
    EXPECT_EQ(evaluate(partToReview()), found("[Revision,Variant]"));
}

TEST_F(ConflictOptions, ForcedSpinupWithNothingCommonContradicts) {
    load({kForceSpinup}, {kSelectRevisionOrVariant, kSelectIteration});
    EXPECT_EQ(evaluate(partToReview()),
              selectionContradiction({kSelectIterationWords, kSelectRevisionOrVariantWords}));
}

TEST_F(ConflictOptions, ForcedSpinupWithoutSelectionRulesOffersEveryVersioningAttribute) {
    load({kForceSpinup}, {kSelectWhenReleased});
    EXPECT_EQ(evaluate(partToReview()), found("[Iteration,Revision,Variant]"));
}

TEST_F(ConflictOptions, NothingForcedWithCommonAttributesAddsTheOverwriteLabel) {
    load({}, {kSelectRevisionOrVariant});
    EXPECT_EQ(evaluate(partToReview()), found("[Overwrite,Revision,Variant]"));
}

TEST_F(ConflictOptions, NothingForcedWithNothingCommonContradicts) {
    load({}, {kSelectRevisionOrVariant, kSelectIteration});
    EXPECT_EQ(evaluate(partToReview()),
              selectionContradiction({kSelectIterationWords, kSelectRevisionOrVariantWords}));
}

TEST_F(ConflictOptions, NothingForcedAndNoSelectionRuleOffersEverything) {
    load({}, {kSelectWhenReleased});
    EXPECT_EQ(evaluate(partToReview()), notFound(kAllPartOptions));
}

// ---------------------------------------------------------------- edges

TEST_F(ConflictOptions, ContradictionCommentKeepsTheRulesWordsExactly) {
    // The response keeps the double blank of each rule's words; only the single
    // string collapses it.
    load({kForceOverwrite, kForceSpinup}, {});
    const TOVResponse response = ask(partToReview());
    EXPECT_FALSE(response.getGeneralResult());
    EXPECT_EQ(response.getGeneralResultComment(),
              "Contradicting conflict resolution detected!!For Part: When Status transitions "
              "from \"In Work\" to \"<any>\"  then we MUST spinup, For Part: When Status "
              "transitions from \"In Work\" to \"In Review\"  then we MUST overwrite.");
    std::string options;
    EXPECT_FALSE(response.getCommentUnderKeyword("SelectedVersioningAttribute", options));
}

TEST_F(ConflictOptions, ForcedContradictionTellsEveryForcingRule) {
    // Three rules force, a fourth is related but does not hold for the change.
    load({kForceOverwrite, kForceSpinup,
          R"({"attribute":"Owner","fromValue":"<any>","toValue":"<any>","updatesFile":"N_A",
              "conflictResolution":"overwrite"})",
          R"({"attribute":"Status","fromValue":"Released","toValue":"Obsolete",
              "updatesFile":"N_A","conflictResolution":"spinup"})"},
         {});
    EXPECT_EQ(evaluate(partToReview()),
              forcedContradiction({R"(For Part: When Owner transitions from \"<any>\" to )"
                                   R"(\"<any>\" then we MUST overwrite)",
                                   kForceSpinupWords, kForceOverwriteWords}));
}

TEST_F(ConflictOptions, RulesThatForceTheSameResolutionDoNotContradict) {
    load({kForceOverwrite, R"({"attribute":"Owner","fromValue":"Ann","toValue":"<any>",
                               "updatesFile":"N_A","conflictResolution":"overwrite"})"},
         {});
    EXPECT_EQ(evaluate(partToReview()), found("[Overwrite]"));
}

TEST_F(ConflictOptions, ObjectTypeWithoutVersioningAttributesOffersTheOverwriteLabel) {
    load({}, {});
    EXPECT_EQ(evaluate(query("Note", kInWork, kInReview)), notFound("[Overwrite]"));
}

TEST_F(ConflictOptions, ObjectTypeWithoutVersioningAttributesAndForcedSpinupOffersNothing) {
    loadRules(R"({"conflictResolutions":{"Note":[)" + std::string(kForceSpinup) + "]}}");
    loadDataModel();
    EXPECT_EQ(evaluate(query("Note", kInWork, kInReview)), found(""));
}

TEST_F(ConflictOptions, SelectionRuleOnAnObjectTypeWithoutVersioningAttributesContradicts) {
    loadRules(R"({"versioningSelections":{"Note":[)" + std::string(kSelectRevisionOrVariant) +
              "]}}");
    loadDataModel();
    EXPECT_EQ(evaluate(query("Note", kInWork, kInReview)),
              selectionContradiction({R"(For Note: When {\"Status\" equals \"In Work\"} then )"
                                      R"(you should spin up versions using one of the )"
                                      R"(attributes: [Revision,Variant])"}));
}

TEST_F(ConflictOptions, ObjectTypeTheDataModelDoesNotKnowOffersTheOverwriteLabel) {
    load({}, {});
    EXPECT_EQ(evaluate(query("Gadget", kInWork, kInReview)), notFound("[Overwrite]"));
    EXPECT_EQ(evaluate(query("", "{}", "{}")), notFound("[Overwrite]"));
}

TEST_F(ConflictOptions, TwoSelectionRulesLeaveTheirCommonAttribute) {
    load({}, {kSelectRevisionOrVariant, kSelectIterationOrRevision});
    EXPECT_EQ(evaluate(partToReview()), found("[Overwrite,Revision]"));
}

TEST_F(ConflictOptions, OverwriteLabelTakesItsPlaceInSetOrder) {
    loadRules(partRules({}, {kSelectRevisionOrVariant, kSelectIterationOrRevision}));
    loadDataModel(R"({"OverwriteLabel":"overwrite","structureObjects":[{"name":"Part",
        "dmObjectType":"DMITEM","attributes":[
            {"name":"Iteration","type":"VERSIONING","primary":true},
            {"name":"Revision","type":"VERSIONING","primary":true},
            {"name":"Variant","type":"VERSIONING","primary":true}]}]})");
    EXPECT_EQ(evaluate(partToReview()), found("[Revision,overwrite]"));
}

TEST_F(ConflictOptions, SelectionOptionThatIsNoVersioningAttributeIsLost) {
    load({}, {R"({"conditionAttribute1":"Status","conditionValue1":["In Work"],
                  "versioningOption":["Edition","Revision"]})"});
    EXPECT_EQ(evaluate(partToReview()), found("[Overwrite,Revision]"));
}

TEST_F(ConflictOptions, ForcedOverwriteDoesNotLookAtSelectionRules) {
    // The two selection rules would contradict each other if they were asked.
    load({kForceOverwrite}, {kSelectRevisionOrVariant, kSelectIteration});
    EXPECT_EQ(evaluate(partToReview()), found("[Overwrite]"));
}

TEST_F(ConflictOptions, ForcedMarksNeverLeaveTheFinder) {
    struct Scenario {
        std::vector<std::string> conflicts;
        std::vector<std::string> selections;
        bool approved;
    };
    const std::vector<Scenario> scenarios = {
        {{kForceOverwrite}, {}, true},
        {{kForceSpinup}, {}, true},
        {{kForceSpinup}, {kSelectRevisionOrVariant}, true},
        {{kForceOverwrite, kForceSpinup}, {}, false},
        {{kForceSpinup}, {kSelectRevisionOrVariant, kSelectIteration}, false},
        {{}, {kSelectRevisionOrVariant, kSelectIteration}, false},
        {{}, {}, true},
    };
    for (const Scenario& scenario : scenarios) {
        PrivateCore fresh;
        InitializeTOVRules(partRules(scenario.conflicts, scenario.selections), fresh.get());
        InitializeTOV_DMInfo(kDataModel, fresh.get());

        const TOVResponse answer =
            EvaluateTOVProperConflictResolutionOptions(partToReview(), fresh.get());
        EXPECT_EQ(answer.getGeneralResult(), scenario.approved);
        EXPECT_FALSE(hasForcedMarks(answer)) << asText(answer);

        TOVConflictsResolutionOptionsFinder finder("Part", kInWorkPacket, kInReviewPacket,
                                                   fresh.get());
        TOVResponse direct;
        EXPECT_FALSE(finder.evaluateRequest(direct));
        EXPECT_EQ(asText(direct), asText(answer));

        TOVSpinupOptionsFinder spinupFinder("Part", kInWorkPacket, kInReviewPacket, fresh.get());
        TOVResponse narrowed;
        EXPECT_FALSE(spinupFinder.evaluateRequest(narrowed));
        EXPECT_FALSE(hasForcedMarks(narrowed)) << asText(narrowed);
    }
}

// ---------------------------------------------------------------- spin-up finder

TEST_F(ConflictOptions, SpinupFinderIgnoresAForcedOverwrite) {
    load({kForceOverwrite}, {});
    EXPECT_EQ(asText(spinup("Part", kInWorkPacket, kInReviewPacket)), notFound(kAllPartOptions));
}

TEST_F(ConflictOptions, SpinupFinderIgnoresContradictingForcedResolutions) {
    load({kForceOverwrite, kForceSpinup}, {});
    EXPECT_EQ(asText(spinup("Part", kInWorkPacket, kInReviewPacket)), notFound(kAllPartOptions));
}

TEST_F(ConflictOptions, SpinupFinderKeepsTheOverwriteLabelBesideCommonAttributes) {
    // The options finder would leave Overwrite out under the forced spin-up.
    load({kForceSpinup}, {kSelectRevisionOrVariant});
    EXPECT_EQ(asText(spinup("Part", kInWorkPacket, kInReviewPacket)),
              found("[Overwrite,Revision,Variant]"));
}

TEST_F(ConflictOptions, SpinupFinderReportsContradictingSelectionRules) {
    load({}, {kSelectRevisionOrVariant, kSelectIteration});
    EXPECT_EQ(asText(spinup("Part", kInWorkPacket, kInReviewPacket)),
              selectionContradiction({kSelectIterationWords, kSelectRevisionOrVariantWords}));
}

TEST_F(ConflictOptions, SpinupFinderOnAnUnknownTypeOffersTheOverwriteLabel) {
    load({}, {});
    EXPECT_EQ(asText(spinup("Gadget", {{"Status", "In Work"}}, {{"Status", "Done"}})),
              notFound("[Overwrite]"));
}

TEST_F(ConflictOptions, SpinupFinderChecksWhatIsLoaded) {
    EXPECT_EQ(asText(spinup("Part", kInWorkPacket, kInReviewPacket)),
              failure("Uninitialized TOV rules"));
    loadRules(partRules({kForceOverwrite}, {}));
    EXPECT_EQ(asText(spinup("Part", kInWorkPacket, kInReviewPacket)),
              failure("Uninitialized Dm Information"));
}

TEST_F(ConflictOptions, SpinupFinderHasNoQueryToParse) {
    load({}, {});
    TOVSpinupOptionsFinder finder("Part", kInWorkPacket, kInReviewPacket, core.get());
    EXPECT_EQ(asText(finder.evaluateAndRespond()), failure("Insufficient input data"));
}

}  // namespace
