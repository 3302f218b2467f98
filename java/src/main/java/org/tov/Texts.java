package org.tov;

import java.util.ArrayList;
import java.util.Collections;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;

/**
 * Readers of the list and map texts inside an answer.
 *
 * <p>The library writes a list as {@code "[a,b]"} (names joined by a comma
 * alone) and a map as {@code "{Name:Value, Name2:Value2}"} (pairs joined by a
 * comma and a blank). It quotes and escapes nothing, so a name that holds such
 * a separator cannot be told apart; the readers take the texts exactly as the
 * library writes them, and read them as the Python package does.
 */
public final class Texts {
    /** The keyword of an options answer's conflict resolution choices. */
    public static final String SELECTED_VERSIONING_ATTRIBUTE = "SelectedVersioningAttribute";

    /** The keyword of an approved edit's attributes to initialize. */
    public static final String TRIGGER_INITIALIZATION = "TriggerInitialization";

    /** The value that marks a keyword of a refusal that asks for more data. */
    public static final String MISSING_DATA = "MissingData";

    private Texts() {}

    /**
     * {@code "[Revision,Overwrite]"} gives {@code [Revision, Overwrite]}. The
     * library writes no options as {@code "[]"} or as an empty text; both give
     * an empty list. Empty names between commas are kept.
     *
     * @param text a list text
     * @return its names, in order; unmodifiable
     */
    public static List<String> parseList(String text) {
        String inner = strip(text, '[', ']');
        return inner.isEmpty() ? List.of() : Collections.unmodifiableList(split(inner, ","));
    }

    /**
     * {@code "{ReleaseDate:Reset, Iteration:Next}"} gives {@code
     * {ReleaseDate=Reset, Iteration=Next}}; {@code "{}"} gives an empty map. A
     * name ends at its first colon. A piece without a colon was part of the
     * value before it, which held {@code ", "}. A name written twice keeps its
     * first place and its last value.
     *
     * @param text a map text
     * @return its pairs, in the order written; unmodifiable
     */
    public static Map<String, String> parseMap(String text) {
        String inner = strip(text, '{', '}');
        Map<String, String> pairs = new LinkedHashMap<>();
        if (inner.isEmpty()) {
            return Collections.unmodifiableMap(pairs);
        }
        String last = null;
        for (String piece : split(inner, ", ")) {
            int colon = piece.indexOf(':');
            if (colon >= 0 || last == null) {
                String name = colon >= 0 ? piece.substring(0, colon) : piece;
                pairs.put(name, colon >= 0 ? piece.substring(colon + 1) : "");
                last = name;
            } else {
                pairs.put(last, pairs.get(last) + ", " + piece);
            }
        }
        return Collections.unmodifiableMap(pairs);
    }

    /** One opening and one closing mark off, each only where it stands. */
    private static String strip(String text, char open, char close) {
        String inner = text;
        if (inner.startsWith(String.valueOf(open))) {
            inner = inner.substring(1);
        }
        if (inner.endsWith(String.valueOf(close))) {
            inner = inner.substring(0, inner.length() - 1);
        }
        return inner;
    }

    /** Every piece between separators, empty ones too (String.split drops trailing ones). */
    private static List<String> split(String text, String separator) {
        List<String> pieces = new ArrayList<>();
        int start = 0;
        for (int found = text.indexOf(separator); found >= 0;
                found = text.indexOf(separator, start)) {
            pieces.add(text.substring(start, found));
            start = found + separator.length();
        }
        pieces.add(text.substring(start));
        return pieces;
    }
}
