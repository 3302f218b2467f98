// What tov check --strict finds in documents that load: the mistakes that the
// library takes without a word because its documents are lenient by design.
#ifndef TOV_TOOLS_STRICT_CHECKS_H_
#define TOV_TOOLS_STRICT_CHECKS_H_

#include <cstdint>
#include <vector>

#include "documents.h"
#include "tov/TOV_DMStructure.h"

namespace tovcli {

// Reads the documents of `paths` once more and appends a note for each
// suspicious thing: unknown sections, fixed words in the wrong case or
// unknown, attributes that `dataModel` does not describe, rules that can never
// apply, duplicate rules, and contradictions visible without a request.
// `dataModel` is the loaded data model, empty when none was given.
void checkStrictly(const DocumentPaths& paths, const TOV_DMStructure& dataModel,
                   std::vector<Finding>& findings);

// The same for documents that may be held as texts (the workbench's edits):
// each is read from its text when it has one, else from its file.
void checkStrictly(const std::vector<Document>& documents, std::uint64_t maxInputSize,
                   const TOV_DMStructure& dataModel, std::vector<Finding>& findings);

}  // namespace tovcli

#endif  // TOV_TOOLS_STRICT_CHECKS_H_
