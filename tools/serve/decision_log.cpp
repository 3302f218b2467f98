#include "decision_log.h"

#include "json/json_types.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <ctime>

#include "json_output.h"

namespace tovserve {

namespace {

// The length of the well-formed UTF-8 sequence at `at`, or 0.
std::size_t utf8SequenceLength(const std::string& text, std::size_t at) {
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned char lead = byte(at);
    std::size_t length = 0;
    unsigned char low = 0x80;
    unsigned char high = 0xBF;
    if (lead < 0x80) {
        return 1;
    }
    if (lead >= 0xC2 && lead <= 0xDF) {
        length = 2;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        length = 3;
        low = lead == 0xE0 ? 0xA0 : 0x80;
        high = lead == 0xED ? 0x9F : 0xBF;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        length = 4;
        low = lead == 0xF0 ? 0x90 : 0x80;
        high = lead == 0xF4 ? 0x8F : 0xBF;
    } else {
        return 0;
    }
    if (at + length > text.size() || byte(at + 1) < low || byte(at + 1) > high) {
        return 0;
    }
    for (std::size_t i = 2; i < length; ++i) {
        if (byte(at + i) < 0x80 || byte(at + i) > 0xBF) {
            return 0;
        }
    }
    return length;
}

// `text` with every byte that is no part of well-formed UTF-8 replaced by
// U+FFFD, so that the log stays valid JSON whatever a client sent.
std::string wellFormedUtf8(const std::string& text) {
    std::string clean;
    clean.reserve(text.size());
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t length = utf8SequenceLength(text, at);
        if (length == 0) {
            clean += "\xEF\xBF\xBD";
            ++at;
        } else {
            clean.append(text, at, length);
            at += length;
        }
    }
    return clean;
}

// Writes `text` as the JSON value it holds, or as a string when it holds none.
void writeJsonOrString(tovcli::JsonWriter& writer, const std::string& text) {
    tovjson::Document parsed;
    parsed.Parse<rapidjson::kParseIterativeFlag | rapidjson::kParseValidateEncodingFlag>(
        text.c_str(), text.size());
    if (parsed.HasParseError()) {
        tovcli::writeString(writer, wellFormedUtf8(text));
    } else {
        tovcli::writeValue(writer, parsed);
    }
}

}  // namespace

std::string utcTimestamp(std::chrono::system_clock::time_point moment) {
    const auto sinceEpoch =
        std::chrono::duration_cast<std::chrono::microseconds>(moment.time_since_epoch());
    const auto seconds = static_cast<std::time_t>(sinceEpoch.count() / 1'000'000);
    std::tm parts{};
    ::gmtime_r(&seconds, &parts);
    std::array<char, 40> text{};
    const std::size_t length = std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%S", &parts);
    std::snprintf(text.data() + length, text.size() - length, ".%06lldZ",
                  static_cast<long long>(sinceEpoch.count() % 1'000'000));
    return text.data();
}

DecisionLog::~DecisionLog() {
    if (file != nullptr) {
        std::fclose(file);
    }
}

bool DecisionLog::open(const std::string& where, std::string& error) {
    std::lock_guard<std::mutex> lock(mutex);
    path = where;
    file = std::fopen(path.c_str(), "a");
    if (file == nullptr) {
        error = "cannot open the decision log " + path + ": " + std::strerror(errno);
        return false;
    }
    return true;
}

bool DecisionLog::reopen(std::string& error) {
    std::lock_guard<std::mutex> lock(mutex);
    if (path.empty()) {
        return true;
    }
    if (file != nullptr) {
        std::fclose(file);
    }
    file = std::fopen(path.c_str(), "a");
    if (file == nullptr) {
        error = "cannot open the decision log " + path + " again: " + std::strerror(errno);
        return false;
    }
    return true;
}

void DecisionLog::write(const Decision& decision) {
    tovjson::StringBuffer buffer;
    tovcli::JsonWriter writer(buffer);
    writer.StartObject();
    writer.Key("time");
    tovcli::writeString(writer, utcTimestamp(std::chrono::system_clock::now()));
    writer.Key("kind");
    writer.String(decision.kind);
    writer.Key("request");
    writeJsonOrString(writer, decision.request);
    writer.Key("answer");
    writeJsonOrString(writer, decision.answer);
    writer.Key("generation");
    writer.Uint64(decision.generation);
    writer.Key("latencySeconds");
    writer.Double(std::chrono::duration<double>(decision.latency).count());
    writer.EndObject();
    buffer.Put('\n');

    std::lock_guard<std::mutex> lock(mutex);
    if (file != nullptr) {
        // One write per line, flushed, so that a reader that follows the file
        // never sees half a decision.
        std::fwrite(buffer.GetString(), 1, buffer.GetSize(), file);
        std::fflush(file);
    }
}

}  // namespace tovserve
