// The data-model document, given as text. A document that loads then serves
// every example request under the example rules.
#include <cstddef>
#include <cstdint>

#include "fuzz_support.h"
#include "tov/tov.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    TOVCoreDataControllers* coreData = tovfuzz::exampleCoreData();
    const TOVResponse loaded = InitializeTOV_DMInfo(tovfuzz::asText(data, size), coreData);
    tovfuzz::checkAnswer(loaded);
    if (loaded.getGeneralResult()) {
        tovfuzz::evaluateEveryExampleRequest(coreData);
    }
    return 0;
}
