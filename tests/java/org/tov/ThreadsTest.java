package org.tov;

import static org.junit.jupiter.api.Assertions.assertEquals;

import java.util.ArrayList;
import java.util.List;
import java.util.concurrent.Callable;
import java.util.concurrent.ExecutorService;
import java.util.concurrent.Executors;
import java.util.concurrent.Future;
import org.junit.jupiter.api.Test;

/** Engines on threads of their own answer as one engine does. */
class ThreadsTest {
    static final int THREADS = 8;

    @Test
    void eightThreadsWithAnEngineEach() throws Exception {
        List<Examples.Step> steps = Examples.steps();
        List<String> requests = new ArrayList<>();
        for (Examples.Step step : steps) {
            requests.add(step.requestText());
        }
        Callable<List<String>> work = () -> {
            List<String> wrong = new ArrayList<>();
            try (Engine engine = Examples.loadedEngine()) {
                for (int round = 0; round < 5; ++round) {
                    for (int i = 0; i < steps.size(); ++i) {
                        Examples.Step step = steps.get(i);
                        if (!engine.evaluate(step.kind, requests.get(i)).raw()
                                .equals(step.expected())) {
                            wrong.add(step.name);
                        }
                    }
                }
            }
            return wrong;
        };
        ExecutorService pool = Executors.newFixedThreadPool(THREADS);
        try {
            List<Future<List<String>>> results = new ArrayList<>();
            for (int i = 0; i < THREADS; ++i) {
                results.add(pool.submit(work));
            }
            for (Future<List<String>> result : results) {
                assertEquals(List.of(), result.get());
            }
        } finally {
            pool.shutdownNow();
        }
    }
}
