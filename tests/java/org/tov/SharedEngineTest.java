package org.tov;

import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertNotEquals;
import static org.junit.jupiter.api.Assertions.assertTrue;

import java.util.ArrayList;
import java.util.Collections;
import java.util.List;
import java.util.concurrent.CountDownLatch;
import java.util.concurrent.ExecutorService;
import java.util.concurrent.Executors;
import java.util.concurrent.Future;
import java.util.concurrent.atomic.AtomicBoolean;
import java.util.concurrent.atomic.AtomicLong;
import org.junit.jupiter.api.Tag;
import org.junit.jupiter.api.Test;

/**
 * One engine shared by eight evaluating threads while a ninth swaps its
 * documents back and forth between two sets: every answer is that of one set
 * or the other, never of a half-loaded engine. Runs in a JVM of its own
 * (ctest's java_shared_engine), so that a crash cannot hide other tests.
 */
@Tag("shared-engine")
class SharedEngineTest {
    static final int EVALUATORS = 8;
    static final int RELOADS = 400;
    // Loads that evaluations starve would stretch the test without end; this
    // many in the time allowed is the least that proves the swaps.
    static final int LEAST_RELOADS = 50;
    static final long RELOAD_SECONDS = 30;

    /**
     * The second rules: releases refused by a transition, another trigger
     * value, another versioning attribute, another freeze.
     */
    static String otherRules() {
        String rules = Examples.read(Examples.RULES);
        String other = rules
                .replace("\"toValue\": [\"In Review\", \"In Work\", \"Released\"]",
                        "\"toValue\": [\"In Review\", \"In Work\"]")
                .replace("\"initializationValue\": \"Reset\"", "\"initializationValue\": \"Today\"")
                .replace("\"versioningOption\": [\"Iteration\"]", "\"versioningOption\": [\"Revision\"]")
                .replace("\"freezeConditionValue\": \"Released\"",
                        "\"freezeConditionValue\": \"In Review\"");
        // Every change took: the example still reads as it did when this was written.
        assertTrue(!other.contains("\"In Work\", \"Released\"]") && other.contains("Today")
                && !other.contains("[\"Iteration\"]") && !other.contains("\"Released\" }"));
        assertNotEquals(rules, other);
        return other;
    }

    /** The second data model: one more object type, which no request names. */
    static String otherDatamodel() {
        String datamodel = Examples.read(Examples.DATAMODEL);
        String other = datamodel.replace("\"structureObjects\": [", "\"structureObjects\": [{"
                + "\"name\": \"Fixture\", \"dmObjectType\": \"DMITEM\", \"attributes\": "
                + "[{\"name\": \"Number\", \"type\": \"REGULAR\", \"primary\": true}]},");
        assertNotEquals(datamodel, other);
        return other;
    }

    static List<String> answers(String rules, String datamodel, List<Examples.Step> steps,
            List<String> requests) {
        try (Engine engine = new Engine()) {
            assertTrue(engine.loadDatamodel(datamodel).succeeded());
            assertTrue(engine.loadRules(rules).succeeded());
            List<String> answers = new ArrayList<>();
            for (int i = 0; i < steps.size(); ++i) {
                answers.add(engine.evaluate(steps.get(i).kind, requests.get(i)).raw());
            }
            return answers;
        }
    }

