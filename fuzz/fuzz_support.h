// What the fuzz targets share: a silent private core data with the example
// documents, and the checks that every answer of the library must pass.
#ifndef TOV_FUZZ_FUZZ_SUPPORT_H_
#define TOV_FUZZ_FUZZ_SUPPORT_H_

#include <cstddef>
#include <cstdint>
#include <string>

class TOVCoreDataControllers;
class TOVResponse;

namespace tovfuzz {

// Tells why on the standard error and aborts, which libFuzzer reports as a
// failing input.
[[noreturn]] void fail(const std::string& why);

// The fuzz input as it stands, zero bytes included.
std::string asText(const std::uint8_t* data, std::size_t size);

// A private core data that logs nowhere, with the example rules and data model
// loaded; made on first use and kept for the run. Aborts if the examples do
// not load, since a target would then test much less than it claims.
TOVCoreDataControllers* exampleCoreData();

// Aborts unless the response's single string reads back into a record that
// writes the very same string: the library's own writer must pass its reader.
void checkAnswer(const TOVResponse& response);

// Evaluates every request of the example scenario on `coreData`, checking
// each answer; the document targets use it to drive the rules they load.
void evaluateEveryExampleRequest(TOVCoreDataControllers* coreData);

}  // namespace tovfuzz

#endif  // TOV_FUZZ_FUZZ_SUPPORT_H_
