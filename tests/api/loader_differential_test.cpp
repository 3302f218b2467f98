// The streamed readers of the two documents against the readers they
// replaced, which parsed a document whole into RapidJSON's tree first
// (reference/dom_loaders.h). A generated corpus of documents, valid and
// faulty, with repeated keys and sections, zero bytes, deep nesting, every
// rule kind and both documents, loads through both, from text and from
// files; the answers, the stores in words, the log of each store, the
// faults by section and what the load printed must be the same.
//
// TOV_LOADER_CORPUS sets the number of documents (default 5,000) and
// TOV_LOADER_SEED the seed, for a larger run by hand.
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <ostream>
#include <random>
#include <string>
#include <vector>

#include "frame/request_parsing.h"
#include "reference/dom_loaders.h"
#include "rules/rule_kinds.h"
#include "test_support.h"
#include "tov/TOVLifecycleBusinessRules.h"
#include "tov/TOVResponse.h"
#include "tov/TOVTrigger.h"
#include "tov/TOV_DMStructure.h"
#include "tov/document_faults.h"
#include "tov/entry_points.h"

namespace {

using tovtest::asText;
using tovtest::PrivateCore;

std::size_t fromEnvironment(const char* name, std::size_t fallback) {
    const char* text = std::getenv(name);
    return text != nullptr && *text != '\0' ? std::strtoull(text, nullptr, 10) : fallback;
}

// Writes random documents of either kind: mostly well formed, with the
// oddities that the readers must treat as they always have.
class Corpus {
public:
    explicit Corpus(std::uint64_t seed) : random(seed) {}

    std::string rulesDocument() {
        std::string text;
        if (chance(3)) {
            return malformed(rulesRoot());
        }
        text = rulesRoot();
        return text;
    }

    std::string dmDocument() {
        if (chance(3)) {
            return malformed(dmRoot());
        }
        return dmRoot();
    }

private:
    bool chance(unsigned percent) { return pick(100) < percent; }
    std::size_t pick(std::size_t count) {
        return std::uniform_int_distribution<std::size_t>(0, count - 1)(random);
    }
    template <typename List>
    const char* oneOf(const List& words) {
        return words[pick(std::size(words))];
    }

    static std::string quoted(const std::string& text) { return "\"" + text + "\""; }

    std::string malformed(std::string text) {
        switch (pick(7)) {
            case 0:
                return text.substr(0, pick(text.size() + 1));
            case 1:
                return text + oneOf(kTrailers);
            case 2:
                text.insert(pick(text.size() + 1), oneOf(kStrays));
                return text;
            case 3:
                return oneOf(kNoObjects);
            case 4:
                // A zero byte ends a text where it stands; in a file it ends the reading too.
                text.insert(pick(text.size() + 1), std::string(1, '\0'));
                return text;
            case 5:
                return "[" + text + "]";
            default:
                return " \n\t" + text + "\n ";
        }
    }

    // A value of no use to any reader, sometimes nested deep.
    std::string junkValue() {
        switch (pick(8)) {
            case 0:
                return "null";
            case 1:
                return "-12.5e3";
            case 2:
                return "18446744073709551615";
            case 3:
                return R"({"a":[1,{"b":null}],"c":"d"})";
            case 4: {
                const std::size_t depth = 1 + pick(chance(2) ? 3000 : 40);
                return std::string(depth, '[') + std::string(depth, ']');
            }
            case 5: {
                std::string nested;
                const std::size_t depth = 1 + pick(30);
                for (std::size_t i = 0; i < depth; ++i) {
                    nested += R"({"k":)";
                }
                nested += "0";
                nested += std::string(depth, '}');
                return nested;
            }
            case 6:
                return "true";
            default:
                return "[]";
        }
    }

    std::string stringValue() { return quoted(oneOf(kValues)); }

    std::string stringList() {
        std::string list = "[";
        const std::size_t count = pick(4);
        for (std::size_t i = 0; i < count; ++i) {
            list += i == 0 ? "" : ",";
            list += chance(6) ? junkValue() : stringValue();
        }
        return list + "]";
    }

