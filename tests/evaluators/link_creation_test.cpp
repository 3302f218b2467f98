// Manual link creation end to end: the request document with its two optional
// sections, every message of a bad request, and the manual link rules judging
// the ancestor once the descendant's attributes bring them into force.
#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "evaluators/TOVLinkCreationParser.h"
#include "test_support.h"
#include "tov/TOVActionController.h"
#include "tov/TOVFunctionality.h"
#include "tov/TOVLinkController.h"
#include "tov/TOVResponse.h"
#include "tov/TOVTransactionController.h"
#include "tov/entry_points.h"
#include "tov/vocabulary.h"

namespace {

using tovtest::asText;
using tovtest::PrivateCore;
using tovtest::TempFile;

const char* const kApproved =
    R"({"Result":"Success","ResultComment":"Manual Link creation approved"})";
const char* const kRulesLoaded =
    R"({"Result":"Success","ResultComment":"Successfully initialized TOV rules"})";
const char* const kDMLoaded =
    R"({"Result":"Success","ResultComment":"Succesfully initialized DM info"})";

// Two manual link rules for assemblies. Sorted, the Phase rule comes first:
// attributes compare by length before their letters.
const char* const kAssemblyRules = R"({"manualLinks":{"Assembly":[
    {"attribute":"Status","fromValue":"<any>","toValue":"Released",
     "acceptableManualLinkValues":["Released","Obsolete"]},
    {"attribute":"Phase","fromValue":"In Work","toValue":"<any>",
     "acceptableManualLinkValues":["Design"]}]}})";

// The two rules in words, as they stand inside a single JSON string.
const char* const kStatusRuleWords =
    R"(For Assembly: When Status is \"Released\" then its manual link ancestors can have )"
    R"(Status equal to one of :[Obsolete,Released])";
const char* const kPhaseRuleWords =
    R"(For Assembly: When Phase transitions from \"In Work\" to \"<any>\" then its manual )"
    R"(link ancestors can have Phase equal to one of :[Design])";

const char* const kAncestorKeywords =
    "Manual Link Ancestor demands ALL keywords: [objectType,attributes]";
const char* const kDescendantKeywords =
    "Manual Link descendant demands ALL keywords: [objectType,attributes]";

// `comment` is written as it stands inside the JSON string.
std::string failure(const std::string& comment) {
    return R"({"Result":"Failure","ResultComment":")" + comment + R"("})";
}

// One section object: {"objectType":..., "attributes":{...}}.
std::string linked(const std::string& type, const std::string& attributes) {
    return R"({"objectType":")" + type + R"(","attributes":)" + attributes + "}";
}

// A request with the sections that are given; an empty text leaves one out.
std::string request(const std::string& ancestor, const std::string& descendant) {
    std::string text = "{";
    if (!ancestor.empty()) {
        text += R"("ancestor":)" + ancestor;
    }
    if (!descendant.empty()) {
        text += std::string(ancestor.empty() ? "" : ",") + R"("descendant":)" + descendant;
    }
    return text + "}";
}

const std::string kReleasedAssembly = linked("Assembly", R"({"Status":"Released"})");
const std::string kReleasedAncestor = linked("Part", R"({"Status":"Released"})");
const std::string kInWorkAncestor = linked("Part", R"({"Status":"In Work"})");

class LinkCreation : public ::testing::Test {
protected:
    void loadRules(const char* document) {
        ASSERT_EQ(asText(InitializeTOVRules(document, core.get())), kRulesLoaded);
    }
    void loadDataModel(const char* document) {
        ASSERT_EQ(asText(InitializeTOV_DMInfo(document, core.get())), kDMLoaded);
    }
    std::string evaluate(const std::string& text) {
        return asText(EvaluateTOVManualLinkCreation(text, core.get()));
    }

    PrivateCore core;
};

// The controller with its parse step opened up, to see what a request stores.
class ExposedLinkController : public TOVLinkController {
public:
    using TOVLinkController::parseInputData;
    using TOVLinkController::TOVLinkController;
};

