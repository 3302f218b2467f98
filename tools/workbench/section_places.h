// Where the sections of a JSON document begin, so that a finding that names
// only its section can still point an editor at a line.
#ifndef TOV_TOOLS_WORKBENCH_SECTION_PLACES_H_
#define TOV_TOOLS_WORKBENCH_SECTION_PLACES_H_

#include <map>
#include <string>

namespace tovwb {

// Each member name of the top-level object with the place of its key's
// opening quote, "LINE:COLUMN" as tov check tells places (both from 1, the
// column in bytes). The first of a name written twice counts. A text that is
// no JSON gives the members before its fault.
std::map<std::string, std::string> sectionPlaces(const std::string& text);

}  // namespace tovwb

#endif  // TOV_TOOLS_WORKBENCH_SECTION_PLACES_H_
