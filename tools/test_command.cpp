// tov test: run rule regression suites and tell what failed, as a test runner does.
#include <algorithm>
#include <array>
#include <iomanip>
#include <iostream>
#include <map>
#include <memory>
#include <set>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "commands.h"
#include "test_suite.h"
#include "tov/TOVDecisionTrace.h"
#include "tov/TOVLifecycleBusinessRules.h"
#include "tov/rule_kinds.h"

namespace tovcli {

namespace {

enum class ReportFormat { kText, kJson, kJunit };

struct TestOptions {
    std::vector<std::string> suites;
    bool verbose = false;
    ReportFormat format = ReportFormat::kText;
    std::string log = "off";
    std::uint64_t maxInputSize = kDefaultMaxInputSize;
    bool coverage = false;
    double coverageMin = 0;  // percent; 0 asks nothing
    bool strict = false;     // names the data model does not describe are errors
};

struct CaseResult {
    const TestSuite* suite;
    const TestCase* testCase;
    CaseOutcome outcome;
};

// Which rules of one rules document the cases exercised: consulted, and
// binding (any outcome but "not applicable").
struct DocumentCoverage {
    std::string rulesPath;
    std::array<std::size_t, TOVRuleKindCount> totals{};
    std::array<std::set<std::size_t>, TOVRuleKindCount> exercised;  // document positions
    // The rules never exercised, each as its place (from 1) and its words.
    std::array<std::vector<std::pair<std::size_t, std::string>>, TOVRuleKindCount> never;
};

std::size_t exercisedCount(const DocumentCoverage& coverage) {
    std::size_t count = 0;
    for (const auto& positions : coverage.exercised) {
        count += positions.size();
    }
    return count;
}

std::size_t totalCount(const DocumentCoverage& coverage) {
    std::size_t count = 0;
    for (const std::size_t total : coverage.totals) {
        count += total;
    }
    return count;
}

// A document without rules leaves nothing to exercise: all of it is covered.
double percentOf(std::size_t part, std::size_t whole) {
    return whole == 0 ? 100.0 : 100.0 * static_cast<double>(part) / static_cast<double>(whole);
}

std::string percentInWords(double percent) {
    std::ostringstream words;
    words << std::fixed << std::setprecision(1) << percent << "%";
    return words.str();
}

// Notes each binding rule of a trace in the coverage of its document.
void noteExercised(const std::vector<TOVRuleConsultation>& steps, DocumentCoverage& coverage) {
    for (const TOVRuleConsultation& step : steps) {
        if (step.outcome != TOVRuleOutcome_NotApplicable) {
            coverage.exercised[step.kind].insert(step.documentPosition);
        }
    }
}

// Takes the store's count and words of every rule not exercised.
void finishCoverage(const TOVLifecycleBusinessRules& rules, DocumentCoverage& coverage) {
    for (const TOVRuleKindWords& kind : GetTOVRuleKinds()) {
        const std::size_t count = rules.countRules(kind.kind);
        coverage.totals[kind.kind] = count;
        std::vector<std::pair<std::size_t, std::string>>& never = coverage.never[kind.kind];
        never.clear();
        for (std::size_t index = 0; index < count; ++index) {
            const std::size_t position = rules.documentPositionOfRule(kind.kind, index);
            if (coverage.exercised[kind.kind].count(position) == 0) {
                never.emplace_back(position + 1, rules.ruleInWords(kind.kind, index));
            }
        }
        std::sort(never.begin(), never.end());
    }
}

void printCoverageText(const std::vector<DocumentCoverage>& coverages, std::ostream& out) {
    for (const DocumentCoverage& coverage : coverages) {
        const std::size_t exercised = exercisedCount(coverage);
        const std::size_t total = totalCount(coverage);
        out << "Coverage of " << coverage.rulesPath << ": " << exercised << " of " << total
            << " rules exercised (" << percentInWords(percentOf(exercised, total)) << ")\n";
        for (const TOVRuleKindWords& kind : GetTOVRuleKinds()) {
            if (coverage.totals[kind.kind] == 0) {
                continue;
            }
            out << "  " << kind.section << ": " << coverage.exercised[kind.kind].size() << " of "
                << coverage.totals[kind.kind] << "\n";
            for (const auto& [number, words] : coverage.never[kind.kind]) {
                out << "    never: #" << number << " " << words << "\n";
            }
        }
    }
}

void writeCoverageJson(const std::vector<DocumentCoverage>& coverages, JsonWriter& writer) {
    writer.StartArray();
    for (const DocumentCoverage& coverage : coverages) {
        const std::size_t exercised = exercisedCount(coverage);
        const std::size_t total = totalCount(coverage);
        writer.StartObject();
        writer.Key("rules");
        writeString(writer, coverage.rulesPath);
        writer.Key("exercised");
        writer.Uint64(exercised);
        writer.Key("total");
        writer.Uint64(total);
        writer.Key("percent");
        writer.Double(percentOf(exercised, total));
        writer.Key("kinds");
        writer.StartArray();
        for (const TOVRuleKindWords& kind : GetTOVRuleKinds()) {
            writer.StartObject();
            writer.Key("section");
            writer.String(kind.section);
            writer.Key("exercised");
            writer.Uint64(coverage.exercised[kind.kind].size());
            writer.Key("total");
            writer.Uint64(coverage.totals[kind.kind]);
            writer.Key("never");
            writer.StartArray();
            for (const auto& [number, words] : coverage.never[kind.kind]) {
                writer.StartObject();
                writer.Key("number");
                writer.Uint64(number);
                writer.Key("rule");
                writeString(writer, words);
                writer.EndObject();
            }
            writer.EndArray();
            writer.EndObject();
        }
        writer.EndArray();
        writer.EndObject();
    }
    writer.EndArray();
}

// The coverage of the document at `rulesPath`, made when first asked for:
// suites that share a rules document share its coverage.
DocumentCoverage& coverageOf(const std::string& rulesPath,
                             std::vector<DocumentCoverage>& coverages) {
    for (DocumentCoverage& coverage : coverages) {
        if (coverage.rulesPath == rulesPath) {
            return coverage;
        }
    }
    coverages.push_back({});
    coverages.back().rulesPath = rulesPath;
    return coverages.back();
}

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
        if (!result.outcome.mismatches.empty()) {
            // The difference first, then both answers whole, the comment among them.
            out << "FAIL " << label << ": " << mismatchesInWords(result.outcome.mismatches) << "\n"
                << "  expected: " << keywordsAsJson(result.testCase->expect) << "\n"
                << "  actual:   " << keywordsAsJson(result.outcome.answer) << "\n";
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

void printJson(const std::vector<CaseResult>& results, std::size_t failed,
               const std::vector<DocumentCoverage>* coverages, std::ostream& out) {
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
        writer.Bool(result.outcome.mismatches.empty());
        writer.Key("expected");
        const std::string expected = keywordsAsJson(result.testCase->expect);
        writer.RawValue(expected.c_str(), expected.size(), rapidjson::kObjectType);
        writer.Key("actual");
        const std::string actual = keywordsAsJson(result.outcome.answer);
        writer.RawValue(actual.c_str(), actual.size(), rapidjson::kObjectType);
        writer.Key("warnings");
        writer.StartArray();
        for (const std::string& warning : result.outcome.warnings) {
            writeString(writer, warning);
        }
        writer.EndArray();
        writer.Key("mismatches");
        writer.StartArray();
        for (const Mismatch& mismatch : result.outcome.mismatches) {
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
    if (coverages != nullptr) {
        writer.Key("coverage");
        writeCoverageJson(*coverages, writer);
    }
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
                failures += result.outcome.mismatches.empty() ? 0 : 1;
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
            if (result.outcome.mismatches.empty()) {
                out << "/>\n";
                continue;
            }
            out << ">\n      <failure message=\""
                << xmlEscaped(mismatchesInWords(result.outcome.mismatches)) << "\">";
            for (const Mismatch& mismatch : result.outcome.mismatches) {
                out << xmlEscaped(mismatchInWords(mismatch)) << "&#10;";
            }
            out << xmlEscaped("expected: " + keywordsAsJson(result.testCase->expect)) << "&#10;"
                << xmlEscaped("actual: " + keywordsAsJson(result.outcome.answer)) << "&#10;";
            out << "</failure>\n    </testcase>\n";
        }
        out << "  </testsuite>\n";
    }
    out << "</testsuites>\n";
}

// Loads the suite's documents and runs its cases, with their traces noted in
// `coverages` when given. False when the documents cannot be read or do not
// load; their faults are then told on standard error.
bool runSuite(const TestSuite& suite, const TestOptions& options, std::vector<CaseResult>& results,
              std::vector<DocumentCoverage>* coverages) {
    const DocumentPaths paths{suite.rulesPath, suite.dataModelPath, options.maxInputSize};
    bool unreadable = false;
    const std::unique_ptr<PrivateCore> core = loadCommandDocuments(options.log, paths, unreadable);
    if (core == nullptr) {
        if (!unreadable) {
            std::cerr << "tov: the documents of suite " << suite.path << " do not load\n";
        }
        return false;
    }
    DocumentCoverage* coverage =
        coverages == nullptr ? nullptr : &coverageOf(suite.rulesPath, *coverages);
    for (const TestCase& testCase : suite.cases) {
        TOVDecisionTrace trace;
        core->get()->setDecisionObserver(coverage == nullptr ? nullptr : &trace);
        results.push_back({&suite, &testCase, runCase(testCase, core->get(), core->dataModel())});
        if (coverage != nullptr) {
            noteExercised(trace.steps(), *coverage);
        }
    }
    core->get()->setDecisionObserver(nullptr);
    if (coverage != nullptr) {
        finishCoverage(core->rules(), *coverage);
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
    const bool coverage = options.coverage || options.coverageMin > 0;
    std::vector<DocumentCoverage> coverages;
    for (const TestSuite& suite : suites) {
        if (!runSuite(suite, options, results, coverage ? &coverages : nullptr)) {
            return kExitUsageOrInput;
        }
    }
    std::size_t failed = 0;
    bool warned = false;
    for (const CaseResult& result : results) {
        failed += result.outcome.mismatches.empty() ? 0 : 1;
        // Told apart from the report, which stays as its format has it.
        for (const std::string& warning : result.outcome.warnings) {
            std::cerr << "tov: " << (options.strict ? "error: " : "warning: ")
                      << result.testCase->name << " (" << result.suite->path << "): " << warning
                      << "\n";
            warned = true;
        }
    }
    switch (options.format) {
        case ReportFormat::kJson:
            printJson(results, failed, coverage ? &coverages : nullptr, std::cout);
            break;
        case ReportFormat::kJunit:
            printJunit(suites, results, failed, std::cout);
            if (coverage) {
                printCoverageText(coverages, std::cerr);  // the report stays plain JUnit
            }
            break;
        default:
            printText(results, options.verbose, failed, std::cout);
            if (coverage) {
                printCoverageText(coverages, std::cout);
            }
    }
    std::size_t exercised = 0;
    std::size_t total = 0;
    for (const DocumentCoverage& document : coverages) {
        exercised += exercisedCount(document);
        total += totalCount(document);
    }
    const bool coveredEnough = !coverage || percentOf(exercised, total) >= options.coverageMin;
    if (!coveredEnough) {
        std::cerr << "tov: " << exercised << " of " << total << " rules exercised ("
                  << percentInWords(percentOf(exercised, total)) << "), below the minimum of "
                  << percentInWords(options.coverageMin) << "\n";
    }
    return failed == 0 && coveredEnough && !(options.strict && warned) ? kExitSuccess
                                                                       : kExitFailure;
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
    command->add_flag("--coverage", options->coverage,
                      "Tell which rules of each kind the cases exercised, and which never");
    command
        ->add_option("--coverage-min", options->coverageMin,
                     "Fail unless at least this share of the rules is exercised (implies "
                     "--coverage)")
        ->type_name("PERCENT")
        ->check(CLI::Range(0.0, 100.0));
    command->add_flag("--strict", options->strict,
                      "Take a request's names that the data model does not describe for errors "
                      "(exit status 1)");
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
            requestKindNamesInWords() +
            ", as for eval. A keyword that no answer holds (\"Reslt\") makes the suite "
            "unreadable.",
        "Output (standard output): for each failing case, \"FAIL NAME (SUITE): KEYWORD: "
        "expected TEXT, got TEXT\" (\"nothing\" for an absent keyword), then the whole "
        "expected keywords and the whole answer, comment included, on lines \"  expected: "
        "{...}\" and \"  actual:   {...}\"; with -v also \"PASS NAME (SUITE)\", and last \"N "
        "passed, M failed\". --format json gives one object {\"passed\", \"failed\", "
        "\"cases\": [{\"suite\", \"name\", \"passed\", \"expected\", \"actual\", \"warnings\", "
        "\"mismatches\": [{\"keyword\", \"expected\", \"actual\"}]}]}; --format junit a JUnit "
        "XML report.",
        "A request that names an object type or attribute that the data model does not "
        "describe is judged without a word about it, and most often passes for the wrong "
        "reason: each such name is told on standard error, \"tov: warning: NAME (SUITE): "
        "the request's attribute \"Stauts\" is none that the data model describes for Part; "
        "did you mean \"Status\"?\", and under --strict as \"tov: error: ...\" with exit "
        "status 1.",
        "Coverage (--coverage): a rule counts as exercised when a case consulted it and it "
        "bound the request (it approved, objected or asked for missing data; \"not "
        "applicable\" does not count). After the cases, per rules document: \"Coverage of "
        "PATH: N of M rules exercised (P%)\", then per kind \"SECTION: N of M\" and a line "
        "\"never: #NUMBER RULE\" for each rule no case exercised, NUMBER its place in its "
        "section of the document, from 1. --format json adds \"coverage\": [{\"rules\", "
        "\"exercised\", \"total\", \"percent\", \"kinds\": [{\"section\", \"exercised\", "
        "\"total\", \"never\": [{\"number\", \"rule\"}]}]}]; with --format junit it goes "
        "to standard error.",
        // NOLINTNEXTLINE(bugprone-suspicious-missing-comma): one paragraph over two lines.
        "Exit status: 0 when every case passed (and, with --coverage-min, enough rules were "
        "exercised; with --strict, no request named what the data model does not describe), 1 "
        "when one failed, too few were or one did, 2 for a suite that cannot be read, or "
        "documents that do not load (nothing is told on standard output then).",
        kLogHelp,
        kMaxInputSizeHelp,
        "Example: tov test examples/tests.json",
    }));
    return {command, [options] { return runTests(*options); }};
}

}  // namespace tovcli