class ExposedLinkCreationParser : public TOVLinkCreationParser {
public:
    using TOVLinkCreationParser::getAllNecessaryKeywords;
    using TOVLinkCreationParser::getRuleName;
    using TOVLinkCreationParser::TOVLinkCreationParser;
};

class ExposedAncestorParser : public TOVAncestorJsonParser {
public:
    using TOVAncestorJsonParser::getAllNecessaryKeywords;
    using TOVAncestorJsonParser::getRuleName;
};

class ExposedDescendantParser : public TOVDescendantJsonParser {
public:
    using TOVDescendantJsonParser::getAllNecessaryKeywords;
    using TOVDescendantJsonParser::getRuleName;
};

// ---------------------------------------------------------------- frame

TEST_F(LinkCreation, EmptyInputIsInsufficient) {
    loadRules(kAssemblyRules);
    EXPECT_EQ(evaluate(""), failure("Insufficient input data"));
}

TEST_F(LinkCreation, ControllerWithoutItsLabelIsInsufficient) {
    loadRules(kAssemblyRules);
    TOVLinkController controller({{"All_transition_values", "{}"}}, core.get());
    EXPECT_EQ(asText(controller.evaluateAndRespond()), failure("Insufficient input data"));
}

TEST_F(LinkCreation, ControllerReportsFunctionalitySevenAndItsLabels) {
    TOVLinkController controller({}, core.get());
    EXPECT_EQ(controller.getFunctionality(), TOVFunctionality_ManualLinkCreation);
    EXPECT_EQ(TOVLinkController::getInputDataLabelIndentifierForLinkCreationData(),
              "All_link_creation_values");
    EXPECT_EQ(TOVLinkController::getInputDataLabelIdentifierForJsonFilepath(), "Input_is_filepath");
}

TEST_F(LinkCreation, FactoryBuildsTheLinkControllerForFunctionalitySeven) {
    TOVActionController* controller =
        createProperController(TOVFunctionality_ManualLinkCreation, {}, core.get());
    ASSERT_NE(controller, nullptr);
    EXPECT_NE(dynamic_cast<TOVLinkController*>(controller), nullptr);
    EXPECT_EQ(controller->getFunctionality(), TOVFunctionality_ManualLinkCreation);
    delete controller;
}

TEST_F(LinkCreation, TextThatIsNoJsonObjectHasAFundamentalError) {
    loadRules(kAssemblyRules);
    for (const char* text : {"[]", "{", "\"ancestor\"", "{} {}", "12"}) {
        EXPECT_EQ(evaluate(text), failure("Json has fundamental parsing error")) << text;
    }
}

TEST_F(LinkCreation, UnreadableFileHasAFundamentalError) {
    loadRules(kAssemblyRules);
    EXPECT_EQ(asText(EvaluateTOVManualLinkCreationFromFile("/nonexistent/link.json", core.get())),
              failure("Json has fundamental parsing error"));
}

TEST_F(LinkCreation, RequestFromAFileIsJudgedLikeText) {
    loadRules(kAssemblyRules);
    const TempFile approved(request(kReleasedAncestor, kReleasedAssembly));
    EXPECT_EQ(asText(EvaluateTOVManualLinkCreationFromFile(approved.path, core.get())), kApproved);
    const TempFile refused(request(kInWorkAncestor, kReleasedAssembly));
    EXPECT_EQ(asText(EvaluateTOVManualLinkCreationFromFile(refused.path, core.get())),
              failure(kStatusRuleWords));
}

TEST_F(LinkCreation, AnyValueUnderTheFilePathLabelMakesThePathAFile) {
    loadRules(kAssemblyRules);
    const TempFile file(request(kInWorkAncestor, kReleasedAssembly));
    TOVLinkController controller(
        {{"All_link_creation_values", file.path}, {"Input_is_filepath", "false"}}, core.get());
    EXPECT_EQ(asText(controller.evaluateAndRespond()), failure(kStatusRuleWords));
}

