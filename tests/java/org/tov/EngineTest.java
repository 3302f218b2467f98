package org.tov;

import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertFalse;
import static org.junit.jupiter.api.Assertions.assertNotEquals;
import static org.junit.jupiter.api.Assertions.assertThrows;
import static org.junit.jupiter.api.Assertions.assertTrue;

import java.io.IOException;
import java.io.UncheckedIOException;
import java.lang.reflect.Proxy;
import java.nio.charset.StandardCharsets;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.List;
import java.util.Map;
import java.util.jar.JarFile;
import java.util.stream.Collectors;
import java.util.stream.Stream;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.api.function.Executable;
import org.junit.jupiter.api.io.TempDir;

/** The Engine class: loading, evaluating, its misuse, where it logs, and its end. */
class EngineTest {
    static final String RELEASE = "{\"objectType\": \"Part\", \"initialAttributes\": "
            + "{\"Number\": \"P-1\", \"Status\": \"In Review\"}, "
            + "\"targetAttributes\": {\"Status\": \"Released\"}}";
    static final String UNINITIALIZED =
            "{\"Result\":\"Failure\",\"ResultComment\":\"Uninitialized TOV rules\"}";
    static final String KINDS = "expected rules, datamodel, edit, edit-before-resolution, save, "
            + "save-before-resolution, link or options";
    static final String PARSING_ERROR =
            "{\"Result\":\"Failure\",\"ResultComment\":\"Json has fundamental parsing error\"}";

    @TempDir
    Path temporary;

    @Test
    void versionIsTheLibrarys() {
        assertEquals("1.1", Tov.version());
    }

    @Test
    void theJarsVersionIsTheLibrarys() throws Exception {
        // Read from the jar itself: the tests share the package, so the
        // package's own version may come from their jar.
        Path jar = Path.of(Engine.class.getProtectionDomain().getCodeSource().getLocation().toURI());
        try (JarFile file = new JarFile(jar.toFile())) {
            String version = file.getManifest().getMainAttributes().getValue("Implementation-Version");
            assertTrue(version.startsWith(Tov.version() + "."), version);
        }
    }

    @Test
    void aNewEngineHasNothingLoaded() {
        try (Engine engine = new Engine()) {
            Answer answer = engine.evaluate("edit", RELEASE);
            assertEquals(UNINITIALIZED, answer.raw());
            assertFalse(answer.succeeded());
            assertEquals("Uninitialized TOV rules", answer.comment());
        }
    }

    @Test
    void documentsLoadFromText() {
        try (Engine engine = new Engine()) {
            assertEquals(Examples.DATAMODEL_LOADED,
                    engine.loadDatamodel(Examples.read(Examples.DATAMODEL)).raw());
            assertEquals(Examples.RULES_LOADED, engine.loadRules("{\"transitions\": {\"Part\": "
                    + "[{\"attribute\": \"Status\", \"fromValue\": \"In Review\", "
                    + "\"toValue\": [\"In Work\"]}]}}").raw());
            assertEquals("Transition violation detected: For Part: Status can transition from "
                    + "\"In Review\" to \"In Work\"", engine.evaluate("edit", RELEASE).comment());
        }
    }

    @Test
    void aFailedLoadLeavesNoRules() {
        try (Engine engine = Examples.loadedEngine()) {
            assertNotEquals(UNINITIALIZED, engine.evaluate("edit", RELEASE).raw());
            assertEquals("{\"Result\":\"Failure\",\"ResultComment\":\"Insufficient input data\"}",
                    engine.loadRules("").raw());
            assertEquals(UNINITIALIZED, engine.evaluate("edit", RELEASE).raw());
        }
    }

    @Test
    void anUnknownKindGetsTheLibrarysFailureAnswer() {
        try (Engine engine = Examples.loadedEngine()) {
            assertEquals("{\"Result\":\"Failure\",\"ResultComment\":\"Unknown request kind "
                    + "\\\"Edit\\\": " + KINDS + "\"}", engine.evaluate("Edit", RELEASE).raw());
            assertEquals("{\"Result\":\"Failure\",\"ResultComment\":\"Unknown request kind "
                    + "\\\"\\\": " + KINDS + "\"}", engine.evaluateFile("",
                    Examples.steps().get(0).request()).raw());
        }
    }

