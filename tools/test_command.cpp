// tov test: run rule regression suites and tell what failed, as a test runner does.
#include <iostream>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "commands.h"
#include "test_suite.h"

namespace tovcli {

namespace {

enum class ReportFormat { kText, kJson, kJunit };

struct TestOptions {
    std::vector<std::string> suites;
    bool verbose = false;
    ReportFormat format = ReportFormat::kText;
    std::string log = "off";
    std::uint64_t maxInputSize = kDefaultMaxInputSize;
};

struct CaseResult {
    const TestSuite* suite;
    const TestCase* testCase;
    std::vector<Mismatch> mismatches;
};

// A text as JSON writes it, quotes and escapes included, so that no text can
// be mistaken for another.
std::string jsonQuoted(const std::string& text) {
    tovjson::StringBuffer buffer;
    JsonWriter writer(buffer);
    writeString(writer, text);
    return {buffer.GetString(), buffer.GetSize()};
}

std::string mismatchInWords(const Mismatch& mismatch) {
    return mismatch.keyword + ": expected " +
           (mismatch.expected ? jsonQuoted(mismatch.expectedText) : std::string("nothing")) +
           ", got " + (mismatch.present ? jsonQuoted(mismatch.actualText) : std::string("nothing"));
}

std::string mismatchesInWords(const std::vector<Mismatch>& mismatches) {
    std::string words;
    for (const Mismatch& mismatch : mismatches) {
        words += (words.empty() ? "" : "; ") + mismatchInWords(mismatch);
    }
    return words;
}

void printText(const std::vector<CaseResult>& results, bool verbose, std::size_t failed,
               std::ostream& out) {
    for (const CaseResult& result : results) {
        const std::string label = result.testCase->name + " (" + result.suite->path + ")";
        if (!result.mismatches.empty()) {
            out << "FAIL " << label << ": " << mismatchesInWords(result.mismatches) << "\n";
        } else if (verbose) {
            out << "PASS " << label << "\n";
        }
    }
    out << results.size() - failed << " passed, " << failed << " failed\n";
}

void writeOptionalText(JsonWriter& writer, bool present, const std::string& text) {
    if (present) {
        writeString(writer, text);
    } else {
        writer.Null();
    }
}

void printJson(const std::vector<CaseResult>& results, std::size_t failed, std::ostream& out) {
    tovjson::StringBuffer buffer;
    JsonWriter writer(buffer);
    writer.StartObject();
    writer.Key("passed");
    writer.Uint64(results.size() - failed);
    writer.Key("failed");
    writer.Uint64(failed);
    writer.Key("cases");
    writer.StartArray();
    for (const CaseResult& result : results) {
        writer.StartObject();
        writer.Key("suite");
        writeString(writer, result.suite->path);
        writer.Key("name");
        writeString(writer, result.testCase->name);
        writer.Key("passed");
        writer.Bool(result.mismatches.empty());
        writer.Key("mismatches");
        writer.StartArray();
        for (const Mismatch& mismatch : result.mismatches) {
            writer.StartObject();
            writer.Key("keyword");
            writeString(writer, mismatch.keyword);
            writer.Key("expected");
            writeOptionalText(writer, mismatch.expected, mismatch.expectedText);
            writer.Key("actual");
            writeOptionalText(writer, mismatch.present, mismatch.actualText);
            writer.EndObject();
        }
        writer.EndArray();
        writer.EndObject();
    }
    writer.EndArray();
    writer.EndObject();
    out << buffer.GetString() << "\n";
}

// Text fit for an XML attribute or element; characters XML 1.0 cannot hold
// become '?'.
std::string xmlEscaped(const std::string& text) {
    std::string escaped;
    for (const char c : text) {
        switch (c) {
            case '&':
                escaped += "&amp;";
                break;
            case '<':
                escaped += "&lt;";
                break;
            case '>':
                escaped += "&gt;";
                break;
            case '"':
                escaped += "&quot;";
                break;
            case '\n':
                escaped += "&#10;";
                break;
            default:
                const auto byte = static_cast<unsigned char>(c);
                escaped += byte < 0x20 && c != '\t' && c != '\r' ? '?' : c;
        }
    }
    return escaped;
}

void printJunit(const std::vector<TestSuite>& suites, const std::vector<CaseResult>& results,
                std::size_t failed, std::ostream& out) {
    out << R"(<?xml version="1.0" encoding="UTF-8"?>)"
        << "\n"
        << R"(<testsuites name="tov test" tests=")" << results.size() << R"(" failures=")" << failed
        << "\">\n";
    for (const TestSuite& suite : suites) {
        std::size_t tests = 0;
        std::size_t failures = 0;
        for (const CaseResult& result : results) {
            if (result.suite == &suite) {
                ++tests;
                failures += result.mismatches.empty() ? 0 : 1;
            }
        }
        const std::string name = xmlEscaped(suite.path);
        out << "  <testsuite name=\"" << name << "\" tests=\"" << tests << "\" failures=\""
            << failures << "\">\n";
        for (const CaseResult& result : results) {
            if (result.suite != &suite) {
                continue;
            }
            out << "    <testcase classname=\"" << name << "\" name=\""
                << xmlEscaped(result.testCase->name) << "\"";
            if (result.mismatches.empty()) {
                out << "/>\n";
                continue;
            }
            out << ">\n      <failure message=\""
                << xmlEscaped(mismatchesInWords(result.mismatches)) << "\">";
            for (const Mismatch& mismatch : result.mismatches) {
                out << xmlEscaped(mismatchInWords(mismatch)) << "&#10;";
            }
            out << "</failure>\n    </testcase>\n";
        }
        out << "  </testsuite>\n";
    }
    out << "</testsuites>\n";
}

// Loads the suite's documents and runs its cases. False when the documents
// cannot be read or do not load; their faults are then told on standard error.
bool runSuite(const TestSuite& suite, const TestOptions& options,
              std::vector<CaseResult>& results) {
    const DocumentPaths paths{suite.rulesPath, suite.dataModelPath, options.maxInputSize};
    bool unreadable = false;
    const std::unique_ptr<PrivateCore> core = loadCommandDocuments(options.log, paths, unreadable);
    if (core == nullptr) {
        if (!unreadable) {
            std::cerr << "tov: the documents of suite " << suite.path << " do not load\n";
        }
        return false;
    }
    for (const TestCase& testCase : suite.cases) {
        const TOVResponse response = testCase.kind->evaluate(testCase.request, core->get());
        results.push_back({&suite, &testCase, compareAnswer(testCase, answerAsPrinted(response))});
    }
    return true;
}

int runTests(const TestOptions& options) {
    // Every suite is read before any runs: one that cannot be read stops all.
    std::vector<TestSuite> suites(options.suites.size());
    for (std::size_t i = 0; i < suites.size(); ++i) {
        std::string error;
        if (!readTestSuite(options.suites[i], options.maxInputSize, suites[i], error)) {
            std::cerr << "tov: " << error << "\n";
            return kExitUsageOrInput;
        }
    }
    std::vector<CaseResult> results;
    for (const TestSuite& suite : suites) {
        if (!runSuite(suite, options, results)) {
            return kExitUsageOrInput;
        }
    }
    std::size_t failed = 0;
    for (const CaseResult& result : results) {
        failed += result.mismatches.empty() ? 0 : 1;
    }
    switch (options.format) {
        case ReportFormat::kJson:
            printJson(results, failed, std::cout);
            break;
        case ReportFormat::kJunit:
            printJunit(suites, results, failed, std::cout);
            break;
        default:
            printText(results, options.verbose, failed, std::cout);
    }
    return failed == 0 ? kExitSuccess : kExitFailure;
}

}  // namespace

