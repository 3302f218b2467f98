// The rules document, given as text. A document that loads then judges every
// example request against the example data model, so that the rule kinds'
// predicates meet rules that nobody wrote by hand.
#include <cstddef>
#include <cstdint>

#include "fuzz_support.h"
#include "tov/tov.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    TOVCoreDataControllers* coreData = tovfuzz::exampleCoreData();
    const TOVResponse loaded = InitializeTOVRules(tovfuzz::asText(data, size), coreData);
    tovfuzz::checkAnswer(loaded);
    if (loaded.getGeneralResult()) {
        coreData->getRules()->expressRulesInWords();
        coreData->getRules()->describeTriggerRules();
        tovfuzz::evaluateEveryExampleRequest(coreData);
    }
    return 0;
}
