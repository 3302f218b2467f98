#include "section_places.h"

#include <rapidjson/reader.h>

#include "json_files.h"

namespace tovwb {

namespace {

// Follows the parse, remembering where the last token ended: a key of the
// top-level object starts at the first quote after it, since only blanks and
// a comma can stand between.
class SectionFinder : public rapidjson::BaseReaderHandler<rapidjson::UTF8<>, SectionFinder> {
public:
    SectionFinder(const std::string& text, const rapidjson::StringStream& stream)
        : text(text), stream(stream) {}

    bool Default() { return moved(); }
    bool StartObject() {
        ++depth;
        return moved();
    }
    bool EndObject(rapidjson::SizeType /*members*/) {
        --depth;
        return moved();
    }
    bool StartArray() {
        ++depth;
        return moved();
    }
    bool EndArray(rapidjson::SizeType /*elements*/) {
        --depth;
        return moved();
    }
    bool Key(const char* name, rapidjson::SizeType length, bool /*copy*/) {
        if (depth == 1) {
            const std::size_t quote = text.find('"', tokenEnd);
            places.emplace(std::string(name, length), tovcli::textLocation(text, quote));
        }
        return moved();
    }

    std::map<std::string, std::string> places;

private:
    bool moved() {
        tokenEnd = stream.Tell();
        return true;
    }

    const std::string& text;
    const rapidjson::StringStream& stream;
    std::size_t tokenEnd = 0;
    int depth = 0;
};

}  // namespace

std::map<std::string, std::string> sectionPlaces(const std::string& text) {
    rapidjson::StringStream stream(text.c_str());
    SectionFinder finder(text, stream);
    rapidjson::Reader reader;
    reader.Parse<rapidjson::kParseIterativeFlag>(stream, finder);
    return std::move(finder.places);
}

}  // namespace tovwb