    @Test
    void anUnreadableFileGetsTheLibrarysAnswer() {
        try (Engine engine = new Engine()) {
            assertEquals(PARSING_ERROR,
                    engine.loadRulesFile(temporary.resolve("missing.json")).raw());
            assertEquals(PARSING_ERROR, engine.loadDatamodelFile(temporary).raw());
        }
    }

    @Test
    void textThatIsNoJsonObjectGetsTheLibrarysAnswer() {
        try (Engine engine = Examples.loadedEngine()) {
            assertEquals(PARSING_ERROR, engine.evaluate("options", "[1, 2]").raw());
            assertEquals(PARSING_ERROR, engine.evaluate("link", "{\"ancestor\": ").raw());
        }
    }

    @Test
    void nullArgumentsAreRefusedByName() {
        try (Engine engine = new Engine()) {
            Path file = Examples.RULES;
            expectNull("kind must not be null", () -> engine.evaluate(null, RELEASE));
            expectNull("requestJson must not be null", () -> engine.evaluate("edit", null));
            expectNull("kind must not be null", () -> engine.evaluateFile(null, file));
            expectNull("path must not be null", () -> engine.evaluateFile("edit", null));
            expectNull("json must not be null", () -> engine.loadRules(null));
            expectNull("json must not be null", () -> engine.loadDatamodel(null));
            expectNull("path must not be null", () -> engine.loadRulesFile(null));
            expectNull("path must not be null", () -> engine.loadDatamodelFile(null));
        }
        expectNull("log must not be null", () -> new Engine(null));
    }

    @Test
    void aNulCharacterCannotCross() {
        try (Engine engine = new Engine()) {
            expectIllegal("the JSON text holds a NUL character, which cannot cross the C "
                    + "interface", () -> engine.evaluate("edit", "{\"objectType\": \"Pa\0rt\"}"));
            expectIllegal("the kind holds a NUL character, which cannot cross the C interface",
                    () -> engine.evaluate("ed\0it", RELEASE));
            expectIllegal("the path holds a NUL character, which cannot cross the C interface",
                    () -> engine.loadRulesFile(pathNamed("rules\0.json")));
        }
        expectIllegal("the log setting holds a NUL character, which cannot cross the C "
                + "interface", () -> new Engine("off\0"));
    }

    @Test
    void anUnpairedSurrogateHasNoUtf8Form() {
        try (Engine engine = new Engine()) {
            expectIllegal("the JSON text holds an unpaired surrogate, which has no UTF-8 form",
                    () -> engine.evaluate("edit", "{\"objectType\": \"\ud83d\"}"));
            expectIllegal("the kind holds an unpaired surrogate, which has no UTF-8 form",
                    () -> engine.evaluate("\ude00", RELEASE));
        }
    }

