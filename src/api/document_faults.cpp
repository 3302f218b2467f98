#include "tov/document_faults.h"

#include "dm/TOV_DMInfoJsonParsers.h"
#include "frame/input_labels.h"
#include "rules/TOVInitializationJsonParser.h"
#include "tov/TOVLifecycleBusinessRules.h"
#include "tov/TOV_DMStructure.h"

namespace {

// As the load answers: an empty input is insufficient, text that is no JSON
// object has the parser's one comment, and a parsed document the faults of
// its sections. The store that `parser` fills is thrown away.
template <typename Parser>
std::vector<TOVDocumentFault> faultsOf(Parser& parser, const std::string& input,
                                       bool inputIsFilePath) {
    if (input.empty()) {
        return {{std::string(), kInsufficientInputData}};
    }
    if (!parser.load(input, inputIsFilePath)) {
        return {{std::string(), parser.getParsingErrorComment()}};
    }
    parser.parseAllSections();
    std::vector<TOVDocumentFault> faults;
    for (const auto& fault : parser.getSectionFaults()) {
        faults.push_back({fault.first, fault.second});
    }
    return faults;
}

}  // namespace

std::vector<TOVDocumentFault> FindTOVRulesDocumentFaults(const std::string& input,
                                                         bool inputIsFilePath) {
    TOVLifecycleBusinessRules scratch;
    TOVInitializationJsonParser parser(&scratch);
    return faultsOf(parser, input, inputIsFilePath);
}

std::vector<TOVDocumentFault> FindTOV_DMInfoDocumentFaults(const std::string& input,
                                                           bool inputIsFilePath) {
    TOV_DMStructure scratch;
    TOV_DMInfoJsonParser parser(&scratch);
    return faultsOf(parser, input, inputIsFilePath);
}
