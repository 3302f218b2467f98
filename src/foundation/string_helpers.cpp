#include "tov/string_helpers.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <climits>
#include <cstdint>
#include <cstring>

#include "foundation/compare.h"

namespace {

// Bytes beyond ASCII have no case and count as negative, as a signed char
// holds them.
int foldByte(char byte) {
    // NOLINTNEXTLINE(bugprone-signed-char-misuse): negative on purpose, see above.
    return static_cast<signed char>(foldAsciiCase(byte));
}

// The bytes of `value` from the most significant, in memory order.
std::uint64_t bigEndian(std::uint64_t value) {
#if defined(__GNUC__) && defined(__BYTE_ORDER__) && __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
    return __builtin_bswap64(value);
#else
    std::uint64_t result = 0;
    auto* const bytes = reinterpret_cast<unsigned char*>(&result);
    for (int i = 0; i < 8; ++i) {
        bytes[i] = static_cast<unsigned char>(value >> (56 - 8 * i));
    }
    return result;
#endif
}

// foldAsciiCase on each of eight bytes at once, each byte's top bit then
// flipped as a sort key wants it: a byte is a capital letter when it has no
// top bit and lies between 'A' and 'Z', which two additions tell for all
// bytes together without carries between them.
std::uint64_t foldedSortKeyBytes(std::uint64_t word) {
    constexpr std::uint64_t kOnes = 0x0101010101010101ULL;
    constexpr std::uint64_t kTopBits = 0x80U * kOnes;
    const std::uint64_t low = word & ~kTopBits;
    const std::uint64_t atLeastA = (low + (0x80U - 'A') * kOnes) & kTopBits;
    const std::uint64_t beyondZ = (low + (0x7FU - 'Z') * kOnes) & kTopBits;
    const std::uint64_t capital = atLeastA & ~beyondZ & ~word & kTopBits;
    return (word | (capital >> 2U)) ^ kTopBits;
}

bool isWhiteSpace(char byte) {
    return std::isspace(static_cast<unsigned char>(byte)) != 0;
}

std::string textUpToFirstNul(const char* text) {
    return text == nullptr ? std::string() : text;
}

}  // namespace

int compareStringsIgnoringCase(const std::string& first, const std::string& second) {
    // Length decides first: the difference of the lengths, held within int so that
    // huge lengths cannot wrap to zero.
    if (first.size() != second.size()) {
        const long long difference =
            static_cast<long long>(first.size()) - static_cast<long long>(second.size());
        return static_cast<int>(std::clamp<long long>(difference, INT_MIN, INT_MAX));
    }
    int difference = 0;
    for (std::string::size_type i = 0; i < first.size(); ++i) {
        difference = foldByte(first[i]) - foldByte(second[i]);
        if (difference != 0) {
            break;
        }
    }
    return difference;
}

bool equalsIgnoringCase(const std::string& text, const char* word) {
    const std::size_t length = std::strlen(word);
    if (text.size() != length) {
        return false;
    }
    for (std::size_t i = 0; i < length; ++i) {
        if (foldAsciiCase(text[i]) != foldAsciiCase(word[i])) {
            return false;
        }
    }
    return true;
}

void appendFoldedSortKey(const std::string& text, std::string& key) {
    appendFoldedSortKeys({&text}, key);
}

void appendFoldedSortKeys(std::initializer_list<const std::string*> texts, std::string& key) {
    // Folded through a small buffer and appended a piece at a time, mostly a
    // whole rule's key at once: growing the key first and writing into it
    // zero-fills what is then overwritten, and an append per field cost the
    // sort of a load more than the folding itself.
    std::array<char, 256> piece;  // NOLINT(cppcoreguidelines-pro-type-member-init): filled below
    std::size_t filled = 0;
    for (const std::string* text : texts) {
        const std::uint64_t length = bigEndian(static_cast<std::uint64_t>(text->size()));
        if (piece.size() - filled < sizeof(length)) {
            key.append(piece.data(), filled);
            filled = 0;
        }
        std::memcpy(piece.data() + filled, &length, sizeof(length));
        filled += sizeof(length);
        const char* next = text->data();
        const char* const end = next + text->size();
        while (next != end) {
            if (piece.size() - filled < sizeof(std::uint64_t)) {
                key.append(piece.data(), filled);
                filled = 0;
            }
            // Eight bytes at a time; a shorter tail is read as the first bytes
            // of a word and only those are kept.
            const std::size_t count =
                std::min(sizeof(std::uint64_t), static_cast<std::size_t>(end - next));
            std::uint64_t word = 0;
            std::memcpy(&word, next, count);
            word = foldedSortKeyBytes(word);
            std::memcpy(piece.data() + filled, &word, count);
            filled += count;
            next += count;
        }
    }
    key.append(piece.data(), filled);
}

void appendIntegerSortKey(int value, std::string& key) {
    const std::uint32_t bits = static_cast<std::uint32_t>(value) ^ 0x80000000U;
    for (int shift = 24; shift >= 0; shift -= 8) {
        key.push_back(static_cast<char>((bits >> shift) & 0xFFU));
    }
}

std::string foldedObjectType(const std::string& objectType) {
    std::string folded = objectType;
    for (char& byte : folded) {
        byte = foldAsciiCase(byte);
    }
    return folded;
}

int compareKeysIgnoringCase(std::initializer_list<KeyPair> keys) {
    for (const KeyPair& key : keys) {
        const int order = compareStringsIgnoringCase(key.mine, key.theirs);
        if (order != 0) {
            return order;
        }
    }
    return 0;
}

bool areStringsEqualSimple(const std::string& first, const std::string& second) {
    return compareStringsIgnoringCase(first, second) == 0;
}