TEST_F(LinkCreation, NoRulesLoadedIsRefusedAsUninitialized) {
    EXPECT_EQ(evaluate(request(kInWorkAncestor, kReleasedAssembly)),
              failure("Uninitialized TOV rules"));
}

TEST_F(LinkCreation, NoRulesLoadedIsRefusedEvenWithADataModel) {
    loadDataModel(R"({"OverwriteLabel":"Overwrite","structureObjects":[{"name":"Assembly",
        "dmObjectType":"DMITEM","attributes":[{"name":"Status","type":"REGULAR","primary":true}]}]})");
    EXPECT_EQ(evaluate("{}"), failure("Uninitialized TOV rules"));
}

TEST_F(LinkCreation, ParseErrorsComeBeforeTheRulesCheck) {
    EXPECT_EQ(evaluate(R"({"ancestor":{}})"), failure(kAncestorKeywords));
}

// ---------------------------------------------------------------- sections

TEST_F(LinkCreation, EmptyRequestIsApproved) {
    loadRules(kAssemblyRules);
    EXPECT_EQ(evaluate("{}"), kApproved);
}

TEST_F(LinkCreation, DescendantWithoutAncestorIsApproved) {
    // The ancestor is one empty packet, which lacks the attribute of every rule.
    loadRules(kAssemblyRules);
    EXPECT_EQ(evaluate(request("", kReleasedAssembly)), kApproved);
}

TEST_F(LinkCreation, AncestorWithoutDescendantIsApproved) {
    loadRules(kAssemblyRules);
    EXPECT_EQ(evaluate(request(linked("Part", R"({"Status":"In Work","Phase":"Build"})"), "")),
              kApproved);
}

TEST_F(LinkCreation, AncestorAsAnEmptyObjectLacksItsKeywords) {
    loadRules(kAssemblyRules);
    EXPECT_EQ(evaluate(request("{}", kReleasedAssembly)), failure(kAncestorKeywords));
}

TEST_F(LinkCreation, DescendantAsAnEmptyObjectLacksItsKeywords) {
    loadRules(kAssemblyRules);
    EXPECT_EQ(evaluate(request(kInWorkAncestor, "{}")), failure(kDescendantKeywords));
}

TEST_F(LinkCreation, SectionsOfAnotherJsonTypeCountAsAbsent) {
    loadRules(kAssemblyRules);
    EXPECT_EQ(evaluate(request("3", kReleasedAssembly)), kApproved);
    EXPECT_EQ(evaluate(request(R"(["Part"])", "\"Assembly\"")), kApproved);
    EXPECT_EQ(evaluate(request("null", "true")), kApproved);
}

TEST_F(LinkCreation, EmptyAttributesLackTheKeywords) {
    loadRules(kAssemblyRules);
    EXPECT_EQ(evaluate(request(linked("Part", "{}"), kReleasedAssembly)),
              failure(kAncestorKeywords));
    EXPECT_EQ(evaluate(request(kInWorkAncestor, linked("Assembly", "{}"))),
              failure(kDescendantKeywords));
}

TEST_F(LinkCreation, MissingOrEmptyObjectTypeLacksTheKeywords) {
    loadRules(kAssemblyRules);
    EXPECT_EQ(evaluate(request(R"({"attributes":{"Status":"Released"}})", kReleasedAssembly)),
              failure(kAncestorKeywords));
    EXPECT_EQ(evaluate(request(kInWorkAncestor, linked("", R"({"Status":"Released"})"))),
              failure(kDescendantKeywords));
}

TEST_F(LinkCreation, MissingAttributesLackTheKeywords) {
    loadRules(kAssemblyRules);
    EXPECT_EQ(evaluate(request(kInWorkAncestor, R"({"objectType":"Assembly"})")),
              failure(kDescendantKeywords));
}

