// The tov program's batch line reader, over the example documents. The input
// is cut into lines as the program cuts its input; each line is answered in
// both output forms, and both ways: from the request's own text and from the
// line's tree, which must agree. Every answer must be one line of JSON
// holding an object, and the program's own objects never repeat a key (the
// library's single string may, for keys that differ only in white space, and
// a line's "id" is handed back as it came).

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "batch_line.h"
#include "fuzz_support.h"
#include "json/json_types.h"

namespace {

using tovcli::OutputFormat;

// Walks `value` with a stack of its own, so that the answer's depth cannot
// exhaust the fuzzer's, and fails on an object with two members of one name.
void checkNoRepeatedKey(const tovjson::Value& root, const std::string& answer) {
    std::vector<const tovjson::Value*> pending = {&root};
    while (!pending.empty()) {
        const tovjson::Value* value = pending.back();
        pending.pop_back();
        if (value->IsArray()) {
            for (const tovjson::Value& element : value->GetArray()) {
                pending.push_back(&element);
            }
        } else if (value->IsObject()) {
            std::set<std::string_view> names;
            for (const auto& member : value->GetObject()) {
                const std::string_view name(member.name.GetString(), member.name.GetStringLength());
                if (!names.insert(name).second) {
                    tovfuzz::fail("repeated key \"" + std::string(name) + "\" in " + answer);
                }
                // The line's own "id" comes back as the line gave it.
                if (value != &root || name != "id") {
                    pending.push_back(&member.value);
                }
            }
        }
    }
}

void checkAnswer(const tovcli::BatchAnswer& answer, OutputFormat format) {
    if (answer.text.find('\n') != std::string::npos) {
        tovfuzz::fail("an answer of more than one line: " + answer.text);
    }
    tovjson::Document parsed;
    parsed.Parse<rapidjson::kParseIterativeFlag>(answer.text.c_str(), answer.text.size());
    if (parsed.HasParseError() || !parsed.IsObject()) {
        tovfuzz::fail("an answer that is no JSON object: " + answer.text);
    }
    if (format == OutputFormat::kJson || !answer.wasRequest) {
        checkNoRepeatedKey(parsed, answer.text);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string input = tovfuzz::asText(data, size);
    static const tovcli::RequestJudge judge = tovcli::judgeWithCoreData(tovfuzz::exampleCoreData());
    std::size_t lineNumber = 0;
    std::size_t start = 0;
    while (start <= input.size()) {
        const std::size_t end = std::min(input.find('\n', start), input.size());
        const std::string line = input.substr(start, end - start);
        ++lineNumber;
        for (const OutputFormat format : {OutputFormat::kText, OutputFormat::kJson}) {
            const tovcli::BatchAnswer answer =
                tovcli::answerBatchLine(line, lineNumber, judge, format);
            checkAnswer(answer, format);
            // The request's own text must answer as the text written back from
            // the tree, where the tree can write the line's numbers back.
            if (tovcli::holdsNumberBeyondDouble(line)) {
                continue;
            }
            const tovcli::BatchAnswer fromTree =
                tovcli::answerBatchLineFromTree(line, lineNumber, judge, format);
            if (answer.text != fromTree.text || answer.wasRequest != fromTree.wasRequest) {
                tovfuzz::fail("the line's text answered " + answer.text + " but the tree's " +
                              fromTree.text);
            }
        }
        start = end + 1;
    }
    return 0;
}
