#include "fuzz_support.h"

#include <cstdio>
#include <cstdlib>
#include <vector>

#include "example_scenario.h"
#include "tov/tov.h"

namespace tovfuzz {

namespace {

const std::vector<tovtest::ExampleRequest>& exampleRequests() {
    static const std::vector<tovtest::ExampleRequest> requests = [] {
        std::vector<tovtest::ExampleRequest> read = tovtest::readExampleRequests();
        if (read.empty()) {
            fail("The example scenario could not be read.");
        }
        return read;
    }();
    return requests;
}

}  // namespace

void fail(const std::string& why) {
    std::fprintf(stderr, "%s\n", why.c_str());
    std::abort();
}

std::string asText(const std::uint8_t* data, std::size_t size) {
    return {reinterpret_cast<const char*>(data), size};
}

TOVCoreDataControllers* exampleCoreData() {
    struct ExampleCoreData {
        ExampleCoreData() {
            coreData.initializeByMalloc();
            setTOVLoggingFolder("", &coreData);
            if (!tovtest::loadExampleDocuments(&coreData)) {
                fail("The example documents did not load.");
            }
        }
        TOVCoreDataControllers coreData;
    };
    static ExampleCoreData example;
    return &example.coreData;
}

void checkAnswer(const TOVResponse& response) {
    const std::string written = response.turnResponseIntoASingleString();
    TOVResponse readBack;
    if (!readBack.fillResponseFromASingleString(written.c_str())) {
        fail("The reader refused the library's own single string.");
    }
    if (readBack.turnResponseIntoASingleString() != written) {
        fail("The single string did not survive reading and writing again.");
    }
}

void evaluateEveryExampleRequest(TOVCoreDataControllers* coreData) {
    for (const tovtest::ExampleRequest& request : exampleRequests()) {
        checkAnswer(request.evaluate(request.text, coreData));
    }
}

}  // namespace tovfuzz
