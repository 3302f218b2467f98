// An engine that many threads may share. Every evaluation is judged by one
// generation: a rule store, a data model and a logger that never change once
// published. A load builds the next generation beside the current one and then
// publishes it in one step, so an evaluation sees wholly the documents before
// a load or wholly those after it, never a mix and never a half-loaded store.
//
//   TOVEngine engine;                                   // logging off
//   engine.evaluateFile("rules", "rules.json");         // as InitializeTOVRulesFromFile
//   engine.evaluateFile("datamodel", "datamodel.json");
//   TOVResponse answer = engine.evaluate("edit", requestText);   // from any thread
//
// The kinds are the words of `tov eval`: "edit", "edit-before-resolution",
// "save", "save-before-resolution", "link", "options"; and the two documents,
// "rules" and "datamodel". A document load answers and leaves the engine
// exactly as the library's Initialize functions do with a private core data:
// a load that fails leaves that document unloaded. Loads are serialized with
// one another; evaluations never wait for a load. Destroying the engine while
// another thread still calls it is the caller's mistake.
#ifndef TOV_TOVENGINE_H_
#define TOV_TOVENGINE_H_

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "tov/TOVResponse.h"
#include "tov/export.h"

class TOVCoreDataControllers;
class TOVDecisionObserver;
class TOVLifecycleBusinessRules;
class TOV_DMStructure;
class TOVLogger;

// One published set of documents. Shared and read-only: hold the pointer for
// as long as the answers must come from the same documents.
class TOV_API TOVEngineGeneration {
public:
    ~TOVEngineGeneration();
    TOVEngineGeneration(const TOVEngineGeneration&) = delete;
    TOVEngineGeneration& operator=(const TOVEngineGeneration&) = delete;

    // Answers a request of `kind` (not a document: a generation never changes)
    // given as JSON text, or as the path of a file when `inputIsFilePath`.
    // `observer`, when given, is told which rules judged it (TOVDecisionTrace.h).
    TOVResponse evaluate(const std::string& kind, const std::string& input,
                         bool inputIsFilePath = false,
                         TOVDecisionObserver* observer = nullptr) const;

    // 0 for a new engine's empty start; each load of a document that is
    // published counts one up (a change of the log does not).
    std::uint64_t number() const { return generationNumber; }

    const TOVLifecycleBusinessRules& rules() const { return *rulesStore; }
    const TOV_DMStructure& dataModel() const { return *dataModelInfo; }

private:
    friend class TOVEngine;
    // Lets `core` borrow this generation's parts for one call.
    void lendTo(TOVCoreDataControllers& core) const;
    TOVEngineGeneration(std::shared_ptr<TOVLifecycleBusinessRules> rules,
                        std::shared_ptr<TOV_DMStructure> dataModel,
                        std::shared_ptr<TOVLogger> logger, std::uint64_t number);

    std::shared_ptr<TOVLifecycleBusinessRules> rulesStore;
    std::shared_ptr<TOV_DMStructure> dataModelInfo;
    std::shared_ptr<TOVLogger> logger;
    std::uint64_t generationNumber;
};

class TOV_API TOVEngine {
public:
    // Nothing loaded, logging off.
    TOVEngine();
    ~TOVEngine();
    TOVEngine(const TOVEngine&) = delete;
    TOVEngine& operator=(const TOVEngine&) = delete;

    // Answers one call of `kind` given as JSON text. A document replaces that
    // document for every later call; a request is judged by the current
    // generation. An unknown kind gets a Failure whose comment names the kinds.
    // `observer`, when given, is told which rules judged a request, in order
    // (TOVDecisionTrace.h); a load judges none.
    TOVResponse evaluate(const std::string& kind, const std::string& text,
                         TOVDecisionObserver* observer = nullptr);
    // The same with the path of a file that holds the JSON text.
    TOVResponse evaluateFile(const std::string& kind, const std::string& path,
                             TOVDecisionObserver* observer = nullptr);

    // For a door that must still hand the answer on (copy it out for a host
    // in another language, send it): `handOn` gets the answer of a load before
    // the load is published. Whatever it throws passes on, and the load then
    // leaves its document not loaded, as an interrupted load does, so that a
    // caller who never got the answer is never served from the new document.
    void evaluateAndHandOn(const std::string& kind, const std::string& input, bool inputIsFilePath,
                           const std::function<void(const TOVResponse&)>& handOn,
                           TOVDecisionObserver* observer = nullptr);

    // What replaceDocuments did.
    struct DocumentsLoad {
        TOVResponse rules;      // the answer of the rules load
        TOVResponse dataModel;  // the answer of the data-model load
        bool published;         // true when both loaded and now serve
    };
    // Loads both documents (texts, or paths when `inputsArePaths`) into one new
    // generation and publishes it only when both load; otherwise the current
    // generation goes on serving, untouched. For services that reload.
    DocumentsLoad replaceDocuments(const std::string& rules, const std::string& dataModel,
                                   bool inputsArePaths);

    // Where later calls log: "" or "off" (in any case) nowhere, "console" (in
    // any case) standard output, anything else a folder, created if missing,
    // where a new log file starts. False, with the reason in `whyNot`, when the
    // folder cannot be used; the engine then logs as before.
    bool setLog(const std::string& where, std::string& whyNot);

    // The generation that evaluations start on now.
    std::shared_ptr<const TOVEngineGeneration> current() const;

    // The words of the kinds: the two documents first, then the requests in
    // the order of `tov eval --help`.
    static const std::vector<std::string>& kindNames();
    static bool isDocumentKind(const std::string& kind);

private:
    struct State;

    TOVResponse answer(const std::string& kind, const std::string& input, bool inputIsFilePath,
                       TOVDecisionObserver* observer);
    // Loads one document ("rules" or "datamodel") into a new store beside the
    // current generation's other parts, hands the answer on, then publishes.
    void load(const std::string& kind, const std::string& input, bool inputIsFilePath,
              const std::function<void(const TOVResponse&)>& handOn);

    std::unique_ptr<State> state;
};

#endif  // TOV_TOVENGINE_H_
