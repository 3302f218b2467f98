package org.tov;

import java.nio.ByteBuffer;
import java.nio.CharBuffer;
import java.nio.charset.CharacterCodingException;
import java.nio.charset.CharsetEncoder;
import java.nio.charset.CodingErrorAction;
import java.nio.charset.StandardCharsets;
import java.util.Arrays;

/** Java texts as the C interface takes them: UTF-8 bytes, with no NUL inside. */
final class Utf8 {
    private Utf8() {}

    /**
     * The UTF-8 bytes of {@code text}.
     *
     * @param what names the text in messages, such as "the kind"
     * @throws IllegalArgumentException when the text holds a NUL character,
     *     which would end it early in C, or an unpaired surrogate, which has no
     *     UTF-8 form
     */
    static byte[] encode(String text, String what) {
        if (text.indexOf('\0') >= 0) {
            throw new IllegalArgumentException(
                    what + " holds a NUL character, which cannot cross the C interface");
        }
        // A fresh encoder that reports, where String.getBytes would quietly
        // write '?' for an unpaired surrogate.
        CharsetEncoder encoder = StandardCharsets.UTF_8.newEncoder()
                .onMalformedInput(CodingErrorAction.REPORT)
                .onUnmappableCharacter(CodingErrorAction.REPORT);
        try {
            ByteBuffer bytes = encoder.encode(CharBuffer.wrap(text));
            return Arrays.copyOfRange(bytes.array(), bytes.arrayOffset() + bytes.position(),
                    bytes.arrayOffset() + bytes.limit());
        } catch (CharacterCodingException error) {
            throw new IllegalArgumentException(
                    what + " holds an unpaired surrogate, which has no UTF-8 form", error);
        }
    }
}
