// The faults of a rules or data-model document that does not load, one by
// one, each with the section of the document it concerns: what a load's
// comment tells joined by "|", kept apart for tools that point an author at
// the place, so that no tool needs to read the section from the words.
#ifndef TOV_DOCUMENT_FAULTS_H_
#define TOV_DOCUMENT_FAULTS_H_

#include <string>
#include <vector>

#include "tov/export.h"

struct TOVDocumentFault {
    // The key of the top-level section, such as "transitions" or
    // "structureObjects"; empty for a fault of the document as a whole (no
    // JSON object, a missing necessary member).
    std::string section;
    std::string message;  // as it stands in the load's comment
};

// Reads the document, JSON text or the path of a file as `inputIsFilePath`
// says, the way InitializeTOVRules or InitializeTOV_DMInfo does but into no
// store, and tells its faults in the order of the load's comment; none for a
// document that loads. Nothing is logged.
TOV_API std::vector<TOVDocumentFault> FindTOVRulesDocumentFaults(const std::string& input,
                                                                 bool inputIsFilePath);
TOV_API std::vector<TOVDocumentFault> FindTOV_DMInfoDocumentFaults(const std::string& input,
                                                                   bool inputIsFilePath);

#endif  // TOV_DOCUMENT_FAULTS_H_
