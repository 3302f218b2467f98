// The reader of the single-string form, as a host across a language boundary
// uses it, and the writer behind it. Whatever the first reading took, writing
// it out and reading that back must settle: the second text is written again
// unchanged. (The first write may still differ from the second, since keys
// that differ only in white space collapse into one member on reading.)
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "fuzz_support.h"
#include "tov/tov.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text = tovfuzz::asText(data, size);
    TOVResponse response;
    response.fillResponseFromASingleString(text.c_str());
    response.createVemoInfoMessage();
    TOVMissingDataForEvaluation missing;
    response.needsReevaluation(missing);
    AttributesMap triggers;
    response.collectAttrsToTriggerInitialization(triggers);
    std::vector<std::string> options;
    response.collectConflictResolutionOptions(options);

    TOVResponse settled;
    if (!settled.fillResponseFromASingleString(response.turnResponseIntoASingleString().c_str())) {
        tovfuzz::fail("The reader refused the single string of what it had read.");
    }
    tovfuzz::checkAnswer(settled);
    return 0;
}
