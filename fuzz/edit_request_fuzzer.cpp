// The edit request in its four flavours, judged against the example
// documents. The first byte picks the flavour (the digits '0' to '3' in the
// seeds: edit, edit before conflict resolution, save, save before conflict
// resolution); the rest is the request.
#include <array>
#include <cstddef>
#include <cstdint>

#include "example_scenario.h"
#include "fuzz_support.h"
#include "tov/tov.h"

namespace {

const std::array<const char*, 4> kFlavours = {"edit", "edit-before-resolution", "save",
                                              "save-before-resolution"};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) {
        return 0;
    }
    const tovtest::RequestFunction evaluate =
        tovtest::requestFunctionOfKind(kFlavours[data[0] % kFlavours.size()]);
    tovfuzz::checkAnswer(evaluate(tovfuzz::asText(data + 1, size - 1), tovfuzz::exampleCoreData()));
    return 0;
}
