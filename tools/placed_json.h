// A JSON document that the program reads for findings, with the place in its
// text of every value and member name, so that a finding can point its author
// at a line and a column. Member names that repeat stay, each with its place.
#ifndef TOV_TOOLS_PLACED_JSON_H_
#define TOV_TOOLS_PLACED_JSON_H_

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

#include "json/json_types.h"

namespace tovcli {

class PlacedJson {
public:
    // Parses `text` iteratively, so that no depth of nesting can exhaust the
    // stack. False, with RapidJSON's message and "LINE:COLUMN" of the fault in
    // `error`, when the text is no JSON.
    bool parse(std::string text, std::string& error);

    const tovjson::Value& root() const { return json; }

    // "LINE:COLUMN" (both from 1, columns in bytes) of each of `wanted`: values
    // of this document or the names of its members. One walk finds them all;
    // a value not of this document is left out.
    std::unordered_map<const tovjson::Value*, std::string> placesOf(
        const std::vector<const tovjson::Value*>& wanted) const;

    // The same for one value or member name; empty when it is none of this document's.
    std::string placeOf(const tovjson::Value& value) const;

private:
    std::string lineAndColumn(std::size_t offset) const;

    std::string text;
    tovjson::Document json;
    // Where each value and member name starts, in the order of the text, which
    // is the order of a walk that visits a value, then each member's name and
    // value, or each element, in turn.
    std::vector<std::uint32_t> starts;
    std::vector<std::size_t> lineStarts;
};

}  // namespace tovcli

#endif  // TOV_TOOLS_PLACED_JSON_H_
