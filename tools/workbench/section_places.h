// Where the sections of a JSON document and the rules in them begin, so that
// a finding that names only its section, or a step of a decision trace that
// names a rule by its place in its section, can still point an editor at a
// line.
#ifndef TOV_TOOLS_WORKBENCH_SECTION_PLACES_H_
#define TOV_TOOLS_WORKBENCH_SECTION_PLACES_H_

#include <map>
#include <string>
#include <vector>

namespace tovwb {

// Places as tov check tells them: "LINE:COLUMN", both from 1, the column in
// bytes.
struct DocumentPlaces {
    // Each member name of the top-level object with the place of its key's
    // opening quote; the first of a name written twice counts.
    std::map<std::string, std::string> sections;
    // For each section, the places where the elements of its object types'
    // lists begin, across the object types in document order: the rules of
    // a rules document in the order in which a decision trace numbers them.
    std::map<std::string, std::vector<std::string>> rules;
};

// The places of `text`. A text that is no JSON gives those before its fault.
DocumentPlaces documentPlaces(const std::string& text);

}  // namespace tovwb

#endif  // TOV_TOOLS_WORKBENCH_SECTION_PLACES_H_
