// The answer to one line of `tov batch`, apart from how lines are read and
// answers ordered, so that it can be driven by any reader (or a fuzzer).
#ifndef TOV_TOOLS_BATCH_LINE_H_
#define TOV_TOOLS_BATCH_LINE_H_

#include <cstddef>
#include <string>

#include "json_output.h"
#include "tov/TOVCoreDataControllers.h"

namespace tovcli {

struct BatchAnswer {
    std::string text;  // one line of JSON, without its line end
    bool wasRequest;   // false when the line was no request, and `text` tells why
};

// Answers `line` (without its line end), the `lineNumber`th of the input,
// counted from 1, with the documents loaded in `core`. In text form a request
// gets the response's single-string form; in JSON form the object of
// responseAsJson, led by the line's "id" when it has one. A line that is no
// request gets {"line": N, "error": "..."} (with its "id" in JSON form).
BatchAnswer answerBatchLine(const std::string& line, std::size_t lineNumber,
                            TOVCoreDataControllers* core, OutputFormat format);

}  // namespace tovcli

#endif  // TOV_TOOLS_BATCH_LINE_H_
