// The conflict resolution options query, answered from the example documents.
#include <cstddef>
#include <cstdint>

#include "fuzz_support.h"
#include "tov/tov.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    tovfuzz::checkAnswer(EvaluateTOVProperConflictResolutionOptions(tovfuzz::asText(data, size),
                                                                    tovfuzz::exampleCoreData()));
    return 0;
}
