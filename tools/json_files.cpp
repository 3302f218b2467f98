#include "json_files.h"

#include <rapidjson/error/en.h>

#include <algorithm>
#include <numeric>
#include <vector>

#include "input_files.h"

namespace tovcli {

bool parseJsonFile(const std::string& path, const char* what, std::uint64_t limit,
                   tovjson::Document& json, std::string& error) {
    std::string text;
    if (!readInput(path, what, limit, text, error)) {
        return false;
    }
    json.Parse<rapidjson::kParseIterativeFlag>(text.c_str(), text.size());
    if (!json.HasParseError()) {
        return true;
    }
    error = path + ":" + textLocation(text, json.GetErrorOffset()) + ": " +
            rapidjson::GetParseError_En(json.GetParseError());
    return false;
}

std::string textLocation(const std::string& text, std::size_t offset) {
    const auto end = text.begin() + static_cast<std::ptrdiff_t>(std::min(offset, text.size()));
    const auto line = 1 + std::count(text.begin(), end, '\n');
    const auto lineStart = std::find(std::make_reverse_iterator(end), text.rend(), '\n').base();
    return std::to_string(line) + ":" + std::to_string(end - lineStart + 1);
}

const tovjson::Value* findString(const tovjson::Value& object, const char* name) {
    if (!object.IsObject()) {
        return nullptr;
    }
    const auto member = object.FindMember(name);
    return member != object.MemberEnd() && member->value.IsString() ? &member->value : nullptr;
}

const tovjson::Value* findArray(const tovjson::Value& object, const char* name) {
    if (!object.IsObject()) {
        return nullptr;
    }
    const auto member = object.FindMember(name);
    return member != object.MemberEnd() && member->value.IsArray() ? &member->value : nullptr;
}

std::string stringOf(const tovjson::Value& object, const char* name) {
    const tovjson::Value* value = findString(object, name);
    return value == nullptr ? std::string()
                            : std::string(value->GetString(), value->GetStringLength());
}

const char* jsonTypeName(const tovjson::Value& value) {
    switch (value.GetType()) {
        case rapidjson::kNullType:
            return "null";
        case rapidjson::kFalseType:
        case rapidjson::kTrueType:
            return "boolean";
        case rapidjson::kArrayType:
            return "array";
        case rapidjson::kStringType:
            return "string";
        case rapidjson::kNumberType:
            return "number";
        default:
            return "object";
    }
}

namespace {

std::size_t editDistance(const std::string& from, const std::string& to) {
    std::vector<std::size_t> previous(to.size() + 1);
    std::iota(previous.begin(), previous.end(), std::size_t{0});
    std::vector<std::size_t> current(to.size() + 1);
    for (std::size_t i = 1; i <= from.size(); ++i) {
        current[0] = i;
        for (std::size_t j = 1; j <= to.size(); ++j) {
            const std::size_t substitution = previous[j - 1] + (from[i - 1] == to[j - 1] ? 0 : 1);
            current[j] = std::min({previous[j] + 1, current[j - 1] + 1, substitution});
        }
        std::swap(previous, current);
    }
    return previous[to.size()];
}

}  // namespace

std::string nearestWord(const std::string& word, const std::vector<std::string>& candidates,
                        std::size_t maxDistance) {
    std::string nearest;
    std::size_t best = maxDistance + 1;
    for (const std::string& candidate : candidates) {
        const std::size_t distance = editDistance(word, candidate);
        if (distance < best) {
            best = distance;
            nearest = candidate;
        }
    }
    return nearest;
}

}  // namespace tovcli
