// The doors test's runner for the C++ API: answers every case of a corpus (see
// corpus.py) on one core data, reloading the documents of each group, and
// writes "ID<TAB>ANSWER" lines. Requests go over as text.
//
//   tov_door_cpp CORPUS ANSWERS
#include <fstream>
#include <iostream>
#include <iterator>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "tov/TOVCoreDataControllers.h"
#include "tov/TOVResponse.h"
#include "tov/entry_points.h"

namespace {

using EntryPoint = TOVResponse (*)(const std::string&, TOVCoreDataControllers*);

const std::map<std::string, EntryPoint>& entryPoints() {
    static const std::map<std::string, EntryPoint> kinds = {
        {"rules", &InitializeTOVRules},
        {"datamodel", &InitializeTOV_DMInfo},
        {"edit", &EvaluateTOVEditAttempt},
        {"edit-before-resolution", &EvaluateTOVEditAttemptBeforeConflictResolution},
        {"save", &EvaluateTOVSaveReprFileAttempt},
        {"save-before-resolution", &EvaluateTOVSaveReprFileAttemptBeforeConflictResolution},
        {"link", &EvaluateTOVManualLinkCreation},
        {"options", &EvaluateTOVProperConflictResolutionOptions},
    };
    return kinds;
}

std::vector<std::string> fieldsOf(const std::string& line) {
    std::vector<std::string> fields;
    std::istringstream stream(line);
    for (std::string field; std::getline(stream, field, '\t');) {
        fields.push_back(field);
    }
    return fields;
}

bool readFile(const std::string& path, std::string& text) {
    std::ifstream file(path, std::ios::binary);
    text.assign(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
    return !file.bad() && file.is_open();
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::cerr << "usage: tov_door_cpp CORPUS ANSWERS\n";
        return 2;
    }
    const std::string corpus = argv[1];
    std::ifstream manifest(corpus + "/manifest.tsv");
    std::ofstream out(argv[2], std::ios::binary);
    if (!manifest || !out) {
        std::cerr << "tov_door_cpp: cannot open the manifest or " << argv[2] << "\n";
        return 1;
    }
    TOVCoreDataControllers core;
    core.initializeByMalloc();
    setTOVLoggingFolder("", &core);
    for (std::string line; std::getline(manifest, line);) {
        const std::vector<std::string> fields = fieldsOf(line);
        if (fields.size() == 5 && fields[0] == "group") {
            out << fields[1] << "/datamodel\t"
                << InitializeTOV_DMInfoFromFile(corpus + "/" + fields[3], &core)
                       .turnResponseIntoASingleString()
                << "\n";
            out << fields[1] << "/rules\t"
                << InitializeTOVRulesFromFile(corpus + "/" + fields[4], &core)
                       .turnResponseIntoASingleString()
                << "\n";
        } else if (fields.size() == 5 && fields[0] == "case") {
            const auto kind = entryPoints().find(fields[2]);
            std::string request;
            if (kind == entryPoints().end() || !readFile(corpus + "/" + fields[3], request)) {
                std::cerr << "tov_door_cpp: cannot answer " << fields[1] << "\n";
                return 1;
            }
            out << fields[1] << "\t" << kind->second(request, &core).turnResponseIntoASingleString()
                << "\n";
        }
    }
    out.close();
    return out ? 0 : 1;
}