    @Test
    void eightEvaluatorsAndAReloaderOnOneEngine() throws Exception {
        List<Examples.Step> steps = Examples.steps();
        List<String> requests = new ArrayList<>();
        for (Examples.Step step : steps) {
            requests.add(step.requestText());
        }
        String[] rules = {Examples.read(Examples.RULES), otherRules()};
        String[] datamodels = {Examples.read(Examples.DATAMODEL), otherDatamodel()};
        List<String> first = answers(rules[0], datamodels[0], steps, requests);
        List<String> second = answers(rules[1], datamodels[1], steps, requests);
        // Each set's answers do not hang on which data model is loaded, so an
        // evaluation between the two loads of a swap has only two right answers.
        assertEquals(first, answers(rules[0], datamodels[1], steps, requests));
        assertEquals(second, answers(rules[1], datamodels[0], steps, requests));
        List<Integer> differing = new ArrayList<>();
        for (int i = 0; i < steps.size(); ++i) {
            if (!first.get(i).equals(second.get(i))) {
                differing.add(i);
            }
        }
        assertTrue(differing.size() >= 6, "the two sets differ in " + differing);

        List<String> wrong = Collections.synchronizedList(new ArrayList<>());
        AtomicLong wrongAnswers = new AtomicLong();
        AtomicLong evaluations = new AtomicLong();
        AtomicLong answeredByFirst = new AtomicLong();
        AtomicLong answeredBySecond = new AtomicLong();
        AtomicBoolean reloading = new AtomicBoolean(true);
        AtomicLong reloads = new AtomicLong();
        CountDownLatch start = new CountDownLatch(1);
        ExecutorService pool = Executors.newFixedThreadPool(EVALUATORS + 1);
        try (Engine shared = new Engine()) {
            assertTrue(shared.loadDatamodel(datamodels[0]).succeeded());
            assertTrue(shared.loadRules(rules[0]).succeeded());
            List<Future<?>> work = new ArrayList<>();
            for (int t = 0; t < EVALUATORS; ++t) {
                final int offset = t;
                work.add(pool.submit(() -> {
                    start.await();
                    // Every thread walks the whole scenario at least once, from its own start.
                    for (int n = 0; reloading.get() || n < steps.size(); ++n) {
                        int i = (offset + n) % steps.size();
                        String answer = shared.evaluate(steps.get(i).kind, requests.get(i)).raw();
                        evaluations.incrementAndGet();
                        if (!answer.equals(first.get(i)) && !answer.equals(second.get(i))) {
                            // A few tell enough; all of them would flood the report.
                            if (wrongAnswers.incrementAndGet() <= 5) {
                                wrong.add(steps.get(i).name + ": " + answer);
                            }
                        } else if (!first.get(i).equals(second.get(i))) {
                            (answer.equals(first.get(i)) ? answeredByFirst : answeredBySecond)
                                    .incrementAndGet();
                        }
                    }
                    return null;
                }));
            }
            work.add(pool.submit(() -> {
                start.await();
                long deadline = System.nanoTime() + RELOAD_SECONDS * 1_000_000_000L;
                try {
                    for (int n = 1; n <= RELOADS && System.nanoTime() < deadline; ++n) {
                        int set = n % 2;
                        String loadedRules = shared.loadRules(rules[set]).raw();
                        String loadedDatamodel = shared.loadDatamodel(datamodels[set]).raw();
                        if (!loadedRules.equals(Examples.RULES_LOADED)
                                || !loadedDatamodel.equals(Examples.DATAMODEL_LOADED)) {
                            wrong.add("reload " + n + ": " + loadedRules + " " + loadedDatamodel);
                        }
                        reloads.incrementAndGet();
                    }
                } finally {
                    reloading.set(false);
                }
                return null;
            }));
            start.countDown();
            for (Future<?> done : work) {
                done.get();
            }
        } finally {
            pool.shutdownNow();
        }
        assertEquals(List.of(), wrong, wrongAnswers + " wrong answers of " + evaluations);
        assertTrue(evaluations.get() >= EVALUATORS * steps.size(), evaluations + " evaluations");
        assertTrue(reloads.get() >= LEAST_RELOADS,
                reloads + " reloads in " + RELOAD_SECONDS + " s, of " + RELOADS);
        // The swaps were seen: answers of both sets came back.
        assertTrue(answeredByFirst.get() > 0 && answeredBySecond.get() > 0,
                answeredByFirst + " answers of the first set, " + answeredBySecond
                        + " of the second");
    }
}
