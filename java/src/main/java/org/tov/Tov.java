package org.tov;

import java.nio.charset.StandardCharsets;

/** What belongs to the library as a whole rather than to one engine. */
public final class Tov {
    private Tov() {}

    /**
     * The version of the loaded libtov, such as {@code "1.1"}.
     *
     * @return the library's version text
     */
    public static String version() {
        return new String(NativeCalls.version(), StandardCharsets.UTF_8);
    }
}
