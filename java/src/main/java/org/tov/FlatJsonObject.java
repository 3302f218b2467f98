package org.tov;

import java.util.LinkedHashMap;
import java.util.Map;

/**
 * A strict reader of exactly one shape of JSON: an object whose values are
 * all strings, the single-string form of an answer. Anything else is refused
 * rather than guessed at, since a misread answer would be a wrong verdict.
 */
final class FlatJsonObject {
    private final String text;
    private int at;

    private FlatJsonObject(String text) {
        this.text = text;
    }

    /**
     * The members in the order written. A key written twice keeps its first
     * place and its last value, as in Python's json module; the single-string
     * form can repeat a key when two of its keys differ only in white space
     * that the library folds.
     *
     * @throws IllegalArgumentException when the text is not such an object
     */
    static Map<String, String> parse(String text) {
        return new FlatJsonObject(text).object();
    }

    private Map<String, String> object() {
        Map<String, String> members = new LinkedHashMap<>();
        skipWhiteSpace();
        expect('{');
        skipWhiteSpace();
        if (peek() == '}') {
            ++at;
        } else {
            while (true) {
                String key = string();
                skipWhiteSpace();
                expect(':');
                skipWhiteSpace();
                members.put(key, string());
                skipWhiteSpace();
                if (peek() == ',') {
                    ++at;
                    skipWhiteSpace();
                } else {
                    expect('}');
                    break;
                }
            }
        }
        skipWhiteSpace();
        if (at != text.length()) {
            throw fault("text after the object");
        }
        return members;
    }

    private String string() {
        expect('"');
        StringBuilder value = new StringBuilder();
        while (true) {
            if (at == text.length()) {
                throw fault("unterminated string");
            }
            char c = text.charAt(at++);
            if (c == '"') {
                return value.toString();
            }
            if (c < 0x20) {
                throw fault("control character in a string");
            }
            if (c != '\\') {
                value.append(c);
                continue;
            }
            if (at == text.length()) {
                throw fault("unterminated escape");
            }
            char escaped = text.charAt(at++);
            switch (escaped) {
                case '"':
                case '\\':
                case '/':
                    value.append(escaped);
                    break;
                case 'b':
                    value.append('\b');
                    break;
                case 'f':
                    value.append('\f');
                    break;
                case 'n':
                    value.append('\n');
                    break;
                case 'r':
                    value.append('\r');
                    break;
                case 't':
                    value.append('\t');
                    break;
                case 'u':
                    // A pair of escaped surrogates becomes one character by
                    // itself, since Java strings are UTF-16 too.
                    value.append(hexUnit());
                    break;
                default:
                    --at;
                    throw fault("unknown escape \\" + escaped);
            }
        }
    }

    private char hexUnit() {
        if (at + 4 > text.length()) {
            throw fault("short \\u escape");
        }
        int unit = 0;
        for (int i = 0; i < 4; ++i) {
            int digit = hexDigit(text.charAt(at));
            if (digit < 0) {
                throw fault("bad hex digit in a \\u escape");
            }
            unit = unit * 16 + digit;
            ++at;
        }
        return (char) unit;
    }

    /** ASCII only: Character.digit would also take full-width and other digits. */
    private static int hexDigit(char c) {
        if (c >= '0' && c <= '9') {
            return c - '0';
        }
        if (c >= 'a' && c <= 'f') {
            return c - 'a' + 10;
        }
        if (c >= 'A' && c <= 'F') {
            return c - 'A' + 10;
        }
        return -1;
    }

    private int peek() {
        return at < text.length() ? text.charAt(at) : -1;
    }

    private void expect(char wanted) {
        if (peek() != wanted) {
            throw fault("expected '" + wanted + "'");
        }
        ++at;
    }

    private void skipWhiteSpace() {
        while (at < text.length()) {
            char c = text.charAt(at);
            if (c != ' ' && c != '\t' && c != '\n' && c != '\r') {
                return;
            }
            ++at;
        }
    }

    private IllegalArgumentException fault(String what) {
        return new IllegalArgumentException(
                "not a flat JSON object of strings: " + what + " at index " + at);
    }
}