TEST_F(LinkCreation, ObjectTypeThatIsNoStringIsReported) {
    loadRules(kAssemblyRules);
    EXPECT_EQ(evaluate(request(R"({"objectType":7,"attributes":{"Status":"Released"}})",
                               kReleasedAssembly)),
              failure("Manual Link Ancestor value for objectType should be a string."));
    EXPECT_EQ(
        evaluate(request(kInWorkAncestor,
                         R"({"objectType":["Assembly"],"attributes":{"Status":"Released"}})")),
        failure("Manual Link descendant value for objectType should be a string."));
}

TEST_F(LinkCreation, AttributesThatAreNoMapAreReported) {
    loadRules(kAssemblyRules);
    EXPECT_EQ(evaluate(request(linked("Part", R"(["Status","Released"])"), kReleasedAssembly)),
              failure("Manual Link Ancestor:Attributes should be a map."));
    EXPECT_EQ(evaluate(request(kInWorkAncestor, linked("Assembly", R"("Status")"))),
              failure("Manual Link descendant:Attributes should be a map."));
}

TEST_F(LinkCreation, AttributeValueThatIsNoStringIsReported) {
    loadRules(kAssemblyRules);
    EXPECT_EQ(
        evaluate(request(linked("Part", R"({"Status":"Released","Rank":1})"), kReleasedAssembly)),
        failure("Manual Link Ancestor: parsing error on keys - values of attributes."));
    EXPECT_EQ(evaluate(request(kInWorkAncestor, linked("Assembly", R"({"Status":true})"))),
              failure("Manual Link descendant: parsing error on keys - values of attributes."));
}

TEST_F(LinkCreation, FaultsOfBothSectionsAreJoined) {
    loadRules(kAssemblyRules);
    EXPECT_EQ(evaluate(request("{}", linked("Assembly", R"({"Status":true})"))),
              failure(std::string(kAncestorKeywords) + "|" +
                      "Manual Link descendant: parsing error on keys - values of attributes."));
}

TEST_F(LinkCreation, FirstFaultOfASectionEndsIt) {
    // The bad object type ends the section before its empty attributes are seen.
    loadRules(kAssemblyRules);
    EXPECT_EQ(evaluate(request(R"({"objectType":1,"attributes":{}})", "")),
              failure("Manual Link Ancestor value for objectType should be a string."));
}

TEST_F(LinkCreation, ExtraKeysAreIgnored) {
    loadRules(kAssemblyRules);
    const std::string ancestor =
        R"({"objectType":"Part","attributes":{"Status":"Released"},"serverId":7})";
    const std::string descendant =
        R"({"note":[1,2],"objectType":"Assembly","attributes":{"Status":"Released"}})";
    EXPECT_EQ(evaluate(R"({"ancestor":)" + ancestor + R"(,"descendant":)" + descendant +
                       R"(,"comment":{"a":1}})"),
              kApproved);
}

TEST_F(LinkCreation, SectionsThatParseAreStoredInTheController) {
    ExposedLinkController controller(
        {{"All_link_creation_values",
          request(linked("Part", R"({"Status":"In Work"})"),
                  linked("Assembly", R"({"Status":"Released","Phase":"Build"})"))}},
        core.get());
    TOVResponse response;
    EXPECT_TRUE(controller.parseInputData(response));
    EXPECT_EQ(controller.getTypeOfAncestor(), "Part");
    EXPECT_EQ(controller.getAttributesOfAncestor(), (AttributesMap{{"Status", "In Work"}}));
    EXPECT_EQ(controller.getTypeOfDescendant(), "Assembly");
    EXPECT_EQ(controller.getAttributesOfDescendant(),
              (AttributesMap{{"Phase", "Build"}, {"Status", "Released"}}));
}

