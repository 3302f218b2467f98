package org.tov;

/**
 * The native half of the package, one method per function of the C interface.
 * Texts cross as arrays of real UTF-8 bytes, never as Java strings, because
 * JNI's own string conversion speaks "modified UTF-8", which writes a NUL and
 * every character outside the Basic Multilingual Plane differently.
 */
final class NativeCalls {
    static {
        NativeLibrary.load();
    }

    private NativeCalls() {}

    /** The results of {@link #setLog}, as {@code tov_set_log} returns them. */
    static final int LOG_OK = 0;

    static final int LOG_NULL_ARGUMENT = 1;
    static final int LOG_UNUSABLE_FOLDER = 2;
    static final int LOG_OUT_OF_MEMORY = 3;

    /** A new engine's address, or 0 when memory runs out. */
    static native long engineNew();

    /** Frees the engine at a non-zero address. */
    static native void engineFree(long engine);

    /**
     * The answer's UTF-8 bytes, or null when tov could not allocate even its
     * out-of-memory answer. {@code input} is the JSON text, or the path of a
     * file that holds it when {@code inputIsPath}; neither array holds a NUL.
     */
    static native byte[] evaluate(long engine, byte[] kind, byte[] input, boolean inputIsPath);

    /** One of the LOG_ results. */
    static native int setLog(long engine, byte[] where);

    /** The library's version text in UTF-8. */
    static native byte[] version();
}
