#include "decision_service.h"

#include <new>
#include <utility>

#include "input_files.h"
#include "request_kinds.h"
#include "sha256.h"
#include "tov/TOVLifecycleBusinessRules.h"
#include "tov/rule_kinds.h"

namespace tovserve {

namespace {

// Counted, not worded: a reload of a large document must not build a
// sentence for every rule only to count them.
std::uint64_t countRules(const TOVLifecycleBusinessRules& rules) {
    std::uint64_t count = 0;
    for (const TOVRuleKindWords& kind : GetTOVRuleKinds()) {
        count += rules.countRules(kind.kind);
    }
    return count;
}

}  // namespace

DecisionService::DecisionService(std::string rulesPath, std::string dataModelPath,
                                 std::uint64_t maxInputSize)
    : rulesDocumentPath(std::move(rulesPath)),
      dataModelDocumentPath(std::move(dataModelPath)),
      inputSizeLimit(maxInputSize),
      started(utcTimestamp(std::chrono::system_clock::now())),
      counters(tovcli::requestKindNames()) {
    auto empty = std::make_shared<Served>();
    empty->generation = tovEngine.current();
    empty->rules.path = rulesDocumentPath;
    empty->dataModel.path = dataModelDocumentPath;
    current = std::move(empty);
}

std::shared_ptr<const Served> DecisionService::served() const {
    std::lock_guard<std::mutex> lock(guard);
    return current;
}

bool DecisionService::readDocuments(DocumentTexts& texts, std::string& error) const {
    return tovcli::readInput(dataModelDocumentPath, "data-model document", inputSizeLimit,
                             texts.dataModel, error) &&
           tovcli::readInput(rulesDocumentPath, "rules document", inputSizeLimit, texts.rules,
                             error);
}

DecisionService::Load DecisionService::load(const DocumentTexts& texts, bool skipIfUnchanged) {
    std::lock_guard<std::mutex> oneAtATime(loading);
    Load outcome;
    try {
        const std::shared_ptr<const Served> before = served();
        std::string rulesSha = sha256Hex(texts.rules);
        std::string dataModelSha = sha256Hex(texts.dataModel);
        if (skipIfUnchanged && before->generation->number() > 0 &&
            rulesSha == before->rules.sha256 && dataModelSha == before->dataModel.sha256) {
            outcome.unchanged = true;
            return outcome;
        }
        TOVEngine::DocumentsLoad loaded =
            tovEngine.replaceDocuments(texts.rules, texts.dataModel, false);
        outcome.rules = std::move(loaded.rules);
        outcome.dataModel = std::move(loaded.dataModel);
        if (!loaded.published) {
            return outcome;
        }
        // Loads are serialized here, so the engine's current generation is
        // the one just published.
        auto next = std::make_shared<Served>();
        next->generation = tovEngine.current();
        const std::string now = utcTimestamp(std::chrono::system_clock::now());
        next->rules = {rulesDocumentPath, std::move(rulesSha), now};
        next->dataModel = {dataModelDocumentPath, std::move(dataModelSha), now};
        next->rulesText = std::make_shared<const std::string>(texts.rules);
        next->ruleCount = countRules(next->generation->rules());
        {
            std::lock_guard<std::mutex> lock(guard);
            current = std::move(next);
        }
        outcome.published = true;
    } catch (const std::bad_alloc&) {
        // The generation before goes on serving; only this load is lost.
        outcome.published = false;
        outcome.error = "out of memory while loading the documents";
    }
    return outcome;
}

void DecisionService::recordReload(bool succeeded, const std::string& message) {
    counters.countReload(succeeded);
    std::lock_guard<std::mutex> lock(guard);
    reloadRecord = {succeeded ? "success" : "failure",
                    utcTimestamp(std::chrono::system_clock::now()), message};
}

ReloadRecord DecisionService::lastReload() const {
    std::lock_guard<std::mutex> lock(guard);
    return reloadRecord;
}

}  // namespace tovserve
