package org.tov;

import static org.junit.jupiter.api.Assertions.assertEquals;

import java.util.List;
import java.util.Set;
import java.util.TreeSet;
import java.util.stream.Collectors;
import org.junit.jupiter.api.AfterAll;
import org.junit.jupiter.api.BeforeAll;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.params.ParameterizedTest;
import org.junit.jupiter.params.provider.MethodSource;

/** Every request of the example scenario gives the answer that tov eval prints. */
class ScenarioTest {
    private static Engine engine;

    @BeforeAll
    static void load() {
        engine = Examples.loadedEngine();
    }

    @AfterAll
    static void free() {
        engine.close();
    }

    static List<Examples.Step> steps() {
        return Examples.steps();
    }

    @Test
    void theScenarioHasEveryKind() {
        Set<String> kinds = steps().stream().map(step -> step.kind)
                .collect(Collectors.toCollection(TreeSet::new));
        assertEquals(Set.of("edit", "edit-before-resolution", "save", "save-before-resolution",
                "link", "options"), kinds);
        assertEquals(25, steps().size());
    }

    @ParameterizedTest
    @MethodSource("steps")
    void eachRequestAsAFile(Examples.Step step) {
        assertEquals(step.expected(), engine.evaluateFile(step.kind, step.request()).raw());
    }

    @ParameterizedTest
    @MethodSource("steps")
    void eachRequestAsText(Examples.Step step) {
        Answer answer = engine.evaluate(step.kind, step.requestText());
        assertEquals(step.expected(), answer.raw());
        assertEquals(Answer.parse(step.expected()).keywords(), answer.keywords());
    }
}