    // Mostly the type each keyword wants, sometimes another.
    std::string memberValue(const std::string& keyword) {
        const bool wantsList = keyword == "toValue" || keyword == "conditionValue1" ||
                               keyword == "conditionValue2" || keyword == "versioningOption" ||
                               keyword == "acceptableHistoryLinkValues" ||
                               keyword == "acceptableManualLinkValues";
        const bool wantsBool = keyword == "hasDifferentPrimaries" || keyword == "primary";
        if (chance(8)) {
            return chance(50) ? junkValue() : (chance(50) ? stringList() : stringValue());
        }
        if (wantsBool) {
            return chance(50) ? "true" : "false";
        }
        if (wantsList) {
            return chance(15) ? stringValue() : stringList();
        }
        return stringValue();
    }

    std::string ruleObject(const TOVRuleKindWords& kind) {
        std::string object = "{";
        const std::size_t members = pick(8);
        for (std::size_t i = 0; i < members; ++i) {
            std::string keyword;
            if (chance(70)) {
                keyword = kind.members.words[pick(kind.members.count)];
            } else {
                keyword = oneOf(kRuleKeywords);
            }
            object += i == 0 ? "" : ",";
            object += quoted(keyword) + ":" + memberValue(keyword);
        }
        return object + "}";
    }

    std::string section(const TOVRuleKindWords& kind) {
        if (chance(6)) {
            return junkValue();
        }
        std::string section = "{";
        const std::size_t types = pick(4);
        for (std::size_t i = 0; i < types; ++i) {
            section += i == 0 ? "" : ",";
            section += quoted(oneOf(kObjectTypes)) + ":";
            if (chance(5)) {
                section += chance(50) ? junkValue() : stringValue();
                continue;
            }
            section += "[";
            const std::size_t rules = pick(5);
            for (std::size_t j = 0; j < rules; ++j) {
                section += j == 0 ? "" : ",";
                section += chance(4) ? junkValue() : ruleObject(kind);
            }
            section += "]";
        }
        return section + "}";
    }

    std::string rulesRoot() {
        std::string root = "{";
        const std::size_t members = pick(10);
        for (std::size_t i = 0; i < members; ++i) {
            root += i == 0 ? "" : ",";
            if (chance(15)) {
                root += quoted(oneOf(kRootJunkKeys)) + ":" + junkValue();
                continue;
            }
            const TOVRuleKindWords& kind = rulekinds::kRuleKinds[pick(TOVRuleKindCount)];
            root += quoted(kind.section) + ":" + section(kind);
        }
        return root + "}";
    }

    std::string dmAttribute() {
        if (chance(4)) {
            return junkValue();
        }
        std::string attribute = "{";
        const std::size_t members = pick(5);
        for (std::size_t i = 0; i < members; ++i) {
            const std::string keyword = oneOf(kAttributeKeywords);
            attribute += i == 0 ? "" : ",";
            attribute += quoted(keyword) + ":" +
                         (keyword == "type" && chance(80) ? quoted(oneOf(kAttributeTypes))
                                                          : memberValue(keyword));
        }
        return attribute + "}";
    }

    std::string dmObject() {
        if (chance(4)) {
            return junkValue();
        }
        std::string object = "{";
        const std::size_t members = pick(5);
        for (std::size_t i = 0; i < members; ++i) {
            const std::string keyword = oneOf(kObjectKeywords);
            object += i == 0 ? "" : ",";
            object += quoted(keyword) + ":";
            if (keyword == "attributes" && chance(90)) {
                object += "[";
                const std::size_t count = pick(4);
                for (std::size_t j = 0; j < count; ++j) {
                    object += (j == 0 ? "" : ",") + dmAttribute();
                }
                object += "]";
            } else if (keyword == "dmObjectType" && chance(80)) {
                object += quoted(oneOf(kCategories));
            } else {
                object += memberValue(keyword);
            }
        }
        return object + "}";
    }

