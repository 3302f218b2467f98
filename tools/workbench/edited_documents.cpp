#include "edited_documents.h"

#include <mutex>

#include "document_check.h"

namespace tovwb {

EditedDocuments::EditedDocuments(const DocumentNames& names, const DocumentTexts& texts,
                                 const std::string& logFolder)
    : documentNames(names), documentTexts(texts), privateCore(logFolder) {}

bool EditedDocuments::load(bool lookForMistakes) {
    using tovcli::Document;
    const std::vector<Document> documents = {
        {Document::kDataModel, documentNames.dataModel, documentTexts.dataModel.size(),
         &documentTexts.dataModel},
        {Document::kRules, documentNames.rules, documentTexts.rules.size(), &documentTexts.rules},
    };
    // The library prints its notices on standard output while it loads, and
    // the check takes that descriptor for the time of the load: one load at
    // a time in the process.
    static std::mutex printing;
    const std::lock_guard<std::mutex> lock(printing);
    found.clear();
    const std::uint64_t noFileIsRead = 0;
    return tovcli::checkDocuments(documents, noFileIsRead, lookForMistakes, privateCore, found);
}

std::string EditedDocuments::faultsInWords() const {
    std::string words;
    for (const tovcli::Finding& finding : found) {
        if (finding.severity == tovcli::Finding::kFault) {
            words += (words.empty() ? "" : "\n") + finding.document + ": " + finding.message;
        }
    }
    return words;
}

}  // namespace tovwb
