// The faults of a document that does not load, each with its section: the
// same messages as the load's comment, in its order.
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "test_support.h"
#include "tov/TOVResponse.h"
#include "tov/document_faults.h"
#include "tov/entry_points.h"

namespace {

using tovtest::PrivateCore;
using tovtest::TempFile;

// The section and the message, which GoogleTest prints when they differ.
using Fault = std::pair<std::string, std::string>;

std::vector<Fault> plain(const std::vector<TOVDocumentFault>& faults) {
    std::vector<Fault> plainFaults;
    plainFaults.reserve(faults.size());
    for (const TOVDocumentFault& fault : faults) {
        plainFaults.emplace_back(fault.section, fault.message);
    }
    return plainFaults;
}

std::string joined(const std::vector<TOVDocumentFault>& faults) {
    std::string comment;
    for (const TOVDocumentFault& fault : faults) {
        comment += (comment.empty() ? "" : "|") + fault.message;
    }
    return comment;
}

const char* const kTwoBadSections = R"({
  "manualLinks": {"Part": [{"attribute": "Status"}]},
  "transitions": {"Part": "none"},
  "triggers": {"Part": [{"attribute": "Status", "triggerInitialize": "Owner",
                         "initializationValue": "x"}]}
})";

TEST(DocumentFaults, EachFaultOfTheRulesComesWithItsSectionInTheOrderOfTheComment) {
    EXPECT_EQ(plain(FindTOVRulesDocumentFaults(kTwoBadSections, false)),
              (std::vector<Fault>{
                  {"transitions", "Transition rules for Part should be in a List."},
                  {"manualLinks",
                   "Manual Link rule for Part demands ALL keywords: "
                   "[attribute,fromValue,toValue,acceptableManualLinkValues]"},
              }));
}

TEST(DocumentFaults, TheMessagesAreTheLoadsComment) {
    PrivateCore core;
    const TOVResponse load = InitializeTOVRules(kTwoBadSections, core.get());
    EXPECT_EQ(joined(FindTOVRulesDocumentFaults(kTwoBadSections, false)),
              load.getGeneralResultComment());
}

TEST(DocumentFaults, ADocumentThatLoadsHasNone) {
    EXPECT_TRUE(FindTOVRulesDocumentFaults(R"({"transitions":{}})", false).empty());
    EXPECT_TRUE(FindTOV_DMInfoDocumentFaults(
                    R"({"OverwriteLabel":"Overwrite","structureObjects":[]})", false)
                    .empty());
}

TEST(DocumentFaults, TextThatIsNoDocumentConcernsNoSection) {
    EXPECT_EQ(plain(FindTOVRulesDocumentFaults("[]", false)),
              (std::vector<Fault>{{"", "Json has fundamental parsing error"}}));
    EXPECT_EQ(plain(FindTOV_DMInfoDocumentFaults("{", false)),
              (std::vector<Fault>{{"", "Json has fundamental parsing error"}}));
    EXPECT_EQ(plain(FindTOVRulesDocumentFaults("", false)),
              (std::vector<Fault>{{"", "Insufficient input data"}}));
    EXPECT_EQ(plain(FindTOVRulesDocumentFaults("/nonexistent/rules.json", true)),
              (std::vector<Fault>{{"", "Json has fundamental parsing error"}}));
}

TEST(DocumentFaults, AFileIsReadAsTheFileLoadReadsIt) {
    const TempFile file(kTwoBadSections);
    EXPECT_EQ(plain(FindTOVRulesDocumentFaults(file.path, true)),
              plain(FindTOVRulesDocumentFaults(kTwoBadSections, false)));
}

TEST(DocumentFaults, DataModelFaultsOfAnObjectConcernItsListAndMissingMembersTheDocument) {
    const std::string text = R"({"structureObjects":[{"name":"Part","dmObjectType":"DMITEM",
        "attributes":[{"name":"Status","type":"REGULAR"}]}]})";
    const std::vector<TOVDocumentFault> faults = FindTOV_DMInfoDocumentFaults(text, false);
    EXPECT_EQ(
        plain(faults),
        (std::vector<Fault>{
            {"structureObjects", "DM Attribute for Part demands ALL keywords: [name,type,primary]"},
            {"",
             "DM Structure Information demands ALL keywords: "
             "[structureObjects,OverwriteLabel]"},
        }));
    PrivateCore core;
    EXPECT_EQ(joined(faults), InitializeTOV_DMInfo(text, core.get()).getGeneralResultComment());
}

}  // namespace