    std::string dmRoot() {
        std::string root = "{";
        const std::size_t members = pick(5);
        for (std::size_t i = 0; i < members; ++i) {
            root += i == 0 ? "" : ",";
            const std::size_t which = pick(10);
            if (which < 4) {
                root += R"("structureObjects":)";
                if (chance(8)) {
                    root += junkValue();
                    continue;
                }
                root += "[";
                const std::size_t count = pick(4);
                for (std::size_t j = 0; j < count; ++j) {
                    root += (j == 0 ? "" : ",") + dmObject();
                }
                root += "]";
            } else if (which < 8) {
                root += R"("OverwriteLabel":)" + (chance(85) ? stringValue() : junkValue());
            } else {
                root += quoted(oneOf(kRootJunkKeys)) + ":" + junkValue();
            }
        }
        return root + "}";
    }

    static constexpr std::array<const char*, 5> kTrailers = {"x", "{}", ",", " 1", "]"};
    static constexpr std::array<const char*, 9> kStrays = {",", "}", "{",   "\"", ":",
                                                           "[", "]", "tru", "\\"};
    static constexpr std::array<const char*, 7> kNoObjects = {"",         " ",    "[]",  "3",
                                                              "\"text\"", "null", "[{}]"};
    static constexpr std::array<const char*, 18> kValues = {
        "v0",        "v1",       "",      "ALL",   "<any>",           "Status",
        "x\\u0000y", "Released", "True",  "Reset", "spinup",          "overwrite",
        "N_A",       "Part",     "attr1", "a b",   "\\u00e9t\\u00e9", "Status "};
    static constexpr std::array<const char*, 9> kObjectTypes = {
        "Part", "ALL", "Document", "", "part", "A\\u0000B", "Library_Item", "<any>", "all"};
    static constexpr std::array<const char*, 20> kRuleKeywords = {"attribute",
                                                                  "fromValue",
                                                                  "toValue",
                                                                  "allowJumps",
                                                                  "allowReverse",
                                                                  "unknown",
                                                                  "attribute\\u0000x",
                                                                  "Attribute",
                                                                  "updateFile",
                                                                  "updatesFile",
                                                                  "conflictResolution",
                                                                  "hasDifferentPrimaries",
                                                                  "conditionAttribute1",
                                                                  "conditionValue1",
                                                                  "versioningOption",
                                                                  "triggerInitialize",
                                                                  "initializationValue",
                                                                  "acceptableHistoryLinkValues",
                                                                  "acceptableManualLinkValues",
                                                                  "freezeConditionValue"};
    static constexpr std::array<const char*, 5> kRootJunkKeys = {
        "other", "transitions\\u0000", "Transitions", "structureobjects", ""};
    static constexpr std::array<const char*, 7> kObjectKeywords = {
        "name", "dmObjectType", "attributes", "attributes", "name", "other", "name\\u0000"};
    static constexpr std::array<const char*, 5> kAttributeKeywords = {"name", "type", "primary",
                                                                      "other", "primary"};
    static constexpr std::array<const char*, 4> kAttributeTypes = {"REGULAR", "VERSIONING", "OTHER",
                                                                   ""};
    static constexpr std::array<const char*, 5> kCategories = {"DMITEM", "RLI", "FILE", "",
                                                               "other"};

    std::mt19937_64 random;
};

// What a load leaves behind that anyone can see.
struct Outcome {
    std::string answer;
    std::string printed;  // on standard output while it loaded
    std::string contents;
    std::string faults;

