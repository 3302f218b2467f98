#include "batch_line.h"

#include <rapidjson/error/en.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <optional>
#include <string_view>

namespace tovcli {

namespace {

// The line's "id" as an answer echoes it: its value written out, or its own
// text when it holds a number beyond a double's range, which reads as
// infinity and which no JSON writer can write.
struct EchoedId {
    const tovjson::Value* value = nullptr;
    std::string_view text;  // set only when the value cannot be written
};

// Opens the answer object, led by the line's "id" in JSON form.
void startAnswer(JsonWriter& writer, const EchoedId& id, OutputFormat format) {
    writer.StartObject();
    if (id.value != nullptr && format == OutputFormat::kJson) {
        writer.Key("id");
        if (id.text.empty()) {
            writeValue(writer, *id.value);
        } else {
            writer.RawValue(id.text.data(), id.text.size(), id.value->GetType());
        }
    }
}

BatchAnswer errorAnswer(std::size_t lineNumber, const std::string& message, const EchoedId& id,
                        OutputFormat format) {
    tovjson::StringBuffer buffer;
    JsonWriter writer(buffer);
    startAnswer(writer, id, format);
    writer.Key("line");
    writer.Uint64(lineNumber);
    writer.Key("error");
    writeString(writer, message);
    writer.EndObject();
    return {{buffer.GetString(), buffer.GetSize()}, false};
}

bool isBlank(const std::string& line) {
    return std::all_of(line.begin(), line.end(),
                       [](char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; });
}

BatchAnswer answerFromResponse(const TOVResponse& response, const EchoedId& id,
                               OutputFormat format) {
    if (format == OutputFormat::kText) {
        return {response.turnResponseIntoASingleString(), true};
    }
    tovjson::StringBuffer buffer;
    JsonWriter writer(buffer);
    startAnswer(writer, id, format);
    writeResponseMembers(writer, response);
    writer.EndObject();
    return {{buffer.GetString(), buffer.GetSize()}, true};
}

bool isJsonSpace(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

// Where the value of a member starts, given where its name ended: past the
// white space and the colon that the reader has already accepted.
std::size_t valueBegin(const std::string& line, std::size_t nameEnd) {
    std::size_t position = nameEnd;
    while (isJsonSpace(line[position])) {
        ++position;
    }
    ++position;  // the colon
    while (isJsonSpace(line[position])) {
        ++position;
    }
    return position;
}

// A copy of a line as RapidJSON's reader takes it in place: RapidJSON's
// InsituStringStream over the string's own terminator, which stands for the
// end, so that no byte needs a test of the end, and whose strings are
// unescaped where they stand instead of on the reader's stack; but a type of
// its own, since the reader works on a copy of RapidJSON's stream while it
// reads a value, and a handler would see its place before the value instead
// of after it.
class LineStream {
public:
    using Ch = char;

    explicit LineStream(char* text) : next(text), start(text) {}

    char Peek() const { return *next; }
    char Take() { return *next++; }
    std::size_t Tell() const { return static_cast<std::size_t>(next - start); }

    // A string is written back over its own text, never ahead of the reading.
    char* PutBegin() { return written = next; }
    void Put(char c) { *written++ = c; }
    void Flush() {}
    std::size_t PutEnd(char* begin) { return static_cast<std::size_t>(written - begin); }

private:
    char* next;
    char* start;
    char* written = nullptr;
};

// What the tree's FindMember would find in a line: the first "id", "kind" and
// "request" of the root object, the kind by its value and the other two by the
// place of their text in the line.
struct LineFacts {
    struct Member {
        bool seen = false;
        std::size_t keyEnd = 0;  // just past the member's name
        std::size_t begin = 0;   // of a container value, its opening bracket
        std::size_t end = 0;     // just past the value
    };

    // The member a name at the root opens when it is the first of its name,
    // else null.
    Member* firstNamed(std::string_view name) {
        Member* member = nullptr;
        if (name == "id") {
            member = &id;
        } else if (name == "kind") {
            member = &kind;
        } else if (name == "request") {
            member = &request;
        }
        return member != nullptr && !member->seen ? member : nullptr;
    }

    bool rootIsObject = false;
    bool sawNonFiniteNumber = false;  // a number beyond a double's range
    bool idIsBeyondWriting = false;   // such a number within the first "id"
    Member id;
    Member kind;
    Member request;
    bool kindIsString = false;
    std::string kindName;
    bool requestIsObject = false;
};

// One pass of the reader over a line, gathering its LineFacts.
class LineScan : public rapidjson::BaseReaderHandler<rapidjson::UTF8<>, LineScan> {
public:
    using Member = LineFacts::Member;

    LineScan(const LineStream& bytes, LineFacts& facts) : bytes(bytes), facts(facts) {}

    bool Null() { return scalar(); }
    bool Bool(bool /*value*/) { return scalar(); }
    bool Int(int /*value*/) { return scalar(); }
    bool Uint(unsigned /*value*/) { return scalar(); }
    bool Int64(std::int64_t /*value*/) { return scalar(); }
    bool Uint64(std::uint64_t /*value*/) { return scalar(); }
    bool Double(double value) {
        if (!std::isfinite(value)) {
            facts.sawNonFiniteNumber = true;
            if ((depth == 1 && current == &facts.id) || reading == &facts.id) {
                facts.idIsBeyondWriting = true;
            }
        }
        return scalar();
    }
    bool String(const char* text, rapidjson::SizeType length, bool /*copy*/) {
        if (depth == 1 && current == &facts.kind) {
            facts.kindIsString = true;
            facts.kindName.assign(text, length);
        }
        return scalar();
    }
    bool Key(const char* name, rapidjson::SizeType length, bool /*copy*/) {
        if (depth == 1) {
            current = facts.firstNamed(std::string_view(name, length));
            if (current != nullptr) {
                current->seen = true;
                current->keyEnd = bytes.Tell();
            }
        }
        return true;
    }
    bool StartObject() { return open(true); }
    bool StartArray() { return open(false); }
    bool EndObject(rapidjson::SizeType /*members*/) { return close(); }
    bool EndArray(rapidjson::SizeType /*elements*/) { return close(); }

private:
    bool scalar() {
        if (depth == 1 && current != nullptr) {
            current->end = bytes.Tell();
            current = nullptr;
        }
        return true;
    }

    bool open(bool isObject) {
        if (depth == 0) {
            facts.rootIsObject = isObject;
        } else if (depth == 1 && current != nullptr) {
            current->begin = bytes.Tell();
            if (current == &facts.request) {
                facts.requestIsObject = isObject;
            }
            reading = current;
            current = nullptr;
        }
        ++depth;
        return true;
    }

    bool close() {
        --depth;
        if (depth == 1 && reading != nullptr) {
            reading->end = bytes.Tell() + 1;
            reading = nullptr;
        }
        return true;
    }

    const LineStream& bytes;
    LineFacts& facts;
    std::size_t depth = 0;
    Member* current = nullptr;  // the member whose value comes next, at depth 1
    Member* reading = nullptr;  // the member whose container value is open
};

// Reads a copy of a line as the tree reads the line: to its end or its first
// zero byte, whichever comes first, past the bytes of a byte order mark at its
// start, each on its own, with places counted from the line's start. The
// reader unescapes strings over the copy; the places stay the line's.
rapidjson::ParseResult scanLine(LineStream& stream, LineScan& scan) {
    for (const unsigned char markByte : {0xEFU, 0xBBU, 0xBFU}) {
        if (static_cast<unsigned char>(stream.Peek()) == markByte) {
            stream.Take();
        }
    }
    tovjson::Reader reader;
    // Iterative, so that a deeply nested line cannot overflow the stack.
    return reader.Parse<rapidjson::kParseIterativeFlag | rapidjson::kParseInsituFlag>(stream, scan);
}

// The bytes by what a JSON text may hold there: white space between tokens,
// and the bytes that stand for themselves inside a string (all but the
// quote, the backslash and the control characters, among them the zero byte
// that ends a std::string's text).
enum ByteClass : unsigned char { kSpaceByte = 1, kPlainStringByte = 2 };

constexpr std::array<unsigned char, 256> byteClasses() {
    std::array<unsigned char, 256> classes{};
    for (std::size_t byte = 0x20; byte < 256; ++byte) {
        classes[byte] = kPlainStringByte;
    }
    classes['"'] = 0;
    classes['\\'] = 0;
    for (const char space : {' ', '\t', '\n', '\r'}) {
        classes[static_cast<unsigned char>(space)] |= kSpaceByte;
    }
    return classes;
}

constexpr std::array<unsigned char, 256> kByteClasses = byteClasses();

bool isOf(char c, ByteClass byteClass) {
    return (kByteClasses[static_cast<unsigned char>(c)] & byteClass) != 0;
}

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

bool isHexDigit(char c) {
    return isDigit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

unsigned hexValue(char c) {
    return isDigit(c) ? static_cast<unsigned>(c - '0')
                      : static_cast<unsigned>((c | 0x20) - 'a' + 10);
}

// A scan of a line for its LineFacts that reads each byte once and unescapes
// nothing, for the lines that batches are made of; anything it does not know
// to read exactly as the reader does (a line that is no JSON, a byte order
// mark, a zero byte, an escape in a name at the root or in the kind, a number
// that might not fit a double, a deep nesting) it leaves to the reader, which
// then reads the line from the start. The zero byte that ends the string's
// text stops every loop, so that only a test of it finds the line's end.
class QuickScan {
public:
    QuickScan(const std::string& line, LineFacts& facts)
        : start(line.c_str()), end(start + line.size()), at(start), facts(facts) {}

    // False when the line is left to the reader; `facts` are then partial.
    bool run() {
        skipSpace();
        if (*at != '{') {
            return false;
        }
        facts.rootIsObject = true;
        open(true);
        if (*at != '}') {
            while (true) {
                // At the start of a member or element, past white space.
                if (isObject[depth - 1] && !readName()) {
                    return false;
                }
                const char c = *at;
                if (c == '{' || c == '[') {
                    if (!openMemberValue(c == '{')) {
                        return false;
                    }
                    if (*at != (c == '{' ? '}' : ']')) {
                        continue;
                    }
                } else if (!readScalar()) {
                    return false;
                }
                // After a value: commas and closing brackets.
                if (!readAfterValue()) {
                    return false;
                }
                if (depth == 0) {
                    skipSpace();
                    return at == end;
                }
            }
        }
        ++at;
        skipSpace();
        return at == end;
    }

private:
    using Member = LineFacts::Member;

    // Deeper lines are rare enough to leave to the reader.
    static constexpr std::size_t kMostDepth = 64;

    std::size_t place() const { return static_cast<std::size_t>(at - start); }

    void skipSpace() {
        while (isOf(*at, kSpaceByte)) {
            ++at;
        }
    }

    // Past the opening bracket and the white space after it.
    void open(bool object) {
        isObject[depth++] = object;
        ++at;
        skipSpace();
    }

    bool openMemberValue(bool object) {
        if (depth == kMostDepth) {
            return false;
        }
        if (depth == 1 && current != nullptr) {
            current->begin = place();
            if (current == &facts.request) {
                facts.requestIsObject = object;
            }
            reading = current;
            current = nullptr;
        }
        open(object);
        return true;
    }

    // From the end of a value (or an empty container's closing bracket) past
    // every closing bracket that follows, and past a comma and its white
    // space; false for anything else, but at the end of the root.
    bool readAfterValue() {
        while (true) {
            skipSpace();
            if (*at == ',') {
                ++at;
                skipSpace();
                return true;
            }
            if (*at != (isObject[depth - 1] ? '}' : ']')) {
                return false;
            }
            ++at;
            --depth;
            if (depth == 1 && reading != nullptr) {
                reading->end = place();
                reading = nullptr;
            }
            if (depth == 0) {
                return true;
            }
        }
    }

    // A string from its opening quote to past its closing one. `escaped` tells
    // whether it held an escape; false for a string the reader would refuse
    // or one that holds a surrogate, whose pairing is left to the reader.
    bool readString(bool& escaped) {
        ++at;
        while (true) {
            while (isOf(*at, kPlainStringByte)) {
                ++at;
            }
            if (*at == '"') {
                ++at;
                return true;
            }
            if (*at != '\\') {
                return false;  // a control character or the end
            }
            escaped = true;
            ++at;
            switch (*at) {
                case '"':
                case '\\':
                case '/':
                case 'b':
                case 'f':
                case 'n':
                case 'r':
                case 't':
                    ++at;
                    break;
                case 'u': {
                    unsigned code = 0;
                    for (int i = 1; i <= 4; ++i) {
                        if (!isHexDigit(at[i])) {
                            return false;
                        }
                        code = code * 16 + hexValue(at[i]);
                    }
                    if (code >= 0xD800 && code <= 0xDFFF) {
                        return false;
                    }
                    at += 5;
                    break;
                }
                default:
                    return false;
            }
        }
    }

    // A member's name, the colon after it and the white space around it.
    bool readName() {
        if (*at != '"') {
            return false;
        }
        const char* const name = at + 1;
        bool escaped = false;
        if (!readString(escaped)) {
            return false;
        }
        if (depth == 1) {
            if (escaped) {
                return false;
            }
            current =
                facts.firstNamed(std::string_view(name, static_cast<std::size_t>(at - 1 - name)));
            if (current != nullptr) {
                current->seen = true;
                current->keyEnd = place();
            }
        }
        skipSpace();
        if (*at != ':') {
            return false;
        }
        ++at;
        skipSpace();
        return true;
    }

    // A number of at most 18 digits before its point and 2 in its exponent,
    // which a double always holds.
    bool readNumber() {
        if (*at == '-') {
            ++at;
        }
        if (*at == '0') {
            ++at;
        } else {
            const char* const digits = at;
            while (isDigit(*at)) {
                ++at;
            }
            if (at == digits || at - digits > 18) {
                return false;
            }
        }
        if (*at == '.') {
            ++at;
            if (!isDigit(*at)) {
                return false;
            }
            while (isDigit(*at)) {
                ++at;
            }
        }
        if (*at == 'e' || *at == 'E') {
            ++at;
            if (*at == '+' || *at == '-') {
                ++at;
            }
            const char* const digits = at;
            while (isDigit(*at)) {
                ++at;
            }
            if (at == digits || at - digits > 2) {
                return false;
            }
        }
        return true;
    }

    bool readWord(std::string_view word) {
        if (static_cast<std::size_t>(end - at) < word.size() ||
            std::string_view(at, word.size()) != word) {
            return false;
        }
        at += word.size();
        return true;
    }

    // A value that is no container, at `at`.
    bool readScalar() {
        Member* const member = depth == 1 ? current : nullptr;
        current = nullptr;
        bool read = false;
        switch (*at) {
            case '"': {
                const char* const text = at + 1;
                bool escaped = false;
                read = readString(escaped);
                if (read && member == &facts.kind) {
                    if (escaped) {
                        return false;
                    }
                    facts.kindIsString = true;
                    facts.kindName.assign(text, static_cast<std::size_t>(at - 1 - text));
                }
                break;
            }
            case 't':
                read = readWord("true");
                break;
            case 'f':
                read = readWord("false");
                break;
            case 'n':
                read = readWord("null");
                break;
            default:
                read = readNumber();
        }
        if (read && member != nullptr) {
            member->end = place();
        }
        return read;
    }

    const char* const start;
    const char* const end;
    const char* at;
    LineFacts& facts;
    std::array<bool, kMostDepth> isObject{};
    std::size_t depth = 0;
    Member* current = nullptr;  // the member whose value comes next, at the root
    Member* reading = nullptr;  // the member whose container value is open
};

}  // namespace

BatchAnswer answerBatchLine(const std::string& line, std::size_t lineNumber,
                            const RequestJudge& judge, OutputFormat format) {
    if (isBlank(line)) {
        return errorAnswer(lineNumber, "empty line", {}, format);
    }
    LineFacts scan;
    if (!QuickScan(line, scan).run()) {
        scan = LineFacts();
        std::string copy = line;
        LineStream stream(copy.data());
        LineScan reading(stream, scan);
        const rapidjson::ParseResult parsed = scanLine(stream, reading);
        if (parsed.IsError()) {
            return errorAnswer(lineNumber,
                               std::string("not JSON: ") +
                                   rapidjson::GetParseError_En(parsed.Code()) + " (column " +
                                   std::to_string(parsed.Offset() + 1) + ")",
                               {}, format);
        }
    }
    if (!scan.rootIsObject) {
        return errorAnswer(lineNumber, "not a JSON object", {}, format);
    }
    // Made only for an id that is echoed: a tree costs an allocation.
    std::optional<tovjson::Document> idTree;
    EchoedId id;
    if (scan.id.seen && format == OutputFormat::kJson) {
        const std::size_t begin = valueBegin(line, scan.id.keyEnd);
        idTree.emplace();
        idTree->Parse<rapidjson::kParseIterativeFlag>(line.data() + begin, scan.id.end - begin);
        id.value = &*idTree;
        if (scan.idIsBeyondWriting) {
            id.text = std::string_view(line).substr(begin, scan.id.end - begin);
        }
    }
    if (!scan.kind.seen) {
        return errorAnswer(lineNumber, "missing \"kind\"", id, format);
    }
    if (!scan.kindIsString) {
        return errorAnswer(lineNumber, "\"kind\" is not a string", id, format);
    }
    const RequestKind* requestKind = findRequestKind(scan.kindName);
    if (requestKind == nullptr) {
        return errorAnswer(
            lineNumber,
            "unknown kind \"" + scan.kindName + "\"; expected " + requestKindNamesInWords(), id,
            format);
    }
    if (!scan.request.seen) {
        return errorAnswer(lineNumber, "missing \"request\"", id, format);
    }
    if (!scan.requestIsObject) {
        return errorAnswer(lineNumber, "\"request\" is not a JSON object", id, format);
    }
    const TOVResponse response =
        judge(*requestKind, line.substr(scan.request.begin, scan.request.end - scan.request.begin));
    return answerFromResponse(response, id, format);
}

bool holdsNumberBeyondDouble(const std::string& line) {
    std::string copy = line;
    LineStream stream(copy.data());
    LineFacts facts;
    LineScan scan(stream, facts);
    return !scanLine(stream, scan).IsError() && facts.sawNonFiniteNumber;
}

BatchAnswer answerBatchLineFromTree(const std::string& line, std::size_t lineNumber,
                                    const RequestJudge& judge, OutputFormat format) {
    if (isBlank(line)) {
        return errorAnswer(lineNumber, "empty line", {}, format);
    }
    tovjson::Document parsed;
    // Iterative, so that a deeply nested line cannot overflow the stack.
    parsed.Parse<rapidjson::kParseIterativeFlag>(line.c_str(), line.size());
    if (parsed.HasParseError()) {
        return errorAnswer(lineNumber,
                           std::string("not JSON: ") +
                               rapidjson::GetParseError_En(parsed.GetParseError()) + " (column " +
                               std::to_string(parsed.GetErrorOffset() + 1) + ")",
                           {}, format);
    }
    if (!parsed.IsObject()) {
        return errorAnswer(lineNumber, "not a JSON object", {}, format);
    }
    const auto idMember = parsed.FindMember("id");
    const EchoedId id{idMember == parsed.MemberEnd() ? nullptr : &idMember->value, {}};
    const auto kind = parsed.FindMember("kind");
    if (kind == parsed.MemberEnd()) {
        return errorAnswer(lineNumber, "missing \"kind\"", id, format);
    }
    if (!kind->value.IsString()) {
        return errorAnswer(lineNumber, "\"kind\" is not a string", id, format);
    }
    const std::string kindName(kind->value.GetString(), kind->value.GetStringLength());
    const RequestKind* requestKind = findRequestKind(kindName);
    if (requestKind == nullptr) {
        return errorAnswer(
            lineNumber, "unknown kind \"" + kindName + "\"; expected " + requestKindNamesInWords(),
            id, format);
    }
    const auto request = parsed.FindMember("request");
    if (request == parsed.MemberEnd()) {
        return errorAnswer(lineNumber, "missing \"request\"", id, format);
    }
    if (!request->value.IsObject()) {
        return errorAnswer(lineNumber, "\"request\" is not a JSON object", id, format);
    }
    tovjson::StringBuffer requestText;
    JsonWriter requestWriter(requestText);
    writeValue(requestWriter, request->value);
    const TOVResponse response =
        judge(*requestKind, std::string(requestText.GetString(), requestText.GetSize()));
    return answerFromResponse(response, id, format);
}

void trimBatchLine(std::string& line, bool firstLine) {
    if (!line.empty() && line.back() == '\r') {
        line.pop_back();
    }
    if (firstLine && line.compare(0, 3, "\xEF\xBB\xBF") == 0) {
        line.erase(0, 3);
    }
}

bool cutBatchLine(const std::string& input, std::size_t& position, std::string& line) {
    if (position >= input.size()) {
        return false;
    }
    const bool firstLine = position == 0;
    const std::size_t end = std::min(input.find('\n', position), input.size());
    line.assign(input, position, end - position);
    position = end + 1;
    trimBatchLine(line, firstLine);
    return true;
}

RequestJudge judgeWithCoreData(TOVCoreDataControllers* core) {
    return [core](const RequestKind& kind, const std::string& request) {
        return kind.evaluate(request, core);
    };
}

}  // namespace tovcli
