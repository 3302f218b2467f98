// The two documents as the workbench's page sends them, loaded for one
// request into a private core of their own: never into a file, never into a
// core that another request sees, and gone when the request is answered.
#ifndef TOV_TOOLS_WORKBENCH_EDITED_DOCUMENTS_H_
#define TOV_TOOLS_WORKBENCH_EDITED_DOCUMENTS_H_

#include <string>
#include <vector>

#include "documents.h"
#include "session.h"

namespace tovwb {

// The texts of both documents.
struct DocumentTexts {
    std::string rules;
    std::string dataModel;
};

// What names each document in findings and messages: the path it was read
// from at the start.
struct DocumentNames {
    std::string rules;
    std::string dataModel;
};

class EditedDocuments {
public:
    // `texts` must outlive the object; `logFolder` is the library's log, as
    // --log gives it ("" for none).
    EditedDocuments(const DocumentNames& names, const DocumentTexts& texts,
                    const std::string& logFolder);
    EditedDocuments(const EditedDocuments&) = delete;
    EditedDocuments& operator=(const EditedDocuments&) = delete;

    // Loads both documents, the data model first, and keeps what tov check
    // tells about them (the likely mistakes only with `lookForMistakes`, since
    // most questions need no more than the load). True when both loaded. Loads of different objects
    // may run on different threads: they take turns where the library prints.
    bool load(bool lookForMistakes);

    const std::vector<tovcli::Finding>& findings() const { return found; }
    // The faults that kept a document from loading, one per line, for a refusal.
    std::string faultsInWords() const;

    tovcli::PrivateCore& core() { return privateCore; }
    const DocumentNames& names() const { return documentNames; }
    const DocumentTexts& texts() const { return documentTexts; }

private:
    const DocumentNames& documentNames;
    const DocumentTexts& documentTexts;
    tovcli::PrivateCore privateCore;
    std::vector<tovcli::Finding> found;
};

}  // namespace tovwb

#endif  // TOV_TOOLS_WORKBENCH_EDITED_DOCUMENTS_H_