    bool operator==(const Outcome& other) const {
        return answer == other.answer && printed == other.printed && contents == other.contents &&
               faults == other.faults;
    }
};

std::ostream& operator<<(std::ostream& out, const Outcome& outcome) {
    return out << "answer: " << outcome.answer << "\nprinted: " << outcome.printed
               << "\ncontents:\n"
               << outcome.contents << "faults: " << outcome.faults;
}

std::string capturedStdout(const std::function<void()>& action) {
    std::fflush(stdout);
    testing::internal::CaptureStdout();
    action();
    std::fflush(stdout);
    return testing::internal::GetCapturedStdout();
}

std::string rulesContents(PrivateCore& core) {
    const TOVLifecycleBusinessRules* store = core.rules();
    std::string contents;
    for (const auto& [kind, words] : store->expressRulesInWords()) {
        contents.append(kind).append(": ").append(words).append("\n");
    }
    for (const TOVTriggerDescription& trigger : store->describeTriggerRules()) {
        contents.append("trigger: ").append(expressTriggerInWords(trigger)).append("\n");
    }
    for (const TOVRuleKindWords& kind : rulekinds::kRuleKinds) {
        contents += kind.section;
        for (std::size_t i = 0; i < store->countRules(kind.kind); ++i) {
            contents += " " + std::to_string(store->documentPositionOfRule(kind.kind, i));
        }
        contents += "\n";
    }
    contents +=
        tovtest::captureConsole(core.logger(), [&] { store->printContentsDBG(core.logger()); });
    return contents;
}

std::string dmContents(PrivateCore& core) {
    return "label: " + core.dmInfo()->getOverwriteLabel() + "\n" +
           tovtest::captureConsole(core.logger(),
                                   [&] { core.dmInfo()->printContentsDBG(core.logger()); });
}

template <typename Faults>
std::string faultsInWords(const Faults& faults) {
    std::string words;
    for (const auto& [section, message] : faults) {
        words.append("[").append(section).append("] ").append(message).append("\n");
    }
    return words;
}

std::string faultsInWords(const std::vector<TOVDocumentFault>& faults) {
    std::string words;
    for (const TOVDocumentFault& fault : faults) {
        words.append("[").append(fault.section).append("] ").append(fault.message).append("\n");
    }
    return words;
}

// The steps of an initializer controller, around the reference parser.
template <typename Parser, typename Clear, typename Finish>
TOVResponse referenceLoad(Parser& parser, const std::string& input, bool fromFile, Clear&& clear,
                          Finish&& finish, const char* success) {
    TOVResponse response;
    clear();
    response.setGeneralResult(true);
    if (!parseRequestOrRefuse(parser, input, fromFile, response)) {
        clear();
        return response;
    }
    response.setGeneralResultComment(success);
    response.setGeneralResult(true);
    finish();
    return response;
}

// The faults as FindTOV...DocumentFaults tells them, from the reference parser.
template <typename Parser>
std::string referenceFaults(Parser& parser, const std::string& input, bool fromFile) {
    if (!parser.load(input, fromFile)) {
        return "[] " + parser.getParsingErrorComment() + "\n";
    }
    parser.parseAllSections();
    return faultsInWords(parser.getSectionFaults());
}

Outcome streamedRules(const std::string& input, bool fromFile) {
    PrivateCore core;
    Outcome outcome;
    outcome.printed = capturedStdout([&] {
        outcome.answer = asText(fromFile ? InitializeTOVRulesFromFile(input, core.get())
                                         : InitializeTOVRules(input, core.get()));
    });
    outcome.contents = rulesContents(core);
    capturedStdout(
        [&] { outcome.faults = faultsInWords(FindTOVRulesDocumentFaults(input, fromFile)); });
    return outcome;
}

Outcome referenceRules(const std::string& input, bool fromFile) {
    PrivateCore core;
    Outcome outcome;
    outcome.printed = capturedStdout([&] {
        tovreference::TOVInitializationJsonParser parser(core.rules());
        outcome.answer = asText(referenceLoad(
            parser, input, fromFile, [&] { core.rules()->clearAllRules(); },
            [&] { core.rules()->sortAllRules(); }, "Successfully initialized TOV rules"));
    });
    outcome.contents = rulesContents(core);
    capturedStdout([&] {
        TOVLifecycleBusinessRules scratch;
        tovreference::TOVInitializationJsonParser parser(&scratch);
        outcome.faults = referenceFaults(parser, input, fromFile);
    });
    return outcome;
}

Outcome streamedDM(const std::string& input, bool fromFile) {
    PrivateCore core;
    Outcome outcome;
    outcome.printed = capturedStdout([&] {
        outcome.answer = asText(fromFile ? InitializeTOV_DMInfoFromFile(input, core.get())
                                         : InitializeTOV_DMInfo(input, core.get()));
    });
    outcome.contents = dmContents(core);
    outcome.faults = faultsInWords(FindTOV_DMInfoDocumentFaults(input, fromFile));
    return outcome;
}

Outcome referenceDM(const std::string& input, bool fromFile) {
    PrivateCore core;
    Outcome outcome;
    outcome.printed = capturedStdout([&] {
        tovreference::TOV_DMInfoJsonParser parser(core.dmInfo());
        outcome.answer = asText(referenceLoad(
            parser, input, fromFile, [&] { core.dmInfo()->clearAllInfo(); },
            [&] { core.dmInfo()->sortAllDMInfo(); }, "Succesfully initialized DM info"));
    });
    outcome.contents = dmContents(core);
    TOV_DMStructure scratch;
    tovreference::TOV_DMInfoJsonParser parser(&scratch);
    outcome.faults = referenceFaults(parser, input, fromFile);
    return outcome;
}

// Every fourth document also from a file, so that both streams are compared.
template <typename Streamed, typename Reference>
void expectAlike(const std::string& document, std::size_t index, Streamed&& streamed,
                 Reference&& reference, tovtest::TempFolder& folder) {
    if (document.empty()) {
        return;  // insufficient input: the reader is never asked
    }
    ASSERT_EQ(streamed(document, false), reference(document, false))
        << "document " << index << " as text:\n"
        << document;
    if (index % 4 == 0) {
        const std::string path = folder.path() + "/document.json";
        std::FILE* file = std::fopen(path.c_str(), "wb");
        ASSERT_NE(file, nullptr);
        std::fwrite(document.data(), 1, document.size(), file);
        std::fclose(file);
        ASSERT_EQ(streamed(path, true), reference(path, true))
            << "document " << index << " from a file:\n"
            << document;
    }
}

TEST(LoaderDifferential, GeneratedDocumentsLoadAsTheTreeReadersLoadedThem) {
    const std::size_t documents = fromEnvironment("TOV_LOADER_CORPUS", 5000);
    Corpus corpus(fromEnvironment("TOV_LOADER_SEED", 20240521));
    tovtest::TempFolder folder;
    ASSERT_FALSE(folder.path().empty());
    std::size_t rulesLoaded = 0;
    for (std::size_t i = 0; i < documents; ++i) {
        // Three rules documents to two data models.
        if (i % 5 < 3) {
            const std::string document = corpus.rulesDocument();
            expectAlike(document, i, streamedRules, referenceRules, folder);
            rulesLoaded +=
                streamedRules(document, false).answer.find("Success") != std::string::npos;
        } else {
            expectAlike(corpus.dmDocument(), i, streamedDM, referenceDM, folder);
        }
        if (HasFatalFailure()) {
            return;
        }
    }
    // The corpus must hold documents that load, not only faults.
    EXPECT_GT(rulesLoaded, documents / 20);
}

TEST(LoaderDifferential, DeepNestingAnywhereLoadsAlike) {
    const std::string deep = std::string(100000, '[') + std::string(100000, ']');
    tovtest::TempFolder folder;
    for (const std::string& document :
         {R"({"transitions":{"Part":[{"attribute":"S","fromValue":"a","toValue":["b"],"x":)" +
              deep + "}]}}",
          R"({"transitions":)" + deep + "}", R"({"other":)" + deep + R"(,"triggers":{}})",
          std::string(100000, '[') + std::string(99999, ']')}) {
        expectAlike(document, 0, streamedRules, referenceRules, folder);
    }
    for (
        const std::string& document :
        {R"({"structureObjects":[{"name":"P","dmObjectType":"DMITEM","attributes":[{"name":"a","type":"REGULAR","primary":)" +
             deep + "}]}]," + R"("OverwriteLabel":"O"})",
         R"({"OverwriteLabel":)" + deep + "}"}) {
        expectAlike(document, 0, streamedDM, referenceDM, folder);
    }
}

}  // namespace