Command addTestCommand(CLI::App& program) {
    auto options = std::make_shared<TestOptions>();
    CLI::App* command =
        program.add_subcommand("test", "Run rule regression suites: requests and their answers");
    command->add_option("SUITE", options->suites, "Suites (JSON) to run, in order")
        ->type_name("FILE")
        ->required();
    command->add_flag("-v,--verbose", options->verbose, "Tell passing cases too");
    command->add_option("--format", options->format, "How the outcome is written")
        ->type_name("text|json|junit")
        ->transform(CLI::CheckedTransformer(
            std::map<std::string, ReportFormat>{{"text", ReportFormat::kText},
                                                {"json", ReportFormat::kJson},
                                                {"junit", ReportFormat::kJunit}}))
        ->default_str("text");
    addLogOption(*command, options->log);
    addMaxInputSizeOption(*command, options->maxInputSize);
    command->footer(helpText({
        "A suite: {\"rules\": PATH, \"datamodel\": PATH, \"cases\": [CASE, ...]}, paths "
        "relative to the suite's folder. A case: {\"name\": ..., \"kind\": KIND, \"request\": "
        "{...}} or \"requestFile\": PATH in place of \"request\", and \"expect\": an object of "
        "keywords of the answer, each with its exact text, such as {\"Result\": \"Failure\", "
        "\"ObjectFamilyMembers\": \"MissingData\"}, the texts as eval prints them (every run "
        "of white space one blank). Keywords not named are not looked at, unless \"exact\": "
        "true. KIND is one of " +
            requestKindNamesInWords() + ", as for eval.",
        "Output (standard output): one line per failing case, \"FAIL NAME (SUITE): KEYWORD: "
        "expected TEXT, got TEXT\" (\"nothing\" for an absent keyword), with -v also \"PASS "
        "NAME (SUITE)\", and last \"N passed, M failed\". --format json gives one object "
        "{\"passed\", \"failed\", \"cases\": [{\"suite\", \"name\", \"passed\", \"mismatches\": "
        "[{\"keyword\", \"expected\", \"actual\"}]}]}; --format junit a JUnit XML report.",
        // NOLINTNEXTLINE(bugprone-suspicious-missing-comma): one paragraph over two lines.
        "Exit status: 0 when every case passed, 1 when one failed, 2 for a suite that cannot "
        "be read, or documents that do not load (nothing is told on standard output then).",
        kLogHelp,
        kMaxInputSizeHelp,
        "Example: tov test examples/tests.json",
    }));
    return {command, [options] { return runTests(*options); }};
}

}  // namespace tovcli
