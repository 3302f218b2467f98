// tov check: do the documents load, and if not, what is wrong with them?
#include <algorithm>
#include <iostream>
#include <memory>

#include "commands.h"
#include "document_check.h"
#include "strict_checks.h"

namespace tovcli {

namespace {

struct CheckOptions : DocumentCommandOptions {
    bool strict = false;
};

void writeFindingJson(JsonWriter& writer, const Finding& finding) {
    writer.StartObject();
    writer.Key("document");
    writeString(writer, finding.document);
    writeFindingMembers(writer, finding, finding.location);
    writer.EndObject();
}

// {"documents": [{"document", "comment"}], "faults": [...], "notes": [...],
// "warnings": [...]}; under --strict every note and warning is listed among the
// faults.
void printJson(const std::vector<Finding>& findings, bool strict, std::ostream& out) {
    tovjson::StringBuffer buffer;
    JsonWriter writer(buffer);
    writer.StartObject();
    writer.Key("documents");
    writer.StartArray();
    for (const Finding& finding : findings) {
        if (finding.severity == Finding::kLoaded) {
            writer.StartObject();
            writer.Key("document");
            writeString(writer, finding.document);
            writer.Key("comment");
            writeString(writer, finding.message);
            writer.EndObject();
        }
    }
    writer.EndArray();
    const auto listOf = [&](const char* name, auto&& belongs) {
        writer.Key(name);
        writer.StartArray();
        for (const Finding& finding : findings) {
            if (belongs(finding)) {
                writeFindingJson(writer, finding);
            }
        }
        writer.EndArray();
    };
    listOf("faults", [strict](const Finding& finding) {
        return finding.severity == Finding::kFault ||
               (strict &&
                (finding.severity == Finding::kNote || finding.severity == Finding::kWarning));
    });
    listOf("notes", [strict](const Finding& finding) {
        return !strict && finding.severity == Finding::kNote;
    });
    listOf("warnings", [strict](const Finding& finding) {
        return !strict && finding.severity == Finding::kWarning;
    });
    writer.EndObject();
    out << buffer.GetString() << "\n";
}

int runCheck(const CheckOptions& options) {
    std::string logFolder;
    std::vector<Document> documents;
    if (!prepareCommand(options.log, options.documents, logFolder, documents)) {
        return kExitUsageOrInput;
    }
    std::vector<Finding> findings;
    bool allLoaded = false;
    TOV_DMStructure dataModel;
    {
        PrivateCore core(logFolder);
        allLoaded = loadAndNote(documents, options.documents.maxInputSize, core, findings);
        if (allLoaded) {
            dataModel = core.dataModel();
        }
    }
    // checkDocuments less the loaded rules, which are gone by now, so that a
    // large document is not held twice while it is read again.
    if (allLoaded) {
        findLikelyMistakes(documents, options.documents.maxInputSize, dataModel, findings);
    }
    if (options.format == OutputFormat::kJson) {
        printJson(findings, options.strict, std::cout);
    } else {
        for (const Finding& finding : findings) {
            printFinding(finding, options.strict, std::cout);
        }
    }
    const bool noted = std::any_of(findings.begin(), findings.end(), [](const Finding& finding) {
        return finding.severity == Finding::kNote || finding.severity == Finding::kWarning;
    });
    return allLoaded && !(options.strict && noted) ? kExitSuccess : kExitFailure;
}

}  // namespace

Command addCheckCommand(CLI::App& program) {
    auto options = std::make_shared<CheckOptions>();
    CLI::App* command = program.add_subcommand(
        "check", "Load the documents and tell each fault on a line of its own");
    addDocumentOptions(*command, options->documents, false);
    command->add_flag("--strict", options->strict,
                      "Take every note and warning for an error (exit status 1)");
    addLogOption(*command, options->log);
    addFormatOption(*command, options->format);
    command->footer(helpText({
        "Output (standard output): for each document, the data model first, one line "
        "\"FILE: comment\" when it loaded, or one line \"FILE: fault\" per fault when it did "
        "not: a document loads whole or not at all. After a fault that a rule caused, a note "
        "\"FILE:LINE:COLUMN: note: SECTION: TYPE #N: ...\" points at the rule and names the "
        "member that is missing or of the wrong shape. A text that is no JSON gets a note "
        "\"FILE:LINE:COLUMN: note: ...\" telling where; notices of the library about the "
        "document, a document that loads but holds nothing, and rules for an object type "
        "that the data model does not describe (often a misspelt name) get a note too.",
        "Documents that load are read once more for what is most likely a mistake, each "
        "told as \"FILE:LINE:COLUMN: warning: SECTION: TYPE #N (explain M): ...\" at the "
        "value it is about, with the fix: TYPE #N the rule's place in its object type's "
        "list, M its number in its section, as tov explain numbers it. Members named twice "
        "in one object; unknown sections (a misspelt \"transitionz\" is silently ignored); "
        "words of a fixed set in the wrong case or unknown (\"mandatory\" loads as no "
        "constraint at all); members that no judgement reads, a link rule's fromValue among "
        "them; attributes that the data model (--dm) does not describe; rules that can "
        "never apply; several transition rules from one value, and \"<any>\" as a "
        "transition's fromValue, all of which must hold; values that no transition rule "
        "names, or that differ from one only in case where they are compared exactly; "
        "duplicate rules; conflict resolution rules that force both overwrite and spin-up "
        "on one transition; and versioning selections that offer none of the type's "
        "versioning attributes.",
        "--strict makes every note and warning an error (\"error:\").",
        "With --format json: one object, {\"documents\": [{\"document\", \"comment\"} for each "
        "that loaded], \"faults\": [...], \"notes\": [...], \"warnings\": [...]}, each "
        "{\"document\", \"section\" (null when none), \"message\"} with \"line\" and "
        "\"column\" where the text is told a place; under --strict the notes and warnings "
        "are among the faults.",
        // NOLINTNEXTLINE(bugprone-suspicious-missing-comma): one paragraph over two lines.
        "Exit status: 0 when every document loaded (and, under --strict, nothing was "
        "noted or warned of), 1 when one did not (or something was), 2 for bad arguments "
        "or a file that cannot be read.",
        kLogHelp,
        kMaxInputSizeHelp,
        "Example: tov check --strict --rules rules.json --dm datamodel.json",
    }));
    return {command, [options] { return runCheck(*options); }};
}

}  // namespace tovcli
