package org.tov;

import java.io.IOException;
import java.io.UncheckedIOException;
import java.lang.ref.Cleaner;
import java.lang.ref.Reference;
import java.nio.charset.Charset;
import java.nio.charset.StandardCharsets;
import java.nio.file.Path;
import java.util.Objects;
import java.util.concurrent.locks.Lock;
import java.util.concurrent.locks.ReentrantReadWriteLock;

/**
 * One private set of rules, data model and logger in libtov: load the two
 * documents, then evaluate requests.
 *
 * <p><b>Threads.</b> An engine is safe to share between threads. Any number of
 * threads may evaluate on one engine at once. A load of either document builds
 * a fresh set and swaps it in whole, so every evaluation sees wholly the old or
 * wholly the new documents; loads on one engine take turns. {@link #close()}
 * waits for the calls in flight, and a call after it throws
 * {@link IllegalStateException}. Different engines share nothing.
 *
 * <p><b>Errors.</b> Everything the library has to say is in the {@link Answer}:
 * a request or document it cannot use, and an unknown kind, get a "Failure"
 * answer whose comment says why. Exceptions are for misuse of this class: a
 * null argument ({@link NullPointerException}), a text that cannot cross the C
 * interface ({@link IllegalArgumentException}), a closed engine
 * ({@link IllegalStateException}), and memory running out
 * ({@link OutOfMemoryError}).
 *
 * <p>Close an engine, best in a try-with-resources block, to free it at a known
 * time; one that becomes unreachable unclosed is freed by a cleaner.
 */
public final class Engine implements AutoCloseable {
    private static final Cleaner CLEANER = Cleaner.create();

    // Java turns a path into the bytes of a file name with this encoding, so
    // the library opens the very file that java.nio would.
    private static final Charset FILE_NAMES = fileNameCharset();

    // Calls hold it shared, close holds it alone: close waits for calls in
    // flight, and no call starts on a freed engine.
    private final ReentrantReadWriteLock lock = new ReentrantReadWriteLock();
    private final NativeEngine engine;
    private final Cleaner.Cleanable cleanable;

    /** An engine with nothing loaded that logs nowhere. */
    public Engine() {
        this("");
    }

    /**
     * An engine with nothing loaded that logs where {@code log} says.
     *
     * @param log "" or "off" (in any case) for no log; "console" (in any case)
     *     for standard output; anything else names a folder, created if missing,
     *     where each call starts a new file
     * @throws UncheckedIOException when the folder cannot be created or is no
     *     folder
     */
    public Engine(String log) {
        Objects.requireNonNull(log, "log must not be null");
        long address = NativeCalls.engineNew();
        if (address == 0) {
            throw new OutOfMemoryError("tov could not create an engine");
        }
        engine = new NativeEngine(address);
        cleanable = CLEANER.register(this, engine);
        if (log.isEmpty()) {
            return; // a new engine logs nowhere already
        }
        try {
            setLog(log);
        } catch (RuntimeException | Error refused) {
            cleanable.clean();
            throw refused;
        }
    }

    /**
     * Changes where the calls from now on log; safe while other threads
     * evaluate or load.
     *
     * @param log as for {@link #Engine(String)}
     * @throws UncheckedIOException when the folder cannot be created or is no
     *     folder; the engine then logs where it did before
     */
    public void setLog(String log) {
        Objects.requireNonNull(log, "log must not be null");
        byte[] where = Utf8.encode(log, "the log setting");
        int status;
        Lock shared = lock.readLock();
        shared.lock();
        try {
            long address = engine.address;
            if (address == 0) {
                throw new IllegalStateException("the engine is closed");
            }
            status = NativeCalls.setLog(address, where);
        } finally {
            shared.unlock();
            Reference.reachabilityFence(this);
        }
        if (status == NativeCalls.LOG_OK) {
            return;
        }
        if (status == NativeCalls.LOG_UNUSABLE_FOLDER) {
            throw new UncheckedIOException(new IOException("cannot log to folder " + log));
        }
        if (status == NativeCalls.LOG_OUT_OF_MEMORY) {
            throw new OutOfMemoryError("tov could not change where it logs");
        }
        throw new IllegalStateException("tov_set_log refused " + log + " (" + status + ")");
    }

    /**
     * Replaces the rules, all or nothing: a document with a fault leaves no
     * rules loaded.
     *
     * @param json the rules document as JSON text
     * @return the library's answer
     */
    public Answer loadRules(String json) {
        return evaluate("rules", requireText(json, "json"));
    }

