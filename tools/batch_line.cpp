#include "batch_line.h"

#include <rapidjson/error/en.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
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

// One pass of the reader over a line, keeping what the tree's FindMember
// would find: the first "id", "kind" and "request" of the root object, the
// kind by its value and the other two by the place of their text in the line.
class LineScan : public rapidjson::BaseReaderHandler<rapidjson::UTF8<>, LineScan> {
public:
    struct Member {
        bool seen = false;
        std::size_t keyEnd = 0;  // just past the member's name
        std::size_t begin = 0;   // of a container value, its opening bracket
        std::size_t end = 0;     // just past the value
    };

    explicit LineScan(const LineStream& bytes) : bytes(bytes) {}

    bool Null() { return scalar(); }
    bool Bool(bool /*value*/) { return scalar(); }
    bool Int(int /*value*/) { return scalar(); }
    bool Uint(unsigned /*value*/) { return scalar(); }
    bool Int64(std::int64_t /*value*/) { return scalar(); }
    bool Uint64(std::uint64_t /*value*/) { return scalar(); }
    bool Double(double value) {
        if (!std::isfinite(value)) {
            sawNonFiniteNumber = true;
            if ((depth == 1 && current == &id) || reading == &id) {
                idIsBeyondWriting = true;
            }
        }
        return scalar();
    }
    bool String(const char* text, rapidjson::SizeType length, bool /*copy*/) {
        if (depth == 1 && current == &kind) {
            kindIsString = true;
            kindName.assign(text, length);
        }
        return scalar();
    }
    bool Key(const char* name, rapidjson::SizeType length, bool /*copy*/) {
        if (depth == 1) {
            current = firstNamed(std::string_view(name, length));
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

    bool rootIsObject = false;
    bool sawNonFiniteNumber = false;  // a number beyond a double's range
    bool idIsBeyondWriting = false;   // such a number within the first "id"
    Member id;
    Member kind;
    Member request;
    bool kindIsString = false;
    std::string kindName;
    bool requestIsObject = false;

private:
    // The member a name opens when it is the first of its name, else null.
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

    bool scalar() {
        if (depth == 1 && current != nullptr) {
            current->end = bytes.Tell();
            current = nullptr;
        }
        return true;
    }

    bool open(bool isObject) {
        if (depth == 0) {
            rootIsObject = isObject;
        } else if (depth == 1 && current != nullptr) {
            current->begin = bytes.Tell();
            if (current == &request) {
                requestIsObject = isObject;
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

}  // namespace

BatchAnswer answerBatchLine(const std::string& line, std::size_t lineNumber,
                            const RequestJudge& judge, OutputFormat format) {
    if (isBlank(line)) {
        return errorAnswer(lineNumber, "empty line", {}, format);
    }
    std::string copy = line;
    LineStream stream(copy.data());
    LineScan scan(stream);
    const rapidjson::ParseResult parsed = scanLine(stream, scan);
    if (parsed.IsError()) {
        return errorAnswer(lineNumber,
                           std::string("not JSON: ") + rapidjson::GetParseError_En(parsed.Code()) +
                               " (column " + std::to_string(parsed.Offset() + 1) + ")",
                           {}, format);
    }
    if (!scan.rootIsObject) {
        return errorAnswer(lineNumber, "not a JSON object", {}, format);
    }
    tovjson::Document idTree;
    EchoedId id;
    if (scan.id.seen && format == OutputFormat::kJson) {
        const std::size_t begin = valueBegin(line, scan.id.keyEnd);
        idTree.Parse<rapidjson::kParseIterativeFlag>(line.data() + begin, scan.id.end - begin);
        id.value = &idTree;
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
    LineScan scan(stream);
    return !scanLine(stream, scan).IsError() && scan.sawNonFiniteNumber;
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