TEST_F(LinkCreation, SectionThatGivesUpStoresNothing) {
    ExposedLinkController controller(
        {{"All_link_creation_values",
          request(R"({"objectType":"Part","attributes":{"Status":"In Work","Rank":2}})",
                  kReleasedAssembly)}},
        core.get());
    TOVResponse response;
    EXPECT_FALSE(controller.parseInputData(response));
    EXPECT_EQ(controller.getTypeOfAncestor(), "");
    EXPECT_TRUE(controller.getAttributesOfAncestor().empty());
    EXPECT_EQ(controller.getTypeOfDescendant(), "Assembly");
    EXPECT_FALSE(response.getGeneralResult());
}

TEST(LinkCreationParsers, RuleNamesAndKeywords) {
    ExposedLinkCreationParser top;
    ExposedAncestorParser ancestor;
    ExposedDescendantParser descendant;
    EXPECT_EQ(top.getRuleName(), "Lifecycle Business");
    EXPECT_EQ(ancestor.getRuleName(), "Manual Link Ancestor");
    EXPECT_EQ(descendant.getRuleName(), "Manual Link descendant");

    std::vector<std::string> keywords;
    top.getAllNecessaryKeywords(keywords);
    EXPECT_TRUE(keywords.empty());
    ancestor.getAllNecessaryKeywords(keywords);
    EXPECT_EQ(keywords, (std::vector<std::string>{"objectType", "attributes"}));
    keywords.clear();
    descendant.getAllNecessaryKeywords(keywords);
    EXPECT_EQ(keywords, (std::vector<std::string>{"objectType", "attributes"}));
}

// ---------------------------------------------------------------- rules

TEST_F(LinkCreation, AncestorWithAnAcceptableValueIsApproved) {
    loadRules(kAssemblyRules);
    EXPECT_EQ(evaluate(request(kReleasedAncestor, kReleasedAssembly)), kApproved);
    EXPECT_EQ(evaluate(request(linked("Part", R"({"Status":"Obsolete"})"), kReleasedAssembly)),
              kApproved);
}

TEST_F(LinkCreation, ViolatedRuleIsTheWholeComment) {
    loadRules(kAssemblyRules);
    const TOVResponse response =
        EvaluateTOVManualLinkCreation(request(kInWorkAncestor, kReleasedAssembly), core.get());
    EXPECT_FALSE(response.getGeneralResult());
    EXPECT_EQ(response.getGeneralResultComment(),
              "For Assembly: When Status is \"Released\" then its manual link ancestors can have "
              "Status equal to one of :[Obsolete,Released]");
    EXPECT_EQ(asText(response), failure(kStatusRuleWords));
}

TEST_F(LinkCreation, AncestorValuesAreComparedExactly) {
    // The store selects the rule ignoring case, the rule judges the ancestor
    // with case.
    loadRules(kAssemblyRules);
    EXPECT_EQ(evaluate(request(linked("Part", R"({"Status":"released"})"),
                               linked("Assembly", R"({"Status":"RELEASED"})"))),
              failure(kStatusRuleWords));
}

TEST_F(LinkCreation, AncestorWithoutTheAttributeIsNoViolation) {
    loadRules(kAssemblyRules);
    EXPECT_EQ(evaluate(request(linked("Part", R"({"Owner":"Ann"})"), kReleasedAssembly)),
              kApproved);
}

TEST_F(LinkCreation, DescendantValueOutsideTheRuleBringsNoRuleIntoForce) {
    loadRules(kAssemblyRules);
    EXPECT_EQ(evaluate(request(kInWorkAncestor, linked("Assembly", R"({"Status":"In Work"})"))),
              kApproved);
}

TEST_F(LinkCreation, DescendantOfAnotherTypeBringsNoRuleIntoForce) {
    loadRules(kAssemblyRules);
    EXPECT_EQ(evaluate(request(kInWorkAncestor, linked("Part", R"({"Status":"Released"})"))),
              kApproved);
}

TEST_F(LinkCreation, TypeOfTheAncestorTakesNoPart) {
    loadRules(kAssemblyRules);
    EXPECT_EQ(evaluate(request(linked("Assembly", R"({"Status":"In Work"})"), kReleasedAssembly)),
              failure(kStatusRuleWords));
    EXPECT_EQ(evaluate(request(linked("Unknown", R"({"Status":"In Work"})"), kReleasedAssembly)),
              failure(kStatusRuleWords));
}