    /**
     * Replaces the rules with the document in a file, all or nothing.
     *
     * @param path the file
     * @return the library's answer; a file that cannot be read is answered as
     *     text that is no JSON object
     */
    public Answer loadRulesFile(Path path) {
        return evaluateFile("rules", path);
    }

    /**
     * Replaces the data-model information, all or nothing.
     *
     * @param json the data-model document as JSON text
     * @return the library's answer
     */
    public Answer loadDatamodel(String json) {
        return evaluate("datamodel", requireText(json, "json"));
    }

    /**
     * Replaces the data-model information with the document in a file.
     *
     * @param path the file
     * @return the library's answer
     */
    public Answer loadDatamodelFile(Path path) {
        return evaluateFile("datamodel", path);
    }

    /**
     * Evaluates one request.
     *
     * @param kind the word of {@code tov eval}: "edit",
     *     "edit-before-resolution", "save", "save-before-resolution", "link"
     *     or "options"; or "rules" or "datamodel" to load a document. An
     *     unknown kind gets a Failure answer that names the known ones.
     * @param requestJson the request as JSON text
     * @return the library's answer
     * @throws IllegalArgumentException when a text holds a NUL character or an
     *     unpaired surrogate
     */
    public Answer evaluate(String kind, String requestJson) {
        byte[] kindBytes = Utf8.encode(requireText(kind, "kind"), "the kind");
        byte[] text = Utf8.encode(requireText(requestJson, "requestJson"), "the JSON text");
        return call(kindBytes, text, false);
    }

    /**
     * Evaluates the request in a file.
     *
     * @param kind as for {@link #evaluate}
     * @param path the file that holds the request
     * @return the library's answer; a file that cannot be read is answered as
     *     text that is no JSON object
     */
    public Answer evaluateFile(String kind, Path path) {
        byte[] kindBytes = Utf8.encode(requireText(kind, "kind"), "the kind");
        Objects.requireNonNull(path, "path must not be null");
        String name = path.toString();
        if (name.indexOf('\0') >= 0) {
            throw new IllegalArgumentException(
                    "the path holds a NUL character, which cannot cross the C interface");
        }
        return call(kindBytes, name.getBytes(FILE_NAMES), true);
    }

    /**
     * Frees the engine once every call in flight has returned. A second close
     * does nothing; any other call afterwards throws
     * {@link IllegalStateException}.
     */
    @Override
    public void close() {
        Lock alone = lock.writeLock();
        alone.lock();
        try {
            cleanable.clean();
        } finally {
            alone.unlock();
        }
    }

    private Answer call(byte[] kind, byte[] input, boolean inputIsPath) {
        byte[] answer;
        Lock shared = lock.readLock();
        shared.lock();
        try {
            long address = engine.address;
            if (address == 0) {
                throw new IllegalStateException("the engine is closed");
            }
            answer = NativeCalls.evaluate(address, kind, input, inputIsPath);
        } finally {
            shared.unlock();
            // Until here the cleaner must not find this engine unreachable,
            // which it could once the address had been read.
            Reference.reachabilityFence(this);
        }
        if (answer == null) {
            throw new OutOfMemoryError("tov ran out of memory");
        }
        return Answer.parse(new String(answer, StandardCharsets.UTF_8));
    }

    /** The native side, for tests that watch it being freed without keeping the engine. */
    NativeEngine nativeEngine() {
        return engine;
    }

    private static String requireText(String text, String name) {
        return Objects.requireNonNull(text, name + " must not be null");
    }

    private static Charset fileNameCharset() {
        String name = System.getProperty("sun.jnu.encoding");
        try {
            return name == null ? StandardCharsets.UTF_8 : Charset.forName(name);
        } catch (IllegalArgumentException unknown) {
            return StandardCharsets.UTF_8;
        }
    }

    /**
     * The native engine, apart from the Java object so that the cleaner can
     * free it without keeping the engine reachable. Runs at most once: from
     * close, or from the cleaner's thread once no thread can reach the engine.
     */
    static final class NativeEngine implements Runnable {
        // 0 once freed. Calls read it under the engine's lock; the cleaner's
        // thread writes it without, so that a test may watch it.
        volatile long address;

        NativeEngine(long address) {
            this.address = address;
        }

        boolean isFreed() {
            return address == 0;
        }

        @Override
        public void run() {
            long freed = address;
            address = 0;
            NativeCalls.engineFree(freed);
        }
    }
}
