// The state of tov serve between requests: the one engine, the documents it
// serves with what is known of them, the counters and the decision log. A
// request holds one Served snapshot from start to end, so that its answer
// (or a whole batch's) comes from one generation, whatever reloads meanwhile.
#ifndef TOV_TOOLS_SERVE_DECISION_SERVICE_H_
#define TOV_TOOLS_SERVE_DECISION_SERVICE_H_

#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>

#include "decision_log.h"
#include "serve_metrics.h"
#include "tov/TOVEngine.h"
#include "tov/TOVResponse.h"

namespace tovserve {

// One document as it was loaded.
struct DocumentFacts {
    std::string path;
    std::string sha256;
    std::string loadedAt;  // UTC, as utcTimestamp writes it
};

// What serves now: the engine's generation and the facts of its documents.
struct Served {
    std::shared_ptr<const TOVEngineGeneration> generation;
    DocumentFacts rules;
    DocumentFacts dataModel;
    std::shared_ptr<const std::string> rulesText;  // for the lifecycle graphs
    std::uint64_t ruleCount = 0;
};

// The last reload, for /v1/status.
struct ReloadRecord {
    std::string outcome = "none";  // "none", "success" or "failure"
    std::string at;                // UTC, empty before the first reload
    std::string message;
};

// The texts of both documents, read together.
struct DocumentTexts {
    std::string rules;
    std::string dataModel;
};

class DecisionService {
public:
    DecisionService(std::string rulesPath, std::string dataModelPath, std::uint64_t maxInputSize);
    DecisionService(const DecisionService&) = delete;
    DecisionService& operator=(const DecisionService&) = delete;

    TOVEngine& engine() { return tovEngine; }
    ServeMetrics& metrics() { return counters; }
    const std::string& rulesPath() const { return rulesDocumentPath; }
    const std::string& dataModelPath() const { return dataModelDocumentPath; }
    std::uint64_t maxInputSize() const { return inputSizeLimit; }

    // What serves now; never null (before the first load, the engine's empty start).
    std::shared_ptr<const Served> served() const;

    // Reads both files, each within the size limit. False, with the reason
    // in `error`, when one cannot be read.
    bool readDocuments(DocumentTexts& texts, std::string& error) const;

    // What a load did. `published` tells whether the new generation serves;
    // otherwise the responses tell why not, or `error` does (out of memory).
    struct Load {
        bool published = false;
        bool unchanged = false;  // asked to skip documents that serve already, and they do
        TOVResponse rules;
        TOVResponse dataModel;
        std::string error;
    };

    // Loads both texts into a new generation of the engine and, when both
    // load, publishes it with its facts. With `skipIfUnchanged`, texts equal
    // to those that serve load nothing. Loads are serialized; requests never
    // wait for one.
    Load load(const DocumentTexts& texts, bool skipIfUnchanged);

    // Tells /v1/status and the counters how a reload ended.
    void recordReload(bool succeeded, const std::string& message);
    ReloadRecord lastReload() const;

    // Set once a stop begins: /ready then says 503.
    void beginStopping() { stoppingNow = true; }
    bool stopping() const { return stoppingNow; }

    // The decision log, or null when none is kept.
    void keepDecisionLog(DecisionLog* log) { decisions = log; }
    DecisionLog* decisionLog() const { return decisions; }

    const std::string& startedAt() const { return started; }

private:
    const std::string rulesDocumentPath;
    const std::string dataModelDocumentPath;
    const std::uint64_t inputSizeLimit;
    const std::string started;

    TOVEngine tovEngine;
    ServeMetrics counters;
    DecisionLog* decisions = nullptr;
    std::atomic<bool> stoppingNow{false};

    std::mutex loading;        // one load at a time
    mutable std::mutex guard;  // the two below
    std::shared_ptr<const Served> current;
    ReloadRecord reloadRecord;
};

}  // namespace tovserve

#endif  // TOV_TOOLS_SERVE_DECISION_SERVICE_H_