TEST_F(LinkCreation, FirstViolatedRuleInStoreOrderIsReported) {
    loadRules(kAssemblyRules);
    const std::string bothViolated = linked("Part", R"({"Phase":"Build","Status":"In Work"})");
    const std::string bothInForce = linked("Assembly", R"({"Phase":"Test","Status":"Released"})");
    EXPECT_EQ(evaluate(request(bothViolated, bothInForce)), failure(kPhaseRuleWords));
    // With the Phase rule satisfied, the Status rule speaks.
    EXPECT_EQ(
        evaluate(request(linked("Part", R"({"Phase":"Design","Status":"In Work"})"), bothInForce)),
        failure(kStatusRuleWords));
}

TEST_F(LinkCreation, RulesOfOtherKindsAloneApproveEveryLink) {
    loadRules(R"({"transitions":{"Assembly":[
        {"attribute":"Status","fromValue":"In Work","toValue":["Released"]}]}})");
    EXPECT_EQ(evaluate(request(kInWorkAncestor, kReleasedAssembly)), kApproved);
}

TEST_F(LinkCreation, RuleForAllObjectTypesJudgesEveryDescendant) {
    loadRules(R"({"manualLinks":{"all":[
        {"attribute":"Status","fromValue":"<any>","toValue":"Released",
         "acceptableManualLinkValues":["Released"]}]}})");
    EXPECT_EQ(evaluate(request(kInWorkAncestor, linked("Anything", R"({"Status":"Released"})"))),
              failure(R"(For <any>: When Status is \"Released\" then its manual link ancestors )"
                      R"(can have Status equal to one of :[Released])"));
}

TEST_F(LinkCreation, WithoutADataModelObjectTypesCompareByNameAlone) {
    // No data-model information is loaded: the evaluation still runs, and the
    // descendant's type matches the rule's ignoring case.
    loadRules(kAssemblyRules);
    EXPECT_EQ(evaluate(request(kInWorkAncestor, linked("ASSEMBLY", R"({"Status":"Released"})"))),
              failure(kStatusRuleWords));
}

TEST_F(LinkCreation, LibraryItemRuleNeedsTheDataModelToKnowTheRLI) {
    loadRules(R"({"manualLinks":{"Library_Item":[
        {"attribute":"Status","fromValue":"<any>","toValue":"Released",
         "acceptableManualLinkValues":["Released"]}]}})");
    const std::string drawing = linked("Drawing", R"({"Status":"Released"})");
    const std::string refused =
        failure(R"(For Library_Item: When Status is \"Released\" then its manual link )"
                R"(ancestors can have Status equal to one of :[Released])");

    EXPECT_EQ(evaluate(request(kInWorkAncestor, drawing)), kApproved);
    loadDataModel(R"({"OverwriteLabel":"Overwrite","structureObjects":[{"name":"Drawing",
        "dmObjectType":"RLI","attributes":[{"name":"Status","type":"REGULAR","primary":true}]}]})");
    EXPECT_EQ(evaluate(request(kInWorkAncestor, drawing)), refused);
}

TEST_F(LinkCreation, LookupSeesTheDescendantAttributesAsTargetValues) {
    loadRules(kAssemblyRules);
    const std::string printed = tovtest::captureConsole(core.logger(), [&] {
        EvaluateTOVManualLinkCreation(
            request(kInWorkAncestor, linked("Assembly", R"({"Status":"Released","Owner":"Ann"})")),
            core.get());
    });
    EXPECT_NE(printed.find("*******MANUAL RULES LOOKUP********\nAssembly edits [Owner,Status]"
                           ".All target values={Owner:Ann, Status:Released}..... I found 1 "
                           "related rules.\n"),
              std::string::npos)
        << printed;
}

}  // namespace
