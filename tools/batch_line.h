// The answer to one line of `tov batch`, apart from how lines are read and
// answers ordered, so that it can be driven by any reader (or a fuzzer).
#ifndef TOV_TOOLS_BATCH_LINE_H_
#define TOV_TOOLS_BATCH_LINE_H_

#include <cstddef>
#include <functional>
#include <string>

#include "json_output.h"
#include "request_kinds.h"
#include "tov/TOVResponse.h"

class TOVCoreDataControllers;

namespace tovcli {

// Judges one request of a kind. The caller decides by which documents: tov
// batch by its loaded core data, the service by the one generation that
// answers the whole batch.
using RequestJudge =
    std::function<TOVResponse(const RequestKind& kind, const std::string& request)>;

struct BatchAnswer {
    std::string text;  // one line of JSON, without its line end
    bool wasRequest;   // false when the line was no request, and `text` tells why
};

// Answers `line` (without its line end), the `lineNumber`th of the input,
// counted from 1, through `judge`. In text form a request
// gets the response's single-string form; in JSON form the object of
// responseAsJson, led by the line's "id" when it has one. A line that is no
// request gets {"line": N, "error": "..."} (with its "id" in JSON form).
// The request reaches `judge` as the very text it has in the line.
BatchAnswer answerBatchLine(const std::string& line, std::size_t lineNumber,
                            const RequestJudge& judge, OutputFormat format);

// The same answer by way of the line's whole tree, with the request written
// back to text from it: the way lines were answered before, kept so that the
// differential test and the fuzz target hold answerBatchLine to it.
BatchAnswer answerBatchLineFromTree(const std::string& line, std::size_t lineNumber,
                                    const RequestJudge& judge, OutputFormat format);

// Whether the line is JSON that holds a number beyond a double's range, such
// as 10e308, which reads as infinity and which no writer writes back: the
// tree's way answers such a line apart (its request loses the number, and an
// "id" holding one is written as nothing), while answerBatchLine hands the
// library the request's own text, as tov eval does, and echoes such an id as
// the line wrote it.
bool holdsNumberBeyondDouble(const std::string& line);

// Makes a line as read (without its "\n") what is answered: drops a "\r"
// before the line end and, on the first line, a byte order mark that some
// editors write.
void trimBatchLine(std::string& line, bool firstLine);

// The next line of requests held whole in `input`, from `position`, which it
// moves past the line end; trimmed as above. Text after the last "\n" is a
// line of its own, and an input that ends with "\n" has no empty line after
// it. False at the end of the input.
bool cutBatchLine(const std::string& input, std::size_t& position, std::string& line);

// A judge that asks the library's request functions with `core`.
RequestJudge judgeWithCoreData(TOVCoreDataControllers* core);

}  // namespace tovcli

#endif  // TOV_TOOLS_BATCH_LINE_H_
