package org.tov;

import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertFalse;
import static org.junit.jupiter.api.Assertions.assertNotEquals;
import static org.junit.jupiter.api.Assertions.assertThrows;
import static org.junit.jupiter.api.Assertions.assertTrue;

import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.params.ParameterizedTest;
import org.junit.jupiter.params.provider.ValueSource;

/** Answers read from their single-string form, and the accessors on answers of every shape. */
class AnswerTest {
    @Test
    void readsTheMembersInTheOrderWritten() {
        Answer answer = Answer.parse("{\"Result\":\"Success\",\"ResultComment\":\"Edit attempt "
                + "approved\",\"TriggerInitialization\":\"{ReleaseDate:Reset}\"}");
        assertEquals(List.of("Result", "ResultComment", "TriggerInitialization"),
                List.copyOf(answer.keywords().keySet()));
        assertEquals("{ReleaseDate:Reset}", answer.keywords().get("TriggerInitialization"));
        assertTrue(answer.succeeded());
        assertEquals("Edit attempt approved", answer.comment());
    }

    @Test
    void readsEveryEscape() {
        Answer answer = Answer.parse("{\"ResultComment\":\"say \\\"hi\\\" \\\\ a\\/b "
                + "\\b\\f\\n\\r\\t|\\u00e9\\u00C9\\u20ac|\\ud83d\\ude00|\\u0000\"}");
        assertEquals("say \"hi\" \\ a/b \b\f\n\r\t|\u00e9\u00c9\u20ac|\ud83d\ude00|\0",
                answer.comment());
        // An escaped surrogate pair is one character outside the Basic Multilingual Plane.
        assertEquals(1, answer.comment().codePoints().filter(c -> c == 0x1F600).count());
    }

    @Test
    void takesCharactersBeyondAsciiAsTheyStand() {
        Answer answer = Answer.parse("{\"Pr\u00fcfung\":\"fr\u00e9 \u2713 \ud83d\ude00\"}");
        assertEquals(Map.of("Pr\u00fcfung", "fr\u00e9 \u2713 \ud83d\ude00"), answer.keywords());
    }

    @Test
    void keepsAnUnpairedEscapedSurrogateAsPythonDoes() {
        assertEquals("a\ud800b", Answer.parse("{\"k\":\"a\\ud800b\"}").keywords().get("k"));
    }

    @Test
    void aRepeatedKeyKeepsItsFirstPlaceAndItsLastValue() {
        Answer answer = Answer.parse(
                "{\"Result\":\"Failure\",\"Note\":\"first\",\"Result\":\"Success\"}");
        Map<String, String> expected = new LinkedHashMap<>();
        expected.put("Result", "Success");
        expected.put("Note", "first");
        assertEquals(expected, answer.keywords());
        assertEquals(List.copyOf(expected.keySet()), List.copyOf(answer.keywords().keySet()));
        assertTrue(answer.succeeded());
    }

    @Test
    void allowsJsonWhiteSpaceBetweenTokens() {
        assertEquals(Map.of("a", "1", "b", " 2 "),
                Answer.parse(" \t\r\n{ \"a\" : \"1\" ,\n\"b\":\" 2 \" }\n").keywords());
    }

    @Test
    void anEmptyObjectIsAnAnswerWithNothingToTell() {
        Answer answer = Answer.parse("{}");
        assertEquals(Map.of(), answer.keywords());
        assertFalse(answer.succeeded());
        assertEquals("", answer.comment());
        assertEquals(List.of(), answer.missingSections());
        assertEquals(Map.of(), answer.triggerInitialization());
        assertEquals(List.of(), answer.selectedVersioningAttributes());
    }

    @ParameterizedTest
    @ValueSource(strings = {
        "", " ", "[]", "\"a\"", "{", "}", "{\"a\"}", "{\"a\":}", "{\"a\":1}", "{\"a\":null}",
        "{\"a\":true}", "{\"a\":{\"b\":\"c\"}}", "{\"a\":[\"b\"]}", "{\"a\":\"1\",}",
        "{,\"a\":\"1\"}", "{\"a\":\"1\"}x", "{\"a\":\"1\"}{}", "{\"a\":\"1\" \"b\":\"2\"}",
        "{a:\"1\"}", "{'a':'1'}", "{\"a\":\"1\"", "{\"a", "{\"a\":\"\\", "{\"a\":\"\\x\"}",
        "{\"a\":\"\\u12\"}", "{\"a\":\"\\u12G4\"}", "{\"a\":\"\\u\uff10\uff11\uff12\uff13\"}",
        "{\"a\":\"\\U0041\"}", "{\"a\":\"x\ny\"}", "{\"a\":\"x\ty\"}", "{\"a\u0000\":\"1\"}",
        "\u00a0{}"
    })
    void refusesEveryOtherShape(String text) {
        IllegalArgumentException error =
                assertThrows(IllegalArgumentException.class, () -> Answer.parse(text));
        assertTrue(error.getMessage().startsWith("not a flat JSON object of strings: "),
                error.getMessage());
    }