bool areStringsEqualAccountingAlsoAnyValue(const std::string& first, const std::string& second) {
    return areStringsEqualSimple(first, second) || isThisTheReservedAnyValue(first) ||
           isThisTheReservedAnyValue(second);
}

bool isThisTheReservedAnyValue(const std::string& value) {
    return equalsIgnoringCase(value, TOVAttrItemValue_Any);
}

bool isThisTheReservedResetValue(const std::string& value) {
    return equalsIgnoringCase(value, TOVAttrItemValue_Reset);
}

bool isThisTheLogToConsoleKeyword(const char* text) {
    return areStringsEqualSimple(text, TOVLoggingKeyword);
}

bool changeAllToAny(std::string& objectType) {
    if (!equalsIgnoringCase(objectType, TOVAttrItemValue_ALL)) {
        return false;
    }
    objectType = TOVAttrItemValue_Any;
    return true;
}

bool getValueofKeywordFromStringStringMap(const std::string& key, const AttributesMap& attributes,
                                          std::string& value) {
    const auto found = attributes.find(key);
    if (found == attributes.end()) {
        return false;
    }
    value = found->second;
    return true;
}

std::vector<std::string> getKeysOfMap(const AttributesMap& attributes) {
    std::vector<std::string> keys;
    keys.reserve(attributes.size());
    for (const auto& entry : attributes) {
        keys.push_back(entry.first);
    }
    return keys;
}

std::string addEnclosingCurlyBracketsToString(const char* text) {
    return "{" + textUpToFirstNul(text) + "}";
}

std::string createStringInQuotes(const char* text) {
    return "\"" + textUpToFirstNul(text) + "\"";
}

namespace {

template <typename Strings>
std::string joinIntoBracketedList(const Strings& strings) {
    if (strings.empty()) {
        return std::string();
    }
    std::string text = "[";
    bool first = true;
    for (const std::string& element : strings) {
        if (!first) {
            text += ',';
        }
        text += element;
        first = false;
    }
    text += ']';
    return text;
}

}  // namespace

std::string createCommaSeparatedListOfStrings(const std::vector<std::string>& list) {
    return joinIntoBracketedList(list);
}

std::string createCommaSeparatedSetOfStrings(const std::set<std::string>& set) {
    return joinIntoBracketedList(set);
}

std::string createCommaSeparatedStringStringMap(const std::map<std::string, std::string>& map) {
    std::string text = "{";
    bool first = true;
    for (const auto& entry : map) {
        if (!first) {
            text += ", ";
        }
        text += entry.first.c_str();
        text += ':';
        text += entry.second.c_str();
        first = false;
    }
    text += '}';
    return text;
}

std::string removeEnclosingCharacters(const std::string& text, char opening, char closing) {
    std::string result = text;
    if (result.size() < 2) {
        return result;
    }
    if (result.front() == opening) {
        result.erase(0, 1);
    }
    if (!result.empty() && result.back() == closing) {
        result.pop_back();
    }
    return result;
}

std::string removeEnclosingCurlyBracketsFromString(const std::string& text) {
    return removeEnclosingCharacters(text, '{', '}');
}

std::string removeEnclosingSquareBracketsFromString(const std::string& text) {
    return removeEnclosingCharacters(text, '[', ']');
}

std::string removeEnclosingQuotesFromString(const std::string& text) {
    return removeEnclosingCharacters(text, '"', '"');
}

bool createVectorFromCommaSeparatedListOfStrings(const std::string& text,
                                                 std::vector<std::string>& list) {
    std::string token;
    for (const char c : text) {
        if (c == '[') {
            continue;
        }
        if (c == ',' || c == ']') {
            list.push_back(removeEnclosingQuotesFromString(token));
            token.clear();
            if (c == ']') {
                break;
            }
            continue;
        }
        token += c;
    }
    // A token still in hand had no closing bracket: it is dropped on purpose.
    return !list.empty();
}

bool createSetFromCommaSeparatedListOfStrings(const std::string& text, std::set<std::string>& set) {
    std::vector<std::string> list;
    const bool found = createVectorFromCommaSeparatedListOfStrings(text, list);
    if (found) {
        set.insert(list.begin(), list.end());
    }
    return found;
}

namespace {

bool commitPair(const std::string& key, const std::string& value, AttributesMap& map) {
    const std::string bareKey = removeEnclosingQuotesFromString(key);
    const std::string bareValue = removeEnclosingQuotesFromString(value);
    if (bareKey.empty() || bareValue.empty()) {
        return false;
    }
    map[bareKey] = bareValue;
    return true;
}

}  // namespace

bool createStringStringMapFromCommaSeparatedString(const std::string& text, AttributesMap& map) {
    std::string key;
    std::string value;
    std::string* current = &key;
    for (const char c : text) {
        if (c == '{') {
            current = &key;
        } else if (c == ':') {
            current = &value;
        } else if (c == ',' && !value.empty()) {
            if (!commitPair(key, value, map)) {
                return false;
            }
            key.clear();
            value.clear();
            current = &key;
        } else if (c == '}') {
            return commitPair(key, value, map);
        } else if (!(current->empty() && isWhiteSpace(c))) {
            *current += c;
        }
    }
    // A pair still in hand had no closing brace: it is dropped on purpose.
    return true;
}

void finishPreviousSentenceAndAppendAnother(std::string& text, const std::string& sentence) {
    if (text.empty()) {
        text += sentence;
    } else if (text.back() == '.') {
        text += ' ';
        text += sentence;
    } else {
        text += ". ";
        text += sentence;
    }
}

void appendSlashOrBackSlashIfNecessary(std::string& path) {
    if (path.empty() || path.back() != '\\') {
        path += '\\';
    }
}
