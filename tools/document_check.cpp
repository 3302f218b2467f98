#include "document_check.h"

#include <algorithm>
#include <string>

#include "strict_checks.h"

namespace tovcli {

namespace {

// A document that loads but holds nothing makes every evaluation fail, which
// its author would rather hear now.
void noteEmptyStores(const DocumentPaths& paths, PrivateCore& core,
                     std::vector<Finding>& findings) {
    if (!paths.dataModelPath.empty() && !core.dataModel().existAnyInfo()) {
        findings.push_back({Finding::kNote,
                            paths.dataModelPath,
                            "structureObjects",
                            {},
                            "no object types, so evaluations that need them will be refused "
                            "with \"Uninitialized Dm Information\""});
    }
    if (!core.rules().existAnyRules()) {
        findings.push_back({Finding::kNote,
                            paths.rulesPath,
                            {},
                            {},
                            "no rules, so every request will be refused with \"Uninitialized "
                            "TOV rules\""});
    }
}

// A rule written for an object type that the data model does not describe is
// most often a misspelt name, and such a rule quietly never applies.
void noteUnknownObjectTypes(const DocumentPaths& paths, PrivateCore& core,
                            std::vector<Finding>& findings) {
    if (paths.dataModelPath.empty() || !core.dataModel().existAnyInfo()) {
        return;
    }
    const std::vector<TOV_DMStructureObject>& described = core.dataModel().getAllStructureObjects();
    for (const std::string& objectType : core.rules().collectObjectTypesOfRules()) {
        const bool known = std::any_of(
            described.begin(), described.end(), [&](const TOV_DMStructureObject& object) {
                return core.dataModel().areObjectTypesThatShouldBeConsideredEqual(objectType,
                                                                                  object.getName());
            });
        if (!known) {
            findings.push_back({Finding::kNote,
                                paths.rulesPath,
                                {},
                                {},
                                "the rules for " + objectType +
                                    " concern no object type of the data model " +
                                    paths.dataModelPath});
        }
    }
}

}  // namespace

bool loadAndNote(const std::vector<Document>& documents, std::uint64_t maxInputSize,
                 PrivateCore& core, std::vector<Finding>& findings) {
    const bool allLoaded = loadDocuments(documents, core, maxInputSize, findings);
    if (allLoaded) {
        DocumentPaths paths;
        paths.maxInputSize = maxInputSize;
        for (const Document& document : documents) {
            (document.kind == Document::kRules ? paths.rulesPath : paths.dataModelPath) =
                document.path;
        }
        noteEmptyStores(paths, core, findings);
        noteUnknownObjectTypes(paths, core, findings);
    }
    return allLoaded;
}

bool checkDocuments(const std::vector<Document>& documents, std::uint64_t maxInputSize,
                    bool lookForMistakes, PrivateCore& core, std::vector<Finding>& findings) {
    const bool allLoaded = loadAndNote(documents, maxInputSize, core, findings);
    if (allLoaded && lookForMistakes) {
        findLikelyMistakes(documents, maxInputSize, core.dataModel(), findings);
    }
    return allLoaded;
}

}  // namespace tovcli
