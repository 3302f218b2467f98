// Rule regression suites for tov test: a JSON document that names the rules
// and data-model documents and lists cases, each a request with the keywords
// its answer must hold.
#ifndef TOV_TOOLS_TEST_SUITE_H_
#define TOV_TOOLS_TEST_SUITE_H_

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "request_kinds.h"
#include "tov/TOVCoreDataControllers.h"
#include "tov/TOVResponse.h"
#include "tov/TOV_DMStructure.h"

namespace tovcli {

struct TestCase {
    std::string name;
    const RequestKind* kind;
    std::string request;                        // the request document as text
    std::map<std::string, std::string> expect;  // keyword to its exact text
    bool exact;                                 // no keyword beyond `expect`
};

struct TestSuite {
    std::string path;
    std::string rulesPath;      // resolved against the suite's folder
    std::string dataModelPath;  // likewise
    std::vector<TestCase> cases;
};

// Reads a suite: {"rules": PATH, "datamodel": PATH, "cases": [{"name", "kind",
// "request" or "requestFile", "expect", "exact"}...]}, paths relative to the
// suite's folder. False, with the message in `error`, for a suite that cannot
// be read or is not such a document.
bool readTestSuite(const std::string& path, std::uint64_t maxInputSize, TestSuite& suite,
                   std::string& error);

// Reads a suite held as text, such as an editor sends it: {"cases": [...]};
// "rules" and "datamodel" are not looked at, since its cases run against the
// documents at hand. Every case carries its "request": one that names a
// "requestFile" is refused, so that no text can make the program read a
// file. `name` names the suite in messages.
bool readTestSuiteText(const std::string& text, const std::string& name, TestSuite& suite,
                       std::string& error);

// One keyword whose text was not as expected, or that one side lacks.
struct Mismatch {
    std::string keyword;
    bool expected;  // the suite expects the keyword
    std::string expectedText;
    bool present;  // the answer holds the keyword
    std::string actualText;
};

// Every keyword that an answer may hold: "Result", "ResultComment" and the
// library's response keywords. A case that expects another is refused.
const std::vector<std::string>& answerKeywords();

// The keywords of an answer with their texts as `tov eval` prints them: the
// result as "Result": "Success" or "Failure", and every run of white space in
// keys and texts one blank, with none at either end.
std::map<std::string, std::string> answerAsPrinted(const TOVResponse& response);

// What differs between an answer's keywords (the result among them, as
// "Result": "Success" or "Failure") and what the case expects.
std::vector<Mismatch> compareAnswer(const TestCase& testCase,
                                    const std::map<std::string, std::string>& answer);

// Keywords and their texts as one JSON object, in the order of the keywords.
std::string keywordsAsJson(const std::map<std::string, std::string>& keywords);

// What one case came to: the whole answer as printed, what differs from the
// expected keywords, and the names of its request that the data model does
// not describe (request_names.h).
struct CaseOutcome {
    std::map<std::string, std::string> answer;
    std::vector<Mismatch> mismatches;
    std::vector<std::string> warnings;
};

// Evaluates the case's request with `core`, whose data model is `dataModel`.
CaseOutcome runCase(const TestCase& testCase, TOVCoreDataControllers* core,
                    const TOV_DMStructure& dataModel);

}  // namespace tovcli

#endif  // TOV_TOOLS_TEST_SUITE_H_
