#include "tov/attribute_packets.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tov/vocabulary.h"

namespace {

using Strings = std::vector<std::string>;

AttributesMap packetWithFileUpload(const std::string& value) {
    return AttributesMap{{"_file_upload_", value}, {"Name", "Bolt"}};
}

// ---------------------------------------------------------------------------
// The file-updating pseudo-attribute

TEST(AttributePackets, FileUpdateValuesKeepTheirNumbers) {
    EXPECT_EQ(static_cast<int>(TOVUpdateFile_NotApplicable), 0);
    EXPECT_EQ(static_cast<int>(TOVUpdateFile_Yes), 1);
    EXPECT_EQ(static_cast<int>(TOVUpdateFile_No), 2);
}

TEST(AttributePackets, YesWordsInAnyCaseReadAsYes) {
    for (const char* word : {"YES", "yes", "Yes", "yEs", "true", "TRUE", "True", "tRuE"}) {
        EXPECT_EQ(getThisPacketFileUpdatingValue(packetWithFileUpload(word)), TOVUpdateFile_Yes)
            << word;
    }
}

TEST(AttributePackets, NoWordsInAnyCaseReadAsNo) {
    for (const char* word : {"NO", "no", "No", "nO", "false", "FALSE", "False", "fAlSe"}) {
        EXPECT_EQ(getThisPacketFileUpdatingValue(packetWithFileUpload(word)), TOVUpdateFile_No)
            << word;
    }
}

TEST(AttributePackets, AnyAndNotApplicableReadAsNotApplicable) {
    for (const char* word : {"<any>", "<ANY>", "N_A", "n_a"}) {
        EXPECT_EQ(getThisPacketFileUpdatingValue(packetWithFileUpload(word)),
                  TOVUpdateFile_NotApplicable)
            << word;
    }
}

TEST(AttributePackets, OtherValuesReadAsNotApplicable) {
    for (const char* word : {"maybe", "", " true", "yes ", "1", "0", "Y", "ALL"}) {
        EXPECT_EQ(getThisPacketFileUpdatingValue(packetWithFileUpload(word)),
                  TOVUpdateFile_NotApplicable)
            << '"' << word << '"';
    }
}

TEST(AttributePackets, MissingFileUploadEntryReadsAsNotApplicable) {
    EXPECT_EQ(getThisPacketFileUpdatingValue(AttributesMap{}), TOVUpdateFile_NotApplicable);
    EXPECT_EQ(getThisPacketFileUpdatingValue(AttributesMap{{"Name", "true"}}),
              TOVUpdateFile_NotApplicable);
}

TEST(AttributePackets, FileUploadKeyIsLookedUpExactly) {
    EXPECT_EQ(getThisPacketFileUpdatingValue(AttributesMap{{"_FILE_UPLOAD_", "true"}}),
              TOVUpdateFile_NotApplicable);
    EXPECT_EQ(getThisPacketFileUpdatingValue(AttributesMap{{"_file_upload", "true"}}),
              TOVUpdateFile_NotApplicable);
}

TEST(AttributePackets, SettingFileUpdatingTrueStoresTheWordTrue) {
    AttributesMap packet{{"Name", "Bolt"}};
    setThisPacketFileUpdatingValue(packet, true);
    EXPECT_EQ(packet, (AttributesMap{{"Name", "Bolt"}, {"_file_upload_", "true"}}));
    EXPECT_EQ(getThisPacketFileUpdatingValue(packet), TOVUpdateFile_Yes);
}

TEST(AttributePackets, SettingFileUpdatingFalseStoresTheWordFalse) {
    AttributesMap packet;
    setThisPacketFileUpdatingValue(packet, false);
    EXPECT_EQ(packet, (AttributesMap{{"_file_upload_", "false"}}));
    EXPECT_EQ(getThisPacketFileUpdatingValue(packet), TOVUpdateFile_No);
}

TEST(AttributePackets, SettingFileUpdatingReplacesAnEarlierValue) {
    AttributesMap packet{{"_file_upload_", "YES"}};
    setThisPacketFileUpdatingValue(packet, false);
    EXPECT_EQ(packet, (AttributesMap{{"_file_upload_", "false"}}));
    setThisPacketFileUpdatingValue(packet, true);
    EXPECT_EQ(packet, (AttributesMap{{"_file_upload_", "true"}}));
}

// ---------------------------------------------------------------------------
// The server identifier

TEST(AttributePackets, ServerIdIsReadFromItsKey) {
    EXPECT_EQ(getTOVServerIdFromAttributesMap(AttributesMap{{"ServerId", "42-A"}, {"x", "y"}}),
              "42-A");
}

TEST(AttributePackets, MissingServerIdReadsAsEmpty) {
    EXPECT_EQ(getTOVServerIdFromAttributesMap(AttributesMap{}), "");
    EXPECT_EQ(getTOVServerIdFromAttributesMap(AttributesMap{{"serverid", "42"}}), "");
    EXPECT_EQ(getTOVServerIdFromAttributesMap(AttributesMap{{"SERVERID", "42"}}), "");
}

TEST(AttributePackets, SettingServerIdInsertsOrReplaces) {
    AttributesMap packet{{"Name", "Bolt"}};
    setTOVServerIdIntoAttributesMap("17", packet);
    EXPECT_EQ(packet, (AttributesMap{{"Name", "Bolt"}, {"ServerId", "17"}}));
    setTOVServerIdIntoAttributesMap("18", packet);
    EXPECT_EQ(packet, (AttributesMap{{"Name", "Bolt"}, {"ServerId", "18"}}));
    EXPECT_EQ(getTOVServerIdFromAttributesMap(packet), "18");
}

// ---------------------------------------------------------------------------
// Differences over given keys

TEST(AttributePackets, ValuesDifferingOnlyInCaseAreNoDifference) {
    const AttributesMap first{{"a", "X"}};
    const AttributesMap second{{"a", "x"}};
    Strings differing;
    EXPECT_FALSE(
        getWhichOfKeysHaveDifferentValuesInPackets({"a"}, first, second, false, differing));
    EXPECT_FALSE(getWhichKeysHaveDifferentValuesInPackets(first, second, false, differing));
    EXPECT_TRUE(differing.empty());
}

TEST(AttributePackets, AnyIsADifferenceWithoutTheFlag) {
    const AttributesMap first{{"a", "<any>"}};
    const AttributesMap second{{"a", "X"}};
    Strings differing;
    EXPECT_TRUE(getWhichKeysHaveDifferentValuesInPackets(first, second, false, differing));
    EXPECT_EQ(differing, (Strings{"a"}));

    Strings reversed;
    EXPECT_TRUE(getWhichKeysHaveDifferentValuesInPackets(second, first, false, reversed));
    EXPECT_EQ(reversed, (Strings{"a"}));
}

TEST(AttributePackets, AnyIsNoDifferenceWithTheFlagOnEitherSide) {
    const AttributesMap withAny{{"a", "<any>"}};
    const AttributesMap withCapitalAny{{"a", "<ANY>"}};
    const AttributesMap plain{{"a", "X"}};
    Strings differing;
    EXPECT_FALSE(getWhichKeysHaveDifferentValuesInPackets(withAny, plain, true, differing));
    EXPECT_FALSE(getWhichKeysHaveDifferentValuesInPackets(plain, withAny, true, differing));
    EXPECT_FALSE(getWhichKeysHaveDifferentValuesInPackets(withCapitalAny, plain, true, differing));
    EXPECT_FALSE(
        getWhichOfKeysHaveDifferentValuesInPackets({"a"}, plain, withAny, true, differing));
    EXPECT_TRUE(differing.empty());
}

TEST(AttributePackets, TheFlagDoesNotHideRealDifferences) {
    const AttributesMap first{{"a", "X"}, {"b", "<any>"}};
    const AttributesMap second{{"a", "Y"}, {"b", "Z"}};
    Strings differing;
    EXPECT_TRUE(getWhichKeysHaveDifferentValuesInPackets(first, second, true, differing));
    EXPECT_EQ(differing, (Strings{"a"}));
}

TEST(AttributePackets, GivenKeysAreReportedInListOrder) {
    const AttributesMap first{{"a", "1"}, {"b", "1"}, {"c", "1"}};
    const AttributesMap second{{"a", "2"}, {"b", "1"}, {"c", "2"}};
    Strings differing;
    EXPECT_TRUE(getWhichOfKeysHaveDifferentValuesInPackets({"c", "b", "a"}, first, second, false,
                                                           differing));
    EXPECT_EQ(differing, (Strings{"c", "a"}));
}

TEST(AttributePackets, GivenKeysAreOnlyThoseLookedAt) {
    const AttributesMap first{{"a", "1"}, {"b", "1"}};
    const AttributesMap second{{"a", "2"}, {"b", "2"}};
    Strings differing;
    EXPECT_TRUE(getWhichOfKeysHaveDifferentValuesInPackets({"b"}, first, second, false, differing));
    EXPECT_EQ(differing, (Strings{"b"}));
}

TEST(AttributePackets, GivenKeysAreLookedUpExactly) {
    const AttributesMap first{{"Name", "1"}};
    const AttributesMap second{{"Name", "2"}};
    Strings differing;
    EXPECT_FALSE(getWhichOfKeysHaveDifferentValuesInPackets({"name", "NAME"}, first, second, false,
                                                            differing));
    EXPECT_TRUE(differing.empty());
}

TEST(AttributePackets, AGivenKeyTwiceIsReportedTwice) {
    const AttributesMap first{{"a", "1"}};
    const AttributesMap second{{"a", "2"}};
    Strings differing;
    EXPECT_TRUE(
        getWhichOfKeysHaveDifferentValuesInPackets({"a", "a"}, first, second, false, differing));
    EXPECT_EQ(differing, (Strings{"a", "a"}));
}

TEST(AttributePackets, AGivenKeyMissingFromEitherPacketIsSkipped) {
    const AttributesMap first{{"a", "1"}, {"onlyFirst", "1"}};
    const AttributesMap second{{"a", "2"}, {"onlySecond", "2"}};
    Strings differing;
    EXPECT_TRUE(getWhichOfKeysHaveDifferentValuesInPackets(
        {"onlyFirst", "onlySecond", "nowhere", "a"}, first, second, false, differing));
    EXPECT_EQ(differing, (Strings{"a"}));
}

TEST(AttributePackets, AnEmptyListOfKeysGivesFalse) {
    const AttributesMap first{{"a", "1"}};
    const AttributesMap second{{"a", "2"}};
    Strings differing;
    EXPECT_FALSE(getWhichOfKeysHaveDifferentValuesInPackets({}, first, second, false, differing));
    EXPECT_TRUE(differing.empty());
}

TEST(AttributePackets, GivenKeyDifferencesAreAppended) {
    const AttributesMap first{{"a", "1"}};
    const AttributesMap second{{"a", "2"}};
    Strings differing{"earlier"};
    EXPECT_TRUE(getWhichOfKeysHaveDifferentValuesInPackets({"a"}, first, second, false, differing));
    EXPECT_EQ(differing, (Strings{"earlier", "a"}));
}

TEST(AttributePackets, ResultTellsOnlyWhatThisCallAppended) {
    const AttributesMap same{{"a", "1"}};
    Strings differing{"earlier"};
    EXPECT_FALSE(getWhichOfKeysHaveDifferentValuesInPackets({"a"}, same, same, false, differing));
    EXPECT_FALSE(getWhichKeysHaveDifferentValuesInPackets(same, same, false, differing));
    EXPECT_EQ(differing, (Strings{"earlier"}));
}

// ---------------------------------------------------------------------------
// Differences over all common keys

TEST(AttributePackets, DifferencesComeInByteOrderOfKeys) {
    const AttributesMap first{{"b", "1"}, {"B", "1"}, {"a", "1"}, {"same", "s"}};
    const AttributesMap second{{"b", "2"}, {"B", "2"}, {"a", "2"}, {"same", "S"}};
    Strings differing;
    EXPECT_TRUE(getWhichKeysHaveDifferentValuesInPackets(first, second, false, differing));
    EXPECT_EQ(differing, (Strings{"B", "a", "b"}));
}

TEST(AttributePackets, KeyOfTheLargerFirstPacketOnlyIsNeverReported) {
    const AttributesMap first{{"a", "1"}, {"b", "1"}, {"extra", "1"}};
    const AttributesMap second{{"a", "2"}, {"b", "1"}};
    Strings differing;
    EXPECT_TRUE(getWhichKeysHaveDifferentValuesInPackets(first, second, false, differing));
    EXPECT_EQ(differing, (Strings{"a"}));
}

TEST(AttributePackets, KeyOfTheLargerSecondPacketOnlyIsNeverReported) {
    const AttributesMap first{{"a", "1"}, {"b", "1"}};
    const AttributesMap second{{"a", "2"}, {"b", "1"}, {"extra", "1"}};
    Strings differing;
    EXPECT_TRUE(getWhichKeysHaveDifferentValuesInPackets(first, second, false, differing));
    EXPECT_EQ(differing, (Strings{"a"}));
}

TEST(AttributePackets, KeysOfEitherEqualSizedPacketOnlyAreNeverReported) {
    const AttributesMap first{{"a", "1"}, {"onlyFirst", "1"}};
    const AttributesMap second{{"a", "2"}, {"onlySecond", "2"}};
    Strings differing;
    EXPECT_TRUE(getWhichKeysHaveDifferentValuesInPackets(first, second, false, differing));
    EXPECT_EQ(differing, (Strings{"a"}));

    Strings reversed;
    EXPECT_TRUE(getWhichKeysHaveDifferentValuesInPackets(second, first, false, reversed));
    EXPECT_EQ(reversed, (Strings{"a"}));
}

TEST(AttributePackets, PacketsWithNoCommonKeyDoNotDiffer) {
    const AttributesMap first{{"a", "1"}};
    const AttributesMap second{{"b", "2"}, {"c", "3"}};
    Strings differing;
    EXPECT_FALSE(getWhichKeysHaveDifferentValuesInPackets(first, second, false, differing));
    EXPECT_FALSE(getWhichKeysHaveDifferentValuesInPackets(second, first, false, differing));
    EXPECT_TRUE(differing.empty());
}

TEST(AttributePackets, TwoEmptyPacketsGiveFalseAndAppendNothing) {
    Strings differing{"earlier"};
    EXPECT_FALSE(getWhichKeysHaveDifferentValuesInPackets(AttributesMap{}, AttributesMap{}, false,
                                                          differing));
    EXPECT_FALSE(getWhichKeysHaveDifferentValuesInPackets(AttributesMap{}, AttributesMap{}, true,
                                                          differing));
    EXPECT_EQ(differing, (Strings{"earlier"}));
}

TEST(AttributePackets, OneEmptyPacketGivesFalse) {
    const AttributesMap packet{{"a", "1"}};
    Strings differing;
    EXPECT_FALSE(
        getWhichKeysHaveDifferentValuesInPackets(packet, AttributesMap{}, false, differing));
    EXPECT_FALSE(
        getWhichKeysHaveDifferentValuesInPackets(AttributesMap{}, packet, false, differing));
    EXPECT_TRUE(differing.empty());
}

TEST(AttributePackets, DifferencesCollectOverSeveralCalls) {
    const AttributesMap first{{"a", "1"}, {"b", "1"}};
    const AttributesMap second{{"a", "2"}, {"b", "2"}};
    Strings differing;
    EXPECT_TRUE(getWhichKeysHaveDifferentValuesInPackets(first, second, false, differing));
    EXPECT_TRUE(getWhichKeysHaveDifferentValuesInPackets(second, first, false, differing));
    EXPECT_EQ(differing, (Strings{"a", "b", "a", "b"}));
}

TEST(AttributePackets, PseudoAttributesAreComparedLikeAnyOther) {
    AttributesMap first{{"Name", "Bolt"}};
    AttributesMap second{{"Name", "bolt"}};
    setThisPacketFileUpdatingValue(first, true);
    setThisPacketFileUpdatingValue(second, false);
    setTOVServerIdIntoAttributesMap("1", first);
    setTOVServerIdIntoAttributesMap("1", second);
    Strings differing;
    EXPECT_TRUE(getWhichKeysHaveDifferentValuesInPackets(first, second, false, differing));
    EXPECT_EQ(differing, (Strings{"_file_upload_"}));
}

}  // namespace
