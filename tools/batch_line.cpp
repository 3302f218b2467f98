#include "batch_line.h"

#include <rapidjson/error/en.h>

#include <algorithm>

namespace tovcli {

namespace {

// Opens the answer object, led by the line's "id" in JSON form.
void startAnswer(JsonWriter& writer, const tovjson::Value* id, OutputFormat format) {
    writer.StartObject();
    if (id != nullptr && format == OutputFormat::kJson) {
        writer.Key("id");
        writeValue(writer, *id);
    }
}

BatchAnswer errorAnswer(std::size_t lineNumber, const std::string& message,
                        const tovjson::Value* id, OutputFormat format) {
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

}  // namespace

BatchAnswer answerBatchLine(const std::string& line, std::size_t lineNumber,
                            const RequestJudge& judge, OutputFormat format) {
    if (isBlank(line)) {
        return errorAnswer(lineNumber, "empty line", nullptr, format);
    }
    tovjson::Document parsed;
    // Iterative, so that a deeply nested line cannot overflow the stack.
    parsed.Parse<rapidjson::kParseIterativeFlag>(line.c_str(), line.size());
    if (parsed.HasParseError()) {
        return errorAnswer(lineNumber,
                           std::string("not JSON: ") +
                               rapidjson::GetParseError_En(parsed.GetParseError()) + " (column " +
                               std::to_string(parsed.GetErrorOffset() + 1) + ")",
                           nullptr, format);
    }
    if (!parsed.IsObject()) {
        return errorAnswer(lineNumber, "not a JSON object", nullptr, format);
    }
    const auto idMember = parsed.FindMember("id");
    const tovjson::Value* id = idMember == parsed.MemberEnd() ? nullptr : &idMember->value;
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