    @Test
    void textsBeyondAsciiCrossBothWaysAsUtf8() throws IOException {
        // Two-, three- and four-byte UTF-8: the last is where JNI's modified
        // UTF-8 would differ.
        String rules = "{\"transitions\": {\"Pi\u00e8ce\": [{\"attribute\": \"\u00c9tat\", "
                + "\"fromValue\": \"En cours \u270e\", \"toValue\": [\"En cours \u270e\", "
                + "\"Valid\u00e9 \ud83d\ude00\"]}]}}";
        String datamodel = "{\"OverwriteLabel\": \"\u00c9craser\", \"structureObjects\": [{"
                + "\"name\": \"Pi\u00e8ce\", \"dmObjectType\": \"DMITEM\", \"attributes\": ["
                + "{\"name\": \"Num\u00e9ro\", \"type\": \"REGULAR\", \"primary\": true}, "
                + "{\"name\": \"\u00c9tat\", \"type\": \"REGULAR\", \"primary\": false}, "
                + "{\"name\": \"R\u00e9vision\", \"type\": \"VERSIONING\", \"primary\": true}]}]}";
        String refused = "{\"objectType\": \"Pi\u00e8ce\", \"initialAttributes\": {\"Num\u00e9ro\":"
                + " \"P-1\", \"\u00c9tat\": \"En cours \u270e\"}, \"targetAttributes\": "
                + "{\"\u00c9tat\": \"Publi\u00e9 \ud83d\ude80\"}}";
        String options = refused.replace("Publi\u00e9 \ud83d\ude80", "Valid\u00e9 \ud83d\ude00");
        try (Engine engine = new Engine()) {
            assertTrue(engine.loadDatamodel(datamodel).succeeded());
            assertTrue(engine.loadRules(rules).succeeded());
            assertEquals("{\"Result\":\"Failure\",\"ResultComment\":\"Transition violation "
                    + "detected: For Pi\u00e8ce: \u00c9tat can transition from \\\"En cours "
                    + "\u270e\\\" to \\\"En cours \u270e\\\", \\\"Valid\u00e9 \ud83d\ude00\\\"\"}",
                    engine.evaluate("edit", refused).raw());
            Answer offered = engine.evaluate("options", options);
            assertEquals(List.of("R\u00e9vision", "\u00c9craser"),
                    offered.selectedVersioningAttributes());

            // And through a file whose name is beyond ASCII too.
            Path file = temporary.resolve("r\u00e8gles \ud83d\ude00.json");
            Files.writeString(file, rules, StandardCharsets.UTF_8);
            assertEquals(Examples.RULES_LOADED, engine.loadRulesFile(file).raw());
        }
    }

    @Test
    void answersOfEveryShapeFromTheScenario() {
        try (Engine engine = Examples.loadedEngine()) {
            assertEquals(List.of("Iteration", "Overwrite"),
                    answerOf(engine, "options-part-in-work-selection")
                            .selectedVersioningAttributes());
            assertEquals(List.of("Revision"), answerOf(engine,
                    "options-drawing-reopen-forced-spinup").selectedVersioningAttributes());
            assertEquals(List.of(), answerOf(engine,
                    "options-drawing-reopen-contradicting-resolutions")
                            .selectedVersioningAttributes());
            assertEquals(Map.of("ReleaseDate", "Reset"),
                    answerOf(engine, "edit-part-release-family-clean").triggerInitialization());
            assertEquals(Map.of("Iteration", "Next"), answerOf(engine,
                    "edit-part-material-abstract-trigger").triggerInitialization());
            assertEquals(Map.of(),
                    answerOf(engine, "edit-assembly-release-all-clean").triggerInitialization());
            assertEquals(List.of("membersOfFamily"),
                    answerOf(engine, "edit-part-release-first-pass").missingSections());
            assertEquals(List.of("membersOfFamily", "manualLinkAncestors"),
                    answerOf(engine, "edit-assembly-release-first-pass").missingSections());
            assertEquals(List.of(),
                    answerOf(engine, "edit-part-release-family-offending").missingSections());
            Answer approved = answerOf(engine, "edit-part-release-family-clean");
            assertTrue(approved.succeeded());
            assertEquals("Edit attempt approved", approved.comment());
            assertEquals(Map.of("Result", "Success", "ResultComment", "Edit attempt approved",
                    "TriggerInitialization", "{ReleaseDate:Reset}"), approved.keywords());
        }
    }

    @Test
    void enginesShareNothing() {
        try (Engine loaded = Examples.loadedEngine(); Engine other = new Engine()) {
            assertEquals(UNINITIALIZED, other.evaluate("edit", RELEASE).raw());
            assertNotEquals(UNINITIALIZED, loaded.evaluate("edit", RELEASE).raw());
        }
    }

    @Test
    void closingTwiceDoesNothingMore() {
        Engine engine = new Engine();
        Engine.NativeEngine freed = engine.nativeEngine();
        engine.close();
        assertTrue(freed.isFreed());
        engine.close();
        assertTrue(freed.isFreed());
    }

    @Test
    void aClosedEngineRefusesEveryCall() {
        Engine engine = Examples.loadedEngine();
        engine.close();
        Path file = Examples.RULES;
        for (Executable call : List.<Executable>of(
                () -> engine.evaluate("edit", RELEASE),
                () -> engine.evaluateFile("edit", file),
                () -> engine.loadRules("{}"),
                () -> engine.loadRulesFile(file),
                () -> engine.loadDatamodel("{}"),
                () -> engine.loadDatamodelFile(file))) {
            assertEquals("the engine is closed",
                    assertThrows(IllegalStateException.class, call).getMessage());
        }
    }