    @Test
    void tellsWhereAndWhatIsWrong() {
        assertEquals("not a flat JSON object of strings: expected '\"' at index 5",
                assertThrows(IllegalArgumentException.class,
                        () -> Answer.parse("{\"a\":1}")).getMessage());
        assertEquals("not a flat JSON object of strings: unknown escape \\x at index 7",
                assertThrows(IllegalArgumentException.class,
                        () -> Answer.parse("{\"a\":\"\\x\"}")).getMessage());
        assertEquals("not a flat JSON object of strings: text after the object at index 9",
                assertThrows(IllegalArgumentException.class,
                        () -> Answer.parse("{\"a\":\"1\"}x")).getMessage());
    }

    @Test
    void nullIsNoText() {
        assertEquals("raw must not be null",
                assertThrows(NullPointerException.class, () -> Answer.parse(null)).getMessage());
    }

    @Test
    void anApprovalWithTriggers() {
        Answer answer = Answer.parse("{\"Result\":\"Success\",\"ResultComment\":\"Edit attempt "
                + "approved\",\"TriggerInitialization\":\"{Iteration:Next, ReleaseDate:Reset}\"}");
        assertEquals(List.of(), answer.missingSections());
        Map<String, String> triggers = answer.triggerInitialization();
        assertEquals(Map.of("Iteration", "Next", "ReleaseDate", "Reset"), triggers);
        assertEquals(List.of("Iteration", "ReleaseDate"), List.copyOf(triggers.keySet()));
        assertEquals(List.of(), answer.selectedVersioningAttributes());
    }

    @Test
    void aRefusalThatAsksForBothSectionsNamesThemInTheOrderOfTheRequest() {
        Answer answer = Answer.parse("{\"ManualLinkAncestors\":\"MissingData\","
                + "\"ObjectFamilyMembers\":\"MissingData\",\"Result\":\"Failure\","
                + "\"ResultComment\":\"History Link violation detected.\"}");
        assertFalse(answer.succeeded());
        assertEquals(List.of("membersOfFamily", "manualLinkAncestors"), answer.missingSections());
        assertEquals(Map.of(), answer.triggerInitialization());
    }

    @Test
    void onlyMissingDataAsksAndOnlyARefusalAsks() {
        assertEquals(List.of("manualLinkAncestors"), Answer.parse("{\"ManualLinkAncestors\":"
                + "\"MissingData\",\"ObjectFamilyMembers\":\"Missing\",\"Result\":\"Failure\"}")
                .missingSections());
        assertEquals(List.of(), Answer.parse(
                "{\"ObjectFamilyMembers\":\"MissingData\",\"Result\":\"Success\"}")
                .missingSections());
        assertEquals(List.of("membersOfFamily"), Answer.parse(
                "{\"ObjectFamilyMembers\":\"MissingData\"}").missingSections());
        assertEquals(List.of(), Answer.parse(
                "{\"Result\":\"Failure\",\"ResultComment\":\"Transition violation detected\"}")
                .missingSections());
    }

    @Test
    void anOptionsAnswer() {
        Answer answer = Answer.parse("{\"Result\":\"Success\",\"ResultComment\":\"Found TOV rule "
                + "for specific versioning attribute selection\",\"SelectedVersioningAttribute\":"
                + "\"[Iteration,Overwrite]\"}");
        assertEquals(List.of("Iteration", "Overwrite"), answer.selectedVersioningAttributes());
        assertEquals(Map.of(), answer.triggerInitialization());
    }

    @Test
    void theVerdictIsExact() {
        assertFalse(Answer.parse("{\"Result\":\"success\"}").succeeded());
        assertFalse(Answer.parse("{\"Result\":\"Success \"}").succeeded());
        assertFalse(Answer.parse("{\"result\":\"Success\"}").succeeded());
    }

    @Test
    void answersAreValuesOfTheirText() {
        String text = "{\"Result\":\"Success\",\"ResultComment\":\"ok\"}";
        assertEquals(Answer.parse(text), Answer.parse(text));
        assertEquals(Answer.parse(text).hashCode(), Answer.parse(text).hashCode());
        assertEquals(text, Answer.parse(text).toString());
        assertEquals(text, Answer.parse(text).raw());
        // The same members written otherwise are another text.
        assertNotEquals(Answer.parse(text), Answer.parse("{\"Result\": \"Success\","
                + "\"ResultComment\":\"ok\"}"));
    }

    @Test
    void itsKeywordsCannotBeChanged() {
        Answer answer = Answer.parse("{\"Result\":\"Success\"}");
        assertThrows(UnsupportedOperationException.class,
                () -> answer.keywords().put("Result", "Failure"));
        assertThrows(UnsupportedOperationException.class,
                () -> answer.missingSections().add("x"));
    }
}
