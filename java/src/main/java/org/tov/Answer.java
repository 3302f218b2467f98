package org.tov;

import java.util.ArrayList;
import java.util.Collections;
import java.util.List;
import java.util.Map;
import java.util.Objects;

/**
 * One answer of the library: the response's single-string form, a flat JSON
 * object of strings such as
 * {@code {"Result":"Success","ResultComment":"Edit attempt approved"}}, with
 * readers for what it holds. Immutable, and so safe to share between threads.
 */
public final class Answer {
    /** The keyword of the verdict, "Success" or "Failure". */
    public static final String RESULT = "Result";

    /** The keyword of the comment for people. */
    public static final String RESULT_COMMENT = "ResultComment";

    // The keywords that ask for more data, each with the request section that brings it.
    private static final String[][] SECTIONS_BY_KEYWORD = {
        {"ObjectFamilyMembers", "membersOfFamily"},
        {"ManualLinkAncestors", "manualLinkAncestors"},
    };

    private final String raw;
    private final Map<String, String> keywords;

    private Answer(String raw, Map<String, String> keywords) {
        this.raw = raw;
        this.keywords = keywords;
    }

    /**
     * Reads an answer that was kept as text, such as a line that {@code tov
     * eval} or {@code tov batch} printed.
     *
     * @param raw the single-string form
     * @return the answer
     * @throws IllegalArgumentException when the text is not a JSON object whose
     *     values are all strings
     */
    public static Answer parse(String raw) {
        Objects.requireNonNull(raw, "raw must not be null");
        return new Answer(raw, Collections.unmodifiableMap(FlatJsonObject.parse(raw)));
    }

    /**
     * The single-string form, exactly as {@code tov eval} prints it (without
     * its line end).
     *
     * @return the answer's text
     */
    public String raw() {
        return raw;
    }

    /**
     * Whether the verdict is "Success".
     *
     * @return true when "Result" is "Success"
     */
    public boolean succeeded() {
        return "Success".equals(keywords.get(RESULT));
    }

    /**
     * The comment for people.
     *
     * @return "ResultComment", or "" when the answer has none
     */
    public String comment() {
        return keywords.getOrDefault(RESULT_COMMENT, "");
    }

    /**
     * Every keyword of the answer with its text, in the order written (the
     * library writes keys in byte order). A key written twice keeps its first
     * place and its last value.
     *
     * @return an unmodifiable map
     */
    public Map<String, String> keywords() {
        return keywords;
    }

    /**
     * The sections ("membersOfFamily", "manualLinkAncestors") to add to a
     * refused request before sending it again.
     *
     * @return the sections in that order; empty when the answer is final
     */
    public List<String> missingSections() {
        if (succeeded()) {
            return List.of();
        }
        List<String> sections = new ArrayList<>();
        for (String[] pair : SECTIONS_BY_KEYWORD) {
            if (Texts.MISSING_DATA.equals(keywords.get(pair[0]))) {
                sections.add(pair[1]);
            }
        }
        return Collections.unmodifiableList(sections);
    }

    /**
     * The attributes that the host must initialize after an approved edit,
     * each with its value, read from "TriggerInitialization" by
     * {@link Texts#parseMap}.
     *
     * @return an unmodifiable map; empty when there are none
     */
    public Map<String, String> triggerInitialization() {
        return Texts.parseMap(keywords.getOrDefault(Texts.TRIGGER_INITIALIZATION, ""));
    }

    /**
     * The conflict resolution options of an options answer: versioning
     * attributes and the data model's overwrite label, read from
     * "SelectedVersioningAttribute" by {@link Texts#parseList}.
     *
     * @return an unmodifiable list; empty when the answer names none
     */
    public List<String> selectedVersioningAttributes() {
        return Texts.parseList(keywords.getOrDefault(Texts.SELECTED_VERSIONING_ATTRIBUTE, ""));
    }

    /** Answers are equal when their texts are. */
    @Override
    public boolean equals(Object other) {
        return other instanceof Answer && raw.equals(((Answer) other).raw);
    }

    @Override
    public int hashCode() {
        return raw.hashCode();
    }

    /** The single-string form. */
    @Override
    public String toString() {
        return raw;
    }
}
