package org.tov;

import static org.junit.jupiter.api.Assertions.assertEquals;

import java.io.IOException;
import java.io.UncheckedIOException;
import java.nio.charset.StandardCharsets;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.List;

/**
 * The example scenario, as ctest hands it over: the folder in the system
 * property tov.examples, and the steps in tov.scenario as "kind/name" pairs
 * joined by commas (CMake has read them from scenario.json).
 */
final class Examples {
    static final Path FOLDER = Path.of(property("tov.examples"));
    static final Path RULES = FOLDER.resolve("rules.json");
    static final Path DATAMODEL = FOLDER.resolve("datamodel.json");

    static final String RULES_LOADED =
            "{\"Result\":\"Success\",\"ResultComment\":\"Successfully initialized TOV rules\"}";
    static final String DATAMODEL_LOADED =
            "{\"Result\":\"Success\",\"ResultComment\":\"Succesfully initialized DM info\"}";

    private Examples() {}

    /** One request of the scenario. */
    static final class Step {
        final String kind;
        final String name;

        Step(String kind, String name) {
            this.kind = kind;
            this.name = name;
        }

        Path request() {
            return FOLDER.resolve("requests").resolve(name + ".json");
        }

        String requestText() {
            return read(request());
        }

        /** What tov eval prints for the step, without its line end. */
        String expected() {
            String printed = read(FOLDER.resolve("expected").resolve(name + ".out"));
            return printed.endsWith("\n") ? printed.substring(0, printed.length() - 1) : printed;
        }

        @Override
        public String toString() {
            return name;
        }
    }

    static List<Step> steps() {
        List<Step> steps = new ArrayList<>();
        for (String pair : property("tov.scenario").split(",")) {
            int slash = pair.indexOf('/');
            steps.add(new Step(pair.substring(0, slash), pair.substring(slash + 1)));
        }
        return steps;
    }

    static Step step(String name) {
        return steps().stream().filter(step -> step.name.equals(name)).findFirst().orElseThrow();
    }

    /** A new engine with the example documents loaded. */
    static Engine loadedEngine() {
        Engine engine = new Engine();
        assertEquals(DATAMODEL_LOADED, engine.loadDatamodelFile(DATAMODEL).raw());
        assertEquals(RULES_LOADED, engine.loadRulesFile(RULES).raw());
        return engine;
    }

    static String read(Path path) {
        try {
            return Files.readString(path, StandardCharsets.UTF_8);
        } catch (IOException error) {
            throw new UncheckedIOException(error);
        }
    }

    private static String property(String name) {
        String value = System.getProperty(name);
        if (value == null) {
            throw new IllegalStateException("the system property " + name + " is not set");
        }
        return value;
    }
}
