#include "section_places.h"

#include <rapidjson/reader.h>

#include <array>

#include "json_files.h"

namespace tovwb {

namespace {

// Follows the parse and notes where keys and values begin. RapidJSON's
// reader tells of a bracket, a string, a key or a number while its stream
// stands at the token's first character, and of true, false and null once
// it has read them; tests/workbench/section_places_test.cpp holds it to that.
class PlaceFinder : public rapidjson::BaseReaderHandler<rapidjson::UTF8<>, PlaceFinder> {
public:
    PlaceFinder(const std::string& text, const rapidjson::StringStream& stream)
        : text(text), stream(stream) {}

    bool Null() { return value(stream.Tell() - std::size("null") + 1); }
    bool Bool(bool truth) {
        return value(stream.Tell() - (truth ? std::size("true") : std::size("false")) + 1);
    }
    bool Default() { return value(stream.Tell()); }  // strings and numbers
    bool StartObject() { return open(false); }
    bool EndObject(rapidjson::SizeType /*members*/) { return close(); }
    bool StartArray() { return open(true); }
    bool EndArray(rapidjson::SizeType /*elements*/) { return close(); }
    bool Key(const char* name, rapidjson::SizeType length, bool /*copy*/) {
        if (depth == 1) {
            const std::string key(name, length);
            const bool first = places.sections.emplace(key, placeAt(stream.Tell())).second;
            section = first ? key : std::string();
        }
        return true;
    }

    DocumentPlaces places;

private:
    // The root object, a section's object, an object type's list: the
    // containers whose kinds tell whether a value is a rule.
    static constexpr int kRuleDepth = 3;

    bool open(bool isArray) {
        value(stream.Tell());
        if (depth < kRuleDepth) {
            arrays.at(static_cast<std::size_t>(depth)) = isArray;
        }
        ++depth;
        return true;
    }

    bool close() {
        --depth;
        return true;
    }

    // A value begins at `offset`: an element of an object type's list is a rule.
    bool value(std::size_t offset) {
        if (depth == kRuleDepth && !section.empty() && !arrays[0] && !arrays[1] && arrays[2]) {
            places.rules[section].push_back(placeAt(offset));
        }
        return true;
    }

    std::string placeAt(std::size_t offset) const { return tovcli::textLocation(text, offset); }

    const std::string& text;
    const rapidjson::StringStream& stream;
    int depth = 0;
    std::array<bool, kRuleDepth> arrays{};  // whether each of the outer containers is a list
    std::string section;                    // the section being read, empty for a repeated one
};

}  // namespace

DocumentPlaces documentPlaces(const std::string& text) {
    rapidjson::StringStream stream(text.c_str());
    PlaceFinder finder(text, stream);
    rapidjson::Reader reader;
    reader.Parse<rapidjson::kParseIterativeFlag>(stream, finder);
    return std::move(finder.places);
}

}  // namespace tovwb
