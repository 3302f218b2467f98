// What tov check finds in documents that load: the mistakes that the library
// takes without a word because its documents are lenient by design. check
// tells each as a warning; --strict makes it an error.
#ifndef TOV_TOOLS_STRICT_CHECKS_H_
#define TOV_TOOLS_STRICT_CHECKS_H_

#include <cstdint>
#include <vector>

#include "documents.h"
#include "tov/TOV_DMStructure.h"

namespace tovcli {

// Reads `documents` once more (each from its text when it is held as one,
// else from its file, within `maxInputSize`) and appends a warning for each
// likely mistake, placed at its line and column, in the order of the
// documents (the data model first) and of their texts: member names repeated
// in one object; unknown sections; fixed words in the wrong case or unknown;
// members a rule kind does not have, and the from value of link rules, which
// no judgement reads; attributes that `dataModel` does not describe; rules
// that can never apply; several transition rules for one value, and "<any>"
// as a transition's from value, all of which must hold; values that no
// transition rule names, or that differ from one only in case where they are
// compared exactly; duplicate rules; and contradictions visible without a
// request. A rule is told as "TYPE #N (explain M)": its place in its object
// type's list and its number in its section, as tov explain numbers it.
// `dataModel` is the loaded data model, empty when none was given.
void findLikelyMistakes(const std::vector<Document>& documents, std::uint64_t maxInputSize,
                        const TOV_DMStructure& dataModel, std::vector<Finding>& findings);

}  // namespace tovcli

#endif  // TOV_TOOLS_STRICT_CHECKS_H_
