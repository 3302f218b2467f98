#include "placed_json.h"

#include <rapidjson/error/en.h>
#include <rapidjson/reader.h>

#include <algorithm>
#include <limits>
#include <utility>

#include "json_files.h"

namespace tovcli {

namespace {

// RapidJSON's string stream lets the reader work on a copy of itself while it
// reads a token, so that its place is not known when the token is told; this
// stream is read in place.
class Stream {
public:
    using Ch = char;

    explicit Stream(const std::string& text) : begin(text.c_str()), at(text.c_str()) {}

    Ch Peek() const { return *at; }
    Ch Take() { return *at++; }
    std::size_t Tell() const { return static_cast<std::size_t>(at - begin); }

    // Writing is never asked of a stream that is only read.
    Ch* PutBegin() { return nullptr; }
    void Put(Ch /*c*/) {}
    void Flush() {}
    std::size_t PutEnd(Ch* /*begin*/) { return 0; }

private:
    const Ch* begin;
    const Ch* at;
};

// Hands every event on to the document and notes where each value and member
// name starts. Between two tokens JSON has only blanks, commas and colons, so
// a token starts at the first other byte after the end of the one before.
class PlacingHandler {
public:
    PlacingHandler(tovjson::Document& document, const std::string& text, const Stream& stream,
                   std::vector<std::uint32_t>& starts)
        : document(document), text(text), stream(stream), starts(starts) {}

    bool Null() { return scalar() && document.Null(); }
    bool Bool(bool value) { return scalar() && document.Bool(value); }
    bool Int(int value) { return scalar() && document.Int(value); }
    bool Uint(unsigned value) { return scalar() && document.Uint(value); }
    bool Int64(std::int64_t value) { return scalar() && document.Int64(value); }
    bool Uint64(std::uint64_t value) { return scalar() && document.Uint64(value); }
    bool Double(double value) { return scalar() && document.Double(value); }
    bool RawNumber(const char* str, rapidjson::SizeType length, bool copy) {
        return scalar() && document.RawNumber(str, length, copy);
    }
    bool String(const char* str, rapidjson::SizeType length, bool copy) {
        return scalar() && document.String(str, length, copy);
    }
    bool Key(const char* str, rapidjson::SizeType length, bool copy) {
        return scalar() && document.Key(str, length, copy);
    }
    bool StartObject() { return opening() && document.StartObject(); }
    bool StartArray() { return opening() && document.StartArray(); }
    bool EndObject(rapidjson::SizeType count) { return closing() && document.EndObject(count); }
    bool EndArray(rapidjson::SizeType count) { return closing() && document.EndArray(count); }

private:
    std::size_t nextToken() const {
        std::size_t at = previousEnd;
        while (at < text.size() && (text[at] == ' ' || text[at] == '\t' || text[at] == '\n' ||
                                    text[at] == '\r' || text[at] == ',' || text[at] == ':')) {
            ++at;
        }
        return at;
    }

    // A string, a name or a literal has been read to its end when it is told.
    bool scalar() {
        starts.push_back(static_cast<std::uint32_t>(nextToken()));
        previousEnd = stream.Tell();
        return true;
    }

    bool opening() {
        const std::size_t at = nextToken();
        starts.push_back(static_cast<std::uint32_t>(at));
        previousEnd = at + 1;
        return true;
    }

    bool closing() {
        previousEnd = nextToken() + 1;
        return true;
    }

    tovjson::Document& document;
    const std::string& text;
    const Stream& stream;
    std::vector<std::uint32_t>& starts;
    std::size_t previousEnd = 0;
};

}  // namespace

bool PlacedJson::parse(std::string input, std::string& error) {
    text = std::move(input);
    starts.clear();
    lineStarts.assign(1, 0);
    for (std::size_t at = text.find('\n'); at != std::string::npos; at = text.find('\n', at + 1)) {
        lineStarts.push_back(at + 1);
    }
    // Places are kept in 32 bits: a larger text is read without them.
    const bool placed = text.size() < std::numeric_limits<std::uint32_t>::max();
    rapidjson::ParseResult result;
    const auto generator = [&](tovjson::Document& document) {
        Stream stream(text);
        rapidjson::GenericReader<rapidjson::UTF8<>, rapidjson::UTF8<>, tovjson::ThrowingAllocator>
            reader;
        if (placed) {
            PlacingHandler handler(document, text, stream, starts);
            result = reader.Parse<rapidjson::kParseIterativeFlag>(stream, handler);
        } else {
            result = reader.Parse<rapidjson::kParseIterativeFlag>(stream, document);
        }
        return !result.IsError();
    };
    json.Populate(generator);
    if (result.IsError()) {
        error =
            textLocation(text, result.Offset()) + ": " + rapidjson::GetParseError_En(result.Code());
        starts.clear();
        return false;
    }
    if (!placed) {
        starts.clear();
    }
    return true;
}

std::unordered_map<const tovjson::Value*, std::string> PlacedJson::placesOf(
    const std::vector<const tovjson::Value*>& wanted) const {
    std::unordered_map<const tovjson::Value*, std::string> places;
    if (wanted.empty() || starts.empty()) {
        return places;
    }
    for (const tovjson::Value* value : wanted) {
        places.emplace(value, std::string());
    }
    std::size_t remaining = places.size();
    std::size_t index = 0;
    const auto visit = [&](const tovjson::Value& value) {
        const auto found = places.find(&value);
        if (found != places.end() && found->second.empty() && index < starts.size()) {
            found->second = lineAndColumn(starts[index]);
            --remaining;
        }
        ++index;
    };
    // The walk keeps its own stack: a value, and how far its members or
    // elements have been walked.
    std::vector<std::pair<const tovjson::Value*, rapidjson::SizeType>> stack;
    visit(json);
    stack.emplace_back(&json, 0);
    while (!stack.empty() && remaining > 0) {
        auto& top = stack.back();
        const tovjson::Value& container = *top.first;
        const rapidjson::SizeType next = top.second++;
        const tovjson::Value* child = nullptr;
        if (container.IsObject() && next < container.MemberCount()) {
            const auto member = container.MemberBegin() + next;
            visit(member->name);
            child = &member->value;
        } else if (container.IsArray() && next < container.Size()) {
            child = &container[next];
        } else {
            stack.pop_back();
            continue;
        }
        visit(*child);
        if (child->IsObject() || child->IsArray()) {
            stack.emplace_back(child, 0);
        }
    }
    for (auto place = places.begin(); place != places.end();) {
        place = place->second.empty() ? places.erase(place) : std::next(place);
    }
    return places;
}

std::string PlacedJson::placeOf(const tovjson::Value& value) const {
    const auto places = placesOf({&value});
    return places.empty() ? std::string() : places.begin()->second;
}

std::string PlacedJson::lineAndColumn(std::size_t offset) const {
    const auto after = std::upper_bound(lineStarts.begin(), lineStarts.end(), offset);
    const std::size_t line = static_cast<std::size_t>(after - lineStarts.begin());
    return std::to_string(line) + ":" + std::to_string(offset - *(after - 1) + 1);
}

}  // namespace tovcli
