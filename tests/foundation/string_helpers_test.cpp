#include "tov/string_helpers.h"

#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>
#include <vector>

#include "foundation/compare.h"
#include "tov/vocabulary.h"

namespace {

using Strings = std::vector<std::string>;
using StringSet = std::set<std::string>;

// ---------------------------------------------------------------------------
// Vocabulary

TEST(StringHelpersVocabulary, PacketWordsHaveTheirExactValues) {
    EXPECT_STREQ(TOVAttrItemName_DoesUploadFile, "_file_upload_");
    EXPECT_STREQ(TOVAttrItemValue_True, "true");
    EXPECT_STREQ(TOVAttrItemValue_False, "false");
    EXPECT_STREQ(TOVAttrItemValue_Any, "<any>");
    EXPECT_STREQ(TOVAttrItemValue_ALL, "ALL");
    EXPECT_STREQ(TOVAttrItemValue_Mandatory, "MANDATORY");
    EXPECT_STREQ(TOVAttrItemValue_Forbidden, "FORBIDDEN");
    EXPECT_STREQ(TOVAttrItemValue_YES, "YES");
    EXPECT_STREQ(TOVAttrItemValue_NO, "NO");
    EXPECT_STREQ(TOVAttrItemValue_N_A, "N_A");
    EXPECT_STREQ(TOVAttrItemValue_Overwrite, "overwrite");
    EXPECT_STREQ(TOVAttrItemValue_Spinup, "spinup");
    EXPECT_STREQ(TOVAttrItemValue_Library_Item, "Library_Item");
    EXPECT_STREQ(TOVAttrItemValue_Reset, "Reset");
    EXPECT_STREQ(TOVAttrItemKeyword_ServerId, "ServerId");
    EXPECT_STREQ(TOVAttrItemKeyword_ProperVersioningAttribute, "Proper_Versioning_Attribute");
}

TEST(StringHelpersVocabulary, ResponseWordsHaveTheirExactValues) {
    EXPECT_STREQ(TOVResponseKeyword_ObjectFamilyMembers, "ObjectFamilyMembers");
    EXPECT_STREQ(TOVResponseKeyword_ManualAncestors, "ManualLinkAncestors");
    EXPECT_STREQ(TOVResponseKeyword_SelectedVersioningAttribute, "SelectedVersioningAttribute");
    EXPECT_STREQ(TOVResponseKeyword_ForcedOverwrite, "ForcedOverwrite");
    EXPECT_STREQ(TOVResponseKeyword_ForcedSpinup, "ForcedSpinup");
    EXPECT_STREQ(TOVResponseKeyword_TriggerInitialization, "TriggerInitialization");
    EXPECT_STREQ(TOVResponseValue_MissingData, "MissingData");
}

TEST(StringHelpersVocabulary, JsonKeysAndLoggingWordHaveTheirExactValues) {
    EXPECT_STREQ(TOVTransitionJson_InitialAttributes, "initialAttributes");
    EXPECT_STREQ(TOVTransitionJson_TargetAttributes, "targetAttributes");
    EXPECT_STREQ(TOVTransitionJson_ObjectType, "objectType");
    EXPECT_STREQ(TOVConflictJson_UploadsRepresentationFile, "uploadsRepresentationFile");
    EXPECT_STREQ(TOVManualLinksJson_Attributes, "attributes");
    EXPECT_STREQ(TOVManualLinksJson_Ancestor, "ancestor");
    EXPECT_STREQ(TOVManualLinksJsonDescendant, "descendant");
    EXPECT_STREQ(TOVLoggingKeyword, "console");
}

// ---------------------------------------------------------------------------
// Comparison

// A sort key's field as it is defined: the length in eight big-endian bytes,
// then each byte folded with its top bit flipped, one at a time.
std::string referenceSortKeyField(const std::string& text) {
    std::string field;
    const auto length = static_cast<unsigned long long>(text.size());
    for (int shift = 56; shift >= 0; shift -= 8) {
        field.push_back(static_cast<char>((length >> shift) & 0xFFU));
    }
    for (const char byte : text) {
        field.push_back(static_cast<char>(static_cast<unsigned char>(foldAsciiCase(byte)) ^ 0x80U));
    }
    return field;
}

TEST(StringHelpers, SortKeysFoldEveryByteValueAtEveryPlace) {
    // Every byte value at every place of a word, among neighbours that vary,
    // in texts long enough to fill the folding buffer more than once.
    for (std::size_t length = 0; length <= 600; length += length < 40 ? 1 : 37) {
        std::string text(length, '\0');
        for (std::size_t i = 0; i < length; ++i) {
            text[i] = static_cast<char>((i * 37 + length) & 0xFFU);
        }
        std::string key = "prefix";
        appendFoldedSortKey(text, key);
        EXPECT_EQ(key, "prefix" + referenceSortKeyField(text)) << "length " << length;
    }
    for (int byte = 0; byte < 256; ++byte) {
        for (std::size_t place = 0; place < 9; ++place) {
            std::string text = "aZ@[`{\x80\xFF\x41";
            text[place] = static_cast<char>(byte);
            std::string key;
            appendFoldedSortKey(text, key);
            ASSERT_EQ(key, referenceSortKeyField(text)) << "byte " << byte << " at " << place;
        }
    }
}

TEST(StringHelpers, SortKeysOfSeveralFieldsAreTheFieldsInTurn) {
    const std::string empty;
    const std::string type = "Part";
    const std::string long_text(300, 'Q');
    const std::string other = "\xC3\x89t\xC3\xA9 <ANY>";
    std::string key = "x";
    appendFoldedSortKeys({&type, &empty, &long_text, &other, &type}, key);
    EXPECT_EQ(key, "x" + referenceSortKeyField(type) + referenceSortKeyField(empty) +
                       referenceSortKeyField(long_text) + referenceSortKeyField(other) +
                       referenceSortKeyField(type));
}

TEST(StringHelpers, ComparesIgnoringCase) {
    EXPECT_TRUE(areStringsEqualSimple("abc", "ABC"));
    EXPECT_FALSE(areStringsEqualSimple("abc", "abcd"));
    EXPECT_TRUE(areStringsEqualSimple("", ""));
}

TEST(StringHelpers, SimpleEqualityFoldsEveryLetterAndKeepsOtherBytes) {
    EXPECT_TRUE(areStringsEqualSimple("Hello World", "hELLO wORLD"));
    EXPECT_TRUE(areStringsEqualSimple("a_1-B", "A_1-b"));
    EXPECT_FALSE(areStringsEqualSimple("abc", "abd"));
    EXPECT_FALSE(areStringsEqualSimple("a", ""));
    EXPECT_FALSE(areStringsEqualSimple("", "a"));
    // Different length is never equal, even when one is a prefix of the other.
    EXPECT_FALSE(areStringsEqualSimple("abc ", "abc"));
}

TEST(StringHelpers, CompareGivesTheLengthDifferenceWhenLengthsDiffer) {
    EXPECT_EQ(compareStringsIgnoringCase("ab", "abcd"), -2);
    EXPECT_EQ(compareStringsIgnoringCase("abcd", "a"), 3);
    EXPECT_EQ(compareStringsIgnoringCase("", "xyz"), -3);
    EXPECT_EQ(compareStringsIgnoringCase("", ""), 0);
}

TEST(StringHelpers, CompareIsLengthFirstAndNotAlphabetical) {
    // "b" sorts after "aa" alphabetically, but the shorter string comes first here.
    EXPECT_LT(compareStringsIgnoringCase("b", "aa"), 0);
    EXPECT_GT(compareStringsIgnoringCase("aa", "z"), 0);
}

TEST(StringHelpers, CompareGivesTheFoldedByteDifferenceAtTheFirstMismatch) {
    EXPECT_EQ(compareStringsIgnoringCase("abc", "abd"), 'c' - 'd');
    EXPECT_EQ(compareStringsIgnoringCase("b", "A"), 'b' - 'a');
    EXPECT_EQ(compareStringsIgnoringCase("Za", "ab"), 'z' - 'a');
    EXPECT_EQ(compareStringsIgnoringCase("ABC", "abc"), 0);
    // Only the first mismatch counts.
    EXPECT_EQ(compareStringsIgnoringCase("axz", "bya"), 'a' - 'b');
}

TEST(StringHelpers, CompareFoldsBytesOnly) {
    // Bytes beyond ASCII are not letters to the byte-wise folding: two spellings of
    // one accented letter in Latin-1 stay different.
    EXPECT_NE(compareStringsIgnoringCase("\xC9", "\xE9"), 0);
    EXPECT_EQ(compareStringsIgnoringCase("\xC3\xA9", "\xC3\xA9"), 0);
}

TEST(StringHelpers, AnyValueOnEitherSideEqualsEverything) {
    EXPECT_TRUE(areStringsEqualAccountingAlsoAnyValue("<any>", ""));
    EXPECT_TRUE(areStringsEqualAccountingAlsoAnyValue("", "<any>"));
    EXPECT_TRUE(areStringsEqualAccountingAlsoAnyValue("<any>", "whatever"));
    EXPECT_TRUE(areStringsEqualAccountingAlsoAnyValue("whatever", "<ANY>"));
    EXPECT_TRUE(areStringsEqualAccountingAlsoAnyValue("<Any>", "<any>"));
}

TEST(StringHelpers, AnyAwareEqualityOtherwiseComparesIgnoringCase) {
    EXPECT_TRUE(areStringsEqualAccountingAlsoAnyValue("Value", "vALUE"));
    EXPECT_TRUE(areStringsEqualAccountingAlsoAnyValue("", ""));
    EXPECT_FALSE(areStringsEqualAccountingAlsoAnyValue("a", "b"));
    EXPECT_FALSE(areStringsEqualAccountingAlsoAnyValue("any", "x"));
    EXPECT_FALSE(areStringsEqualAccountingAlsoAnyValue("<any> ", "x"));
}

TEST(StringHelpers, AnyValueIsReservedInEveryCase) {
    EXPECT_TRUE(isThisTheReservedAnyValue("<any>"));
    EXPECT_TRUE(isThisTheReservedAnyValue("<ANY>"));
    EXPECT_TRUE(isThisTheReservedAnyValue("<aNy>"));
    EXPECT_FALSE(isThisTheReservedAnyValue("any"));
    EXPECT_FALSE(isThisTheReservedAnyValue(" <any>"));
    EXPECT_FALSE(isThisTheReservedAnyValue("ALL"));
    EXPECT_FALSE(isThisTheReservedAnyValue(""));
}

TEST(StringHelpers, ResetValueIsReservedInEveryCase) {
    EXPECT_TRUE(isThisTheReservedResetValue("Reset"));
    EXPECT_TRUE(isThisTheReservedResetValue("reset"));
    EXPECT_TRUE(isThisTheReservedResetValue("RESET"));
    EXPECT_FALSE(isThisTheReservedResetValue("Resets"));
    EXPECT_FALSE(isThisTheReservedResetValue("Rese"));
    EXPECT_FALSE(isThisTheReservedResetValue(""));
}

TEST(StringHelpers, ConsoleKeywordMatchesInAnyCaseWithEqualLength) {
    EXPECT_TRUE(isThisTheLogToConsoleKeyword("console"));
    EXPECT_TRUE(isThisTheLogToConsoleKeyword("CONSOLE"));
    EXPECT_TRUE(isThisTheLogToConsoleKeyword("CoNsOlE"));
    EXPECT_FALSE(isThisTheLogToConsoleKeyword("consol"));
    EXPECT_FALSE(isThisTheLogToConsoleKeyword("console "));
    EXPECT_FALSE(isThisTheLogToConsoleKeyword("consoles"));
    EXPECT_FALSE(isThisTheLogToConsoleKeyword(""));
}

TEST(StringHelpers, ChangeAllToAnyRewritesEverySpellingOfAll) {
    for (const char* spelling : {"ALL", "all", "All", "aLl"}) {
        std::string objectType = spelling;
        EXPECT_TRUE(changeAllToAny(objectType)) << spelling;
        EXPECT_EQ(objectType, "<any>") << spelling;
    }
}

TEST(StringHelpers, ChangeAllToAnyLeavesEverythingElse) {
    for (const char* text : {"<any>", "<ANY>", "ALLx", "AL", "", " ALL", "Document"}) {
        std::string objectType = text;
        EXPECT_FALSE(changeAllToAny(objectType)) << text;
        EXPECT_EQ(objectType, text);
    }
}

// ---------------------------------------------------------------------------
// Map access

TEST(StringHelpers, MapLookupIsExactAndCopiesTheValue) {
    const AttributesMap attributes{{"Name", "Bolt"}, {"name", "nut"}, {"Empty", ""}};
    std::string value = "before";
    EXPECT_TRUE(getValueofKeywordFromStringStringMap("Name", attributes, value));
    EXPECT_EQ(value, "Bolt");
    EXPECT_TRUE(getValueofKeywordFromStringStringMap("name", attributes, value));
    EXPECT_EQ(value, "nut");
    EXPECT_TRUE(getValueofKeywordFromStringStringMap("Empty", attributes, value));
    EXPECT_EQ(value, "");
}

TEST(StringHelpers, MapLookupOfAnAbsentKeyKeepsTheOutput) {
    const AttributesMap attributes{{"Name", "Bolt"}};
    std::string value = "before";
    EXPECT_FALSE(getValueofKeywordFromStringStringMap("NAME", attributes, value));
    EXPECT_EQ(value, "before");
    EXPECT_FALSE(getValueofKeywordFromStringStringMap("", attributes, value));
    EXPECT_EQ(value, "before");
    EXPECT_FALSE(getValueofKeywordFromStringStringMap("Name", AttributesMap{}, value));
    EXPECT_EQ(value, "before");
}

TEST(StringHelpers, KeysOfMapComeInByteOrder) {
    const AttributesMap attributes{{"b", "1"}, {"B", "2"}, {"a", "3"}, {"_x", "4"}};
    EXPECT_EQ(getKeysOfMap(attributes), (Strings{"B", "_x", "a", "b"}));
    EXPECT_TRUE(getKeysOfMap(AttributesMap{}).empty());
}

// ---------------------------------------------------------------------------
// Composing text

TEST(StringHelpers, AddsCurlyBrackets) {
    EXPECT_EQ(addEnclosingCurlyBracketsToString("abc"), "{abc}");
    EXPECT_EQ(addEnclosingCurlyBracketsToString(""), "{}");
    EXPECT_EQ(addEnclosingCurlyBracketsToString("{a}"), "{{a}}");
}

TEST(StringHelpers, CurlyBracketsCutTheTextAtItsFirstNul) {
    const std::string text("ab\0cd", 5);
    EXPECT_EQ(addEnclosingCurlyBracketsToString(text.c_str()), "{ab}");
}

TEST(StringHelpers, CreatesStringInQuotesWithoutEscaping) {
    EXPECT_EQ(createStringInQuotes("abc"), "\"abc\"");
    EXPECT_EQ(createStringInQuotes(""), "\"\"");
    EXPECT_EQ(createStringInQuotes("say \"hi\""), "\"say \"hi\"\"");
    const std::string text("ab\0cd", 5);
    EXPECT_EQ(createStringInQuotes(text.c_str()), "\"ab\"");
}

TEST(StringHelpers, ListTextJoinsWithCommaAndNoBlank) {
    EXPECT_EQ(createCommaSeparatedListOfStrings({"a", "b", "c"}), "[a,b,c]");
    EXPECT_EQ(createCommaSeparatedListOfStrings({"only"}), "[only]");
    // List order, not sorted, and duplicates kept.
    EXPECT_EQ(createCommaSeparatedListOfStrings({"z", "a", "z"}), "[z,a,z]");
}

TEST(StringHelpers, ListTextOfAnEmptyListIsEmptyButOfOneEmptyStringIsBrackets) {
    EXPECT_EQ(createCommaSeparatedListOfStrings({}), "");
    EXPECT_EQ(createCommaSeparatedListOfStrings({""}), "[]");
    EXPECT_EQ(createCommaSeparatedListOfStrings({"", ""}), "[,]");
}

TEST(StringHelpers, ListTextEscapesNothing) {
    EXPECT_EQ(createCommaSeparatedListOfStrings({"a,b", "\"q\"", "[x]"}), "[a,b,\"q\",[x]]");
}

TEST(StringHelpers, ListTextKeepsBytesBehindANul) {
    // Only the bracket, quote and map helpers cut at a NUL; list elements stand whole.
    const std::string element("a\0b", 3);
    EXPECT_EQ(createCommaSeparatedListOfStrings({element}), std::string("[a\0b]", 5));
}

TEST(StringHelpers, SetTextFollowsSetOrder) {
    EXPECT_EQ(createCommaSeparatedSetOfStrings(StringSet{"b", "a", "C"}), "[C,a,b]");
    EXPECT_EQ(createCommaSeparatedSetOfStrings(StringSet{}), "");
    EXPECT_EQ(createCommaSeparatedSetOfStrings(StringSet{""}), "[]");
}

TEST(StringHelpers, MapTextJoinsPairsWithCommaAndBlank) {
    const std::map<std::string, std::string> map{{"b", "2"}, {"a", "1"}};
    EXPECT_EQ(createCommaSeparatedStringStringMap(map), "{a:1, b:2}");
    EXPECT_EQ(createCommaSeparatedStringStringMap({{"k", "v"}}), "{k:v}");
    EXPECT_EQ(createCommaSeparatedStringStringMap({}), "{}");
}

TEST(StringHelpers, MapTextEscapesNothingAndKeepsEmptyPieces) {
    const std::map<std::string, std::string> map{{"", ""}, {"a:b", "\"x, y\""}};
    EXPECT_EQ(createCommaSeparatedStringStringMap(map), "{:, a:b:\"x, y\"}");
}

TEST(StringHelpers, MapTextCutsKeysAndValuesAtTheirFirstNul) {
    const std::map<std::string, std::string> map{{std::string("k\0ey", 4), "v"},
                                                 {"z", std::string("va\0lue", 6)}};
    EXPECT_EQ(createCommaSeparatedStringStringMap(map), "{k:v, z:va}");
}

// ---------------------------------------------------------------------------
// Stripping enclosing characters

TEST(StringHelpers, RemovesCurlyBracketsAtEachEndIndependently) {
    EXPECT_EQ(removeEnclosingCurlyBracketsFromString("{abc}"), "abc");
    EXPECT_EQ(removeEnclosingCurlyBracketsFromString("{abc"), "abc");
    EXPECT_EQ(removeEnclosingCurlyBracketsFromString("abc}"), "abc");
    EXPECT_EQ(removeEnclosingCurlyBracketsFromString("x{a}"), "x{a");
    EXPECT_EQ(removeEnclosingCurlyBracketsFromString("{{a}}"), "{a}");
    EXPECT_EQ(removeEnclosingCurlyBracketsFromString("abc"), "abc");
    EXPECT_EQ(removeEnclosingCurlyBracketsFromString("{}"), "");
}

TEST(StringHelpers, TextsShorterThanTwoCharactersStayAsTheyAre) {
    EXPECT_EQ(removeEnclosingCurlyBracketsFromString("{"), "{");
    EXPECT_EQ(removeEnclosingCurlyBracketsFromString("}"), "}");
    EXPECT_EQ(removeEnclosingCurlyBracketsFromString(""), "");
    EXPECT_EQ(removeEnclosingSquareBracketsFromString("["), "[");
    EXPECT_EQ(removeEnclosingQuotesFromString("\""), "\"");
}

TEST(StringHelpers, RemovesSquareBrackets) {
    EXPECT_EQ(removeEnclosingSquareBracketsFromString("[a,b]"), "a,b");
    EXPECT_EQ(removeEnclosingSquareBracketsFromString("[a"), "a");
    EXPECT_EQ(removeEnclosingSquareBracketsFromString("a]"), "a");
    EXPECT_EQ(removeEnclosingSquareBracketsFromString("[]"), "");
    EXPECT_EQ(removeEnclosingSquareBracketsFromString("{a}"), "{a}");
}

TEST(StringHelpers, RemovesQuotes) {
    EXPECT_EQ(removeEnclosingQuotesFromString("\"abc\""), "abc");
    EXPECT_EQ(removeEnclosingQuotesFromString("\"\""), "");
    EXPECT_EQ(removeEnclosingQuotesFromString("\"\"\""), "\"");
    EXPECT_EQ(removeEnclosingQuotesFromString("\"abc"), "abc");
    EXPECT_EQ(removeEnclosingQuotesFromString("'abc'"), "'abc'");
    EXPECT_EQ(removeEnclosingQuotesFromString(" \"abc\""), " \"abc");
}

TEST(StringHelpers, RemovesAnyPairOfEnclosingCharacters) {
    EXPECT_EQ(removeEnclosingCharacters("<a>", '<', '>'), "a");
    EXPECT_EQ(removeEnclosingCharacters("<a", '<', '>'), "a");
    EXPECT_EQ(removeEnclosingCharacters("a>", '<', '>'), "a");
    EXPECT_EQ(removeEnclosingCharacters("<", '<', '>'), "<");
    EXPECT_EQ(removeEnclosingCharacters("<>", '<', '>'), "");
    EXPECT_EQ(removeEnclosingCharacters("><", '<', '>'), "><");
}

// ---------------------------------------------------------------------------
// Reading lists

TEST(StringHelpers, ListReadingKeepsBlanks) {
    Strings list;
    EXPECT_TRUE(createVectorFromCommaSeparatedListOfStrings("[a, b]", list));
    EXPECT_EQ(list, (Strings{"a", " b"}));
}

TEST(StringHelpers, ListReadingOfEmptyBracketsGivesOneEmptyString) {
    Strings list;
    EXPECT_TRUE(createVectorFromCommaSeparatedListOfStrings("[]", list));
    EXPECT_EQ(list, (Strings{""}));
}

TEST(StringHelpers, ListReadingWithoutClosingBracketLosesTheLastElement) {
    Strings list;
    EXPECT_TRUE(createVectorFromCommaSeparatedListOfStrings("a,b", list));
    EXPECT_EQ(list, (Strings{"a"}));

    Strings open;
    EXPECT_TRUE(createVectorFromCommaSeparatedListOfStrings("[a,b,c", open));
    EXPECT_EQ(open, (Strings{"a", "b"}));
}

TEST(StringHelpers, ListReadingOfTextWithoutStructureGivesNothing) {
    Strings list;
    EXPECT_FALSE(createVectorFromCommaSeparatedListOfStrings("abc", list));
    EXPECT_TRUE(list.empty());
    EXPECT_FALSE(createVectorFromCommaSeparatedListOfStrings("", list));
    EXPECT_TRUE(list.empty());
    EXPECT_FALSE(createVectorFromCommaSeparatedListOfStrings("[abc", list));
    EXPECT_TRUE(list.empty());
}

TEST(StringHelpers, ListReadingSplitsAtACommaInsideQuotes) {
    Strings list;
    EXPECT_TRUE(createVectorFromCommaSeparatedListOfStrings("[a,\"b,c\"]", list));
    // Each half loses the one quote it holds at its end.
    EXPECT_EQ(list, (Strings{"a", "b", "c"}));
}

TEST(StringHelpers, ListReadingStripsQuotesAtTokenEndsOnly) {
    Strings list;
    EXPECT_TRUE(
        createVectorFromCommaSeparatedListOfStrings("[\"a\",\"\", \"b\",x\"y\"z,\"]", list));
    EXPECT_EQ(list, (Strings{"a", "", " \"b", "x\"y\"z", "\""}));
}

TEST(StringHelpers, ListReadingDropsOpeningBracketsEverywhere) {
    Strings list;
    EXPECT_TRUE(createVectorFromCommaSeparatedListOfStrings("[a[b,[[c],d]", list));
    EXPECT_EQ(list, (Strings{"ab", "c"}));
}

TEST(StringHelpers, ListReadingKeepsEmptyElementsAndIgnoresWhatFollowsTheBracket) {
    Strings list;
    EXPECT_TRUE(createVectorFromCommaSeparatedListOfStrings("[a,,b]tail,more]", list));
    EXPECT_EQ(list, (Strings{"a", "", "b"}));
}

TEST(StringHelpers, ListReadingAppendsAndCountsWhatTheListHeldBefore) {
    Strings list{"z"};
    EXPECT_TRUE(createVectorFromCommaSeparatedListOfStrings("[a,b]", list));
    EXPECT_EQ(list, (Strings{"z", "a", "b"}));
    // Nothing is read, but the list is not empty, so the result is true.
    EXPECT_TRUE(createVectorFromCommaSeparatedListOfStrings("abc", list));
    EXPECT_EQ(list, (Strings{"z", "a", "b"}));
}

TEST(StringHelpers, ListTextLosesElementsThatHoldACommaOnTheWayBack) {
    const Strings original{"a,b", "c"};
    Strings readBack;
    EXPECT_TRUE(createVectorFromCommaSeparatedListOfStrings(
        createCommaSeparatedListOfStrings(original), readBack));
    EXPECT_EQ(readBack, (Strings{"a", "b", "c"}));
}

TEST(StringHelpers, SetReadingCollapsesDuplicates) {
    StringSet set;
    EXPECT_TRUE(createSetFromCommaSeparatedListOfStrings("[b,a,b,A]", set));
    EXPECT_EQ(set, (StringSet{"A", "a", "b"}));
}

TEST(StringHelpers, SetReadingInsertsIntoWhatTheSetHeld) {
    StringSet set{"x"};
    EXPECT_TRUE(createSetFromCommaSeparatedListOfStrings("[x,y]", set));
    EXPECT_EQ(set, (StringSet{"x", "y"}));
}

TEST(StringHelpers, SetReadingJudgesOnlyTheTextNotWhatTheSetHeld) {
    // Unlike list reading, the elements are gathered in a fresh list first.
    StringSet set{"x"};
    EXPECT_FALSE(createSetFromCommaSeparatedListOfStrings("abc", set));
    EXPECT_EQ(set, (StringSet{"x"}));
    EXPECT_FALSE(createSetFromCommaSeparatedListOfStrings("", set));
    EXPECT_EQ(set, (StringSet{"x"}));
}

TEST(StringHelpers, SetReadingOfEmptyBracketsGivesTheEmptyString) {
    StringSet set;
    EXPECT_TRUE(createSetFromCommaSeparatedListOfStrings("[]", set));
    EXPECT_EQ(set, (StringSet{""}));
}

TEST(StringHelpers, SetReadingWithoutClosingBracketLosesTheLastElement) {
    StringSet set;
    EXPECT_TRUE(createSetFromCommaSeparatedListOfStrings("[a,b", set));
    EXPECT_EQ(set, (StringSet{"a"}));
}

// ---------------------------------------------------------------------------
// Reading maps

TEST(StringHelpers, MapReadingOfEmptyBracesFailsAndOfEmptyTextSucceeds) {
    AttributesMap map;
    EXPECT_FALSE(createStringStringMapFromCommaSeparatedString("{}", map));
    EXPECT_TRUE(map.empty());
    EXPECT_TRUE(createStringStringMapFromCommaSeparatedString("", map));
    EXPECT_TRUE(map.empty());
}

TEST(StringHelpers, MapReadingGivesEveryPair) {
    AttributesMap map;
    EXPECT_TRUE(createStringStringMapFromCommaSeparatedString("{a:1, b:2}", map));
    EXPECT_EQ(map, (AttributesMap{{"a", "1"}, {"b", "2"}}));
}

TEST(StringHelpers, MapReadingWithoutClosingBraceLosesTheLastPair) {
    AttributesMap map;
    EXPECT_TRUE(createStringStringMapFromCommaSeparatedString("{a:1, b:2", map));
    EXPECT_EQ(map, (AttributesMap{{"a", "1"}}));
}

TEST(StringHelpers, MapReadingJoinsACommaToAnEmptyValue) {
    AttributesMap map;
    EXPECT_TRUE(createStringStringMapFromCommaSeparatedString("{a:,b:c}", map));
    EXPECT_EQ(map, (AttributesMap{{"a", ",bc"}}));
}

TEST(StringHelpers, MapReadingDropsEveryColon) {
    AttributesMap map;
    EXPECT_TRUE(createStringStringMapFromCommaSeparatedString("{time:12:30:00}", map));
    EXPECT_EQ(map, (AttributesMap{{"time", "123000"}}));
}

TEST(StringHelpers, MapReadingSkipsLeadingWhiteSpaceOnly) {
    AttributesMap map;
    EXPECT_TRUE(createStringStringMapFromCommaSeparatedString("{ \ta b : x y ,\n c:d}", map));
    EXPECT_EQ(map, (AttributesMap{{"a b ", "x y "}, {"c", "d"}}));
}

TEST(StringHelpers, MapReadingStripsQuotesFromKeyAndValue) {
    AttributesMap map;
    EXPECT_TRUE(createStringStringMapFromCommaSeparatedString("{\"a\":\"1\", \"b\":2}", map));
    EXPECT_EQ(map, (AttributesMap{{"a", "1"}, {"b", "2"}}));
}

TEST(StringHelpers, MapReadingFailsOnAValueThatIsOnlyQuotes) {
    AttributesMap map;
    EXPECT_FALSE(createStringStringMapFromCommaSeparatedString("{a:\"\"}", map));
    EXPECT_TRUE(map.empty());
}

TEST(StringHelpers, MapReadingReplacesAnEarlierValueOfTheSameKey) {
    AttributesMap map{{"a", "old"}, {"z", "kept"}};
    EXPECT_TRUE(createStringStringMapFromCommaSeparatedString("{a:1, a:2}", map));
    EXPECT_EQ(map, (AttributesMap{{"a", "2"}, {"z", "kept"}}));
}

TEST(StringHelpers, MapReadingStopsAtTheFirstFailedPairAndKeepsWhatItAdded) {
    AttributesMap map;
    EXPECT_FALSE(createStringStringMapFromCommaSeparatedString("{a:1, :2, b:3}", map));
    EXPECT_EQ(map, (AttributesMap{{"a", "1"}}));
}

TEST(StringHelpers, MapReadingOfAnEmptyValueFailsAndLeavesTheMap) {
    AttributesMap map{{"x", "y"}};
    EXPECT_FALSE(createStringStringMapFromCommaSeparatedString("{a:}", map));
    EXPECT_EQ(map, (AttributesMap{{"x", "y"}}));
}

TEST(StringHelpers, MapReadingIgnoresWhatFollowsTheClosingBrace) {
    AttributesMap map;
    EXPECT_TRUE(createStringStringMapFromCommaSeparatedString("{a:1}, b:2}", map));
    EXPECT_EQ(map, (AttributesMap{{"a", "1"}}));
}

TEST(StringHelpers, MapReadingWithoutBracesCommitsOnlyAtCommas) {
    AttributesMap map;
    EXPECT_TRUE(createStringStringMapFromCommaSeparatedString("abc", map));
    EXPECT_TRUE(map.empty());
    EXPECT_TRUE(createStringStringMapFromCommaSeparatedString("a:1,b:2", map));
    EXPECT_EQ(map, (AttributesMap{{"a", "1"}}));
}

TEST(StringHelpers, MapTextReadsBackWhenNothingNeedsEscaping) {
    const AttributesMap original{{"a", "1"}, {"b", "two words"}};
    AttributesMap readBack;
    EXPECT_TRUE(createStringStringMapFromCommaSeparatedString(
        createCommaSeparatedStringStringMap(original), readBack));
    EXPECT_EQ(readBack, original);
}

// ---------------------------------------------------------------------------
// Sentences and paths

TEST(StringHelpers, FirstSentenceGetsNoFullStop) {
    std::string text;
    finishPreviousSentenceAndAppendAnother(text, "X");
    EXPECT_EQ(text, "X");
}

TEST(StringHelpers, PreviousSentenceIsClosedWithAFullStop) {
    std::string text = "First";
    finishPreviousSentenceAndAppendAnother(text, "Second");
    EXPECT_EQ(text, "First. Second");
    finishPreviousSentenceAndAppendAnother(text, "Third.");
    EXPECT_EQ(text, "First. Second. Third.");
    finishPreviousSentenceAndAppendAnother(text, "Fourth");
    EXPECT_EQ(text, "First. Second. Third. Fourth");
}

TEST(StringHelpers, OnlyAFinalFullStopCountsAsClosed) {
    std::string exclaimed = "Stop!";
    finishPreviousSentenceAndAppendAnother(exclaimed, "Go");
    EXPECT_EQ(exclaimed, "Stop!. Go");

    std::string blank = "Done. ";
    finishPreviousSentenceAndAppendAnother(blank, "Next");
    EXPECT_EQ(blank, "Done. . Next");

    std::string empty = "Text";
    finishPreviousSentenceAndAppendAnother(empty, "");
    EXPECT_EQ(empty, "Text. ");
}

TEST(StringHelpers, PathEndingInBackSlashGetsNone) {
    std::string path = "C:\\logs\\";
    appendSlashOrBackSlashIfNecessary(path);
    EXPECT_EQ(path, "C:\\logs\\");
}

TEST(StringHelpers, PathEndingInALetterGetsABackSlash) {
    std::string path = "C:\\logs";
    appendSlashOrBackSlashIfNecessary(path);
    EXPECT_EQ(path, "C:\\logs\\");
}

TEST(StringHelpers, PathEndingInAForwardSlashStillGetsABackSlash) {
    std::string path = "/var/log/";
    appendSlashOrBackSlashIfNecessary(path);
    EXPECT_EQ(path, "/var/log/\\");
}

}  // namespace