    @Test
    void anEngineLeftUnclosedIsFreedOnceUnreachable() throws InterruptedException {
        Engine.NativeEngine watched = unreachableEngine();
        for (int i = 0; i < 200 && !watched.isFreed(); ++i) {
            System.gc();
            Thread.sleep(20);
        }
        assertTrue(watched.isFreed());
    }

    @Test
    void logsToAFolderItCreates() throws IOException {
        Path folder = temporary.resolve("logs").resolve("today");
        try (Engine engine = new Engine(folder.toString())) {
            engine.evaluate("edit", RELEASE);
        }
        List<Path> files;
        try (Stream<Path> listed = Files.list(folder)) {
            files = listed.collect(Collectors.toList());
        }
        assertEquals(1, files.size());
        assertTrue(files.get(0).getFileName().toString().startsWith("\\TOV_Log_"));
        assertTrue(Files.readString(files.get(0), StandardCharsets.UTF_8).contains(
                "Evaluating Edit attempt result=\"" + UNINITIALIZED + "\""));
    }

    @Test
    void takesTheWordsOfTheLogSetting() {
        for (String word : List.of("", "off", "OFF", "Console")) {
            try (Engine engine = new Engine(word)) {
                assertFalse(engine.nativeEngine().isFreed());
            }
        }
    }

    @Test
    void aFileIsNoLogFolder() throws IOException {
        Path plain = Files.writeString(temporary.resolve("plain"), "not a folder");
        UncheckedIOException error =
                assertThrows(UncheckedIOException.class, () -> new Engine(plain.toString()));
        assertEquals("cannot log to folder " + plain, error.getCause().getMessage());
    }

    @Test
    void changesWhereItLogsAndKeepsTheOldPlaceWhenTheNewOneIsUnusable() throws IOException {
        Path folder = temporary.resolve("later");
        Path plain = Files.writeString(temporary.resolve("plain"), "not a folder");
        try (Engine engine = new Engine()) {
            engine.setLog(folder.toString());
            UncheckedIOException error =
                    assertThrows(UncheckedIOException.class, () -> engine.setLog(plain.toString()));
            assertEquals("cannot log to folder " + plain, error.getCause().getMessage());
            engine.evaluate("edit", RELEASE);
            engine.setLog("off");
            engine.evaluate("edit", RELEASE);
            expectNull("log must not be null", () -> engine.setLog(null));
        }
        List<Path> files;
        try (Stream<Path> listed = Files.list(folder)) {
            files = listed.collect(Collectors.toList());
        }
        assertEquals(1, files.size());
        String logged = Files.readString(files.get(0), StandardCharsets.UTF_8);
        assertEquals(1, logged.split("Evaluating Edit attempt result=", -1).length - 1);
    }

    @Test
    void aClosedEngineTakesNoLogSetting() {
        Engine engine = new Engine();
        engine.close();
        assertEquals("the engine is closed",
                assertThrows(IllegalStateException.class, () -> engine.setLog("off")).getMessage());
    }

    private static Engine.NativeEngine unreachableEngine() {
        return new Engine().nativeEngine();
    }

    private static Answer answerOf(Engine engine, String name) {
        Examples.Step step = Examples.step(name);
        return engine.evaluateFile(step.kind, step.request());
    }

    private static void expectNull(String message, Executable call) {
        assertEquals(message, assertThrows(NullPointerException.class, call).getMessage());
    }

    private static void expectIllegal(String message, Executable call) {
        assertEquals(message, assertThrows(IllegalArgumentException.class, call).getMessage());
    }

    /** A path of no file system that Java opens, whose name holds what Java's own would refuse. */
    private static Path pathNamed(String name) {
        return (Path) Proxy.newProxyInstance(Path.class.getClassLoader(),
                new Class<?>[] {Path.class}, (proxy, method, arguments) -> {
                    if (method.getName().equals("toString")) {
                        return name;
                    }
                    throw new UnsupportedOperationException(method.getName());
                });
    }
}
