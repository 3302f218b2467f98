package org.tov;

import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertThrows;

import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;
import java.util.stream.Stream;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.params.ParameterizedTest;
import org.junit.jupiter.params.provider.Arguments;
import org.junit.jupiter.params.provider.MethodSource;

/**
 * The readers of the list and map texts, on the same texts as the Python
 * package's tests (tests/python/test_texts.py), with the same results.
 */
class TextsTest {
    static Stream<Arguments> lists() {
        return Stream.of(
                Arguments.of("", List.of()),
                Arguments.of("[]", List.of()),
                Arguments.of("[", List.of()),
                Arguments.of("]", List.of()),
                Arguments.of("[Revision]", List.of("Revision")),
                Arguments.of("[Iteration,Overwrite]", List.of("Iteration", "Overwrite")),
                Arguments.of("[In Work,In Review,Released]",
                        List.of("In Work", "In Review", "Released")),
                Arguments.of("[a,,b]", List.of("a", "", "b")),
                Arguments.of("[,]", List.of("", "")),
                Arguments.of("[a,]", List.of("a", "")),
                Arguments.of("[]]", List.of("]")),
                Arguments.of("[[a]]", List.of("[a]")),
                Arguments.of("a,b", List.of("a", "b")),
                Arguments.of(" [a] ", List.of(" [a] ")),
                Arguments.of("[a, b]", List.of("a", " b")));
    }

    @ParameterizedTest
    @MethodSource("lists")
    void readsLists(String text, List<String> names) {
        assertEquals(names, Texts.parseList(text));
    }

    static Stream<Arguments> maps() {
        return Stream.of(
                Arguments.of("", pairs()),
                Arguments.of("{}", pairs()),
                Arguments.of("{", pairs()),
                Arguments.of("}", pairs()),
                Arguments.of("{ReleaseDate:Reset}", pairs("ReleaseDate", "Reset")),
                Arguments.of("{Iteration:Next, ReleaseDate:Reset}",
                        pairs("Iteration", "Next", "ReleaseDate", "Reset")),
                Arguments.of("{ReleaseDate:}", pairs("ReleaseDate", "")),
                Arguments.of("{Note:10:30}", pairs("Note", "10:30")),
                Arguments.of("{Note:one, two, Owner:me}", pairs("Note", "one, two", "Owner", "me")),
                Arguments.of("{[Iteration,Revision]:Next}", pairs("[Iteration,Revision]", "Next")),
                Arguments.of("{plain}", pairs("plain", "")),
                Arguments.of("{plain, more}", pairs("plain", ", more")),
                Arguments.of("{a:1, a:2}", pairs("a", "2")),
                Arguments.of("{a:1, b:2, a:3, tail}", pairs("a", "3, tail", "b", "2")),
                Arguments.of("{:x}", pairs("", "x")),
                Arguments.of("{a:1, , b:2}", pairs("a", "1, ", "b", "2")),
                Arguments.of("{a:1,b:2}", pairs("a", "1,b:2")),
                Arguments.of("a:1", pairs("a", "1")),
                Arguments.of("{{a:1}}", pairs("{a", "1}")),
                Arguments.of("{a:1, }", pairs("a", "1, ")));
    }

    @ParameterizedTest
    @MethodSource("maps")
    void readsMaps(String text, Map<String, String> expected) {
        Map<String, String> read = Texts.parseMap(text);
        assertEquals(expected, read);
        // The order of the pairs is kept too, first place of a repeated name included.
        assertEquals(List.copyOf(expected.keySet()), List.copyOf(read.keySet()));
    }

    @Test
    void whatTheyGiveCannotBeChanged() {
        assertThrows(UnsupportedOperationException.class,
                () -> Texts.parseList("[a]").add("b"));
        assertThrows(UnsupportedOperationException.class,
                () -> Texts.parseMap("{a:1}").put("b", "2"));
        assertThrows(UnsupportedOperationException.class,
                () -> Texts.parseMap("").put("b", "2"));
    }

    private static Map<String, String> pairs(String... namesAndValues) {
        Map<String, String> pairs = new LinkedHashMap<>();
        for (int i = 0; i < namesAndValues.length; i += 2) {
            pairs.put(namesAndValues[i], namesAndValues[i + 1]);
        }
        return pairs;
    }
}
