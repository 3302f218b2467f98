/**
 * tov from Java: judges changes to the lifecycle of data-management objects.
 *
 * <pre>{@code
 * try (Engine engine = new Engine()) {
 *     engine.loadDatamodelFile(Path.of("examples/datamodel.json"));
 *     engine.loadRulesFile(Path.of("examples/rules.json"));
 *     Answer answer = engine.evaluate("edit", requestJson);
 *     if (!answer.missingSections().isEmpty()) {
 *         // fetch those objects, add the sections, evaluate again
 *     }
 * }
 * }</pre>
 *
 * <p>The package calls libtov through its C interface ({@code tov/tov_c.h}) by
 * way of a small JNI library, {@code libtov_jni.so}, and needs nothing beyond
 * the JDK. Every answer is the response's single-string form, exactly the line
 * that {@code tov eval} prints, with readers for the values packed inside it.
 */
package org.tov;
