// What tov check finds in documents, apart from how it is printed, so that
// the workbench tells the very same faults and notes about the documents it
// edits.
#ifndef TOV_TOOLS_DOCUMENT_CHECK_H_
#define TOV_TOOLS_DOCUMENT_CHECK_H_

#include <cstdint>
#include <vector>

#include "documents.h"
#include "session.h"

namespace tovcli {

// Loads `documents` into `core` (the data model first) and tells each
// outcome and fault; when all loaded, notes a document that holds nothing and
// rules for object types the data model does not describe. True when every
// document loaded.
bool loadAndNote(const std::vector<Document>& documents, std::uint64_t maxInputSize,
                 PrivateCore& core, std::vector<Finding>& findings);

// loadAndNote, then, when all loaded and `lookForMistakes`, the warnings of
// findLikelyMistakes (strict_checks.h) over the same documents: what tov check
// tells. True when every document loaded.
bool checkDocuments(const std::vector<Document>& documents, std::uint64_t maxInputSize,
                    bool lookForMistakes, PrivateCore& core, std::vector<Finding>& findings);

}  // namespace tovcli

#endif  // TOV_TOOLS_DOCUMENT_CHECK_H_
