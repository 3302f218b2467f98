// The four request composers, with object types and packets taken from the
// fuzz bytes. Each must refuse exactly the empty inputs that it documents,
// leave the output alone when it refuses, and otherwise write one JSON object.
#include <fuzzer/FuzzedDataProvider.h>

#include <cstddef>
#include <cstdint>
#include <string>

#include "fuzz_support.h"
#include "json/json_types.h"
#include "tov/tov.h"

namespace {

constexpr std::size_t kMostEntriesInAPacket = 16;
const char* const kUntouched = "untouched";

AttributesMap consumePacket(FuzzedDataProvider& input) {
    AttributesMap packet;
    const auto entries = input.ConsumeIntegralInRange<std::size_t>(0, kMostEntriesInAPacket);
    for (std::size_t i = 0; i < entries; ++i) {
        std::string name = input.ConsumeRandomLengthString();
        packet[name] = input.ConsumeRandomLengthString();
    }
    return packet;
}

void checkIsAnObject(const std::string& json) {
    tovjson::Document document;
    document.Parse<rapidjson::kParseIterativeFlag>(json.c_str());
    if (document.HasParseError() || !document.IsObject()) {
        tovfuzz::fail("Composed text is no JSON object: " + json);
    }
}

void checkComposed(int result, bool mustCompose, const std::string& json) {
    if (result != (mustCompose ? 1 : 0) || (result == 0 && json != kUntouched)) {
        tovfuzz::fail("Composer answered " + std::to_string(result) + ", output " + json);
    }
    if (result == 1) {
        checkIsAnObject(json);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzedDataProvider input(data, size);
    const std::string objectType = input.ConsumeRandomLengthString();
    const AttributesMap initial = consumePacket(input);
    const std::string otherObjectType = input.ConsumeRandomLengthString();
    const AttributesMap target = consumePacket(input);
    const bool uploads = input.ConsumeBool();

    checkIsAnObject(turnStringStringMapIntoJsonString(initial));

    std::string json = kUntouched;
    checkComposed(composeSimpleTransitionJson(objectType, initial, target, json),
                  !objectType.empty() && !target.empty(), json);

    json = kUntouched;
    checkComposed(composeConflictResolutionsOptionsJson(objectType, initial, target, uploads, json),
                  !objectType.empty() && !initial.empty() && !target.empty(), json);

    json = kUntouched;
    checkComposed(
        composeSimpleManualLinkEvaluationJson(objectType, initial, otherObjectType, target, json),
        !objectType.empty() && !initial.empty() && !otherObjectType.empty() && !target.empty(),
        json);
    return 0;
}
