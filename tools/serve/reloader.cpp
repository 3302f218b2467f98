#include "reloader.h"

#include <iostream>
#include <new>
#include <sstream>
#include <utility>
#include <vector>

#include "documents.h"

namespace tovserve {

namespace {

// The faults of a load that did not publish, as check tells them, one per line.
std::string faultsOf(const DecisionService& service, const DocumentTexts& texts,
                     const DecisionService::Load& load, std::uint64_t maxInputSize) {
    if (!load.error.empty()) {
        return load.error;
    }
    std::vector<tovcli::Finding> findings;
    // The texts that were loaded are read again, not the files, which may
    // have changed since.
    tovcli::findingsOfLoad({tovcli::Document::kDataModel, service.dataModelPath(),
                            texts.dataModel.size(), &texts.dataModel},
                           load.dataModel, "", maxInputSize, findings);
    tovcli::findingsOfLoad(
        {tovcli::Document::kRules, service.rulesPath(), texts.rules.size(), &texts.rules},
        load.rules, "", maxInputSize, findings);
    std::ostringstream lines;
    for (const tovcli::Finding& finding : findings) {
        if (finding.severity != tovcli::Finding::kLoaded) {
            tovcli::printFinding(finding, false, lines);
        }
    }
    std::string text = lines.str();
    if (!text.empty() && text.back() == '\n') {
        text.pop_back();
    }
    return text;
}

}  // namespace

Reloader::Reloader(DecisionService& service) : service(service), thread([this] { work(); }) {}

Reloader::~Reloader() {
    stop();
}

void Reloader::request(const std::string& why, bool onlyIfChanged) {
    std::lock_guard<std::mutex> lock(mutex);
    pendingOnlyIfChanged = pending ? pendingOnlyIfChanged && onlyIfChanged : onlyIfChanged;
    pendingWhy = pending && pendingWhy != why ? pendingWhy + ", " + why : why;
    pending = true;
    asked.notify_one();
}

void Reloader::stop() {
    {
        std::lock_guard<std::mutex> lock(mutex);
        stopping = true;
        asked.notify_one();
    }
    if (thread.joinable()) {
        thread.join();
    }
}

void Reloader::work() {
    while (true) {
        std::string why;
        bool onlyIfChanged = true;
        {
            std::unique_lock<std::mutex> lock(mutex);
            asked.wait(lock, [this] { return pending || stopping; });
            if (stopping) {
                return;
            }
            why = std::move(pendingWhy);
            onlyIfChanged = pendingOnlyIfChanged;
            pending = false;
        }
        reload(why, onlyIfChanged);
    }
}

void Reloader::reload(const std::string& why, bool onlyIfChanged) {
    const std::uint64_t before = service.served()->generation->number();
    try {
        reloadOrTell(why, onlyIfChanged, before);
    } catch (const std::bad_alloc&) {
        // Reading a text or telling the faults ran out of memory: the
        // generation before keeps serving, and what it holds is left alone.
        const std::string message = "out of memory while reloading the documents";
        service.recordReload(false, message);
        std::cerr << "tov serve: reload (" << why << ") failed; generation " << before
                  << " keeps serving: " << message << std::endl;
    }
}

void Reloader::reloadOrTell(const std::string& why, bool onlyIfChanged, std::uint64_t before) {
    DocumentTexts texts;
    std::string error;
    if (!service.readDocuments(texts, error)) {
        service.recordReload(false, error);
        std::cerr << "tov serve: reload (" << why << ") failed; generation " << before
                  << " keeps serving: " << error << std::endl;
        return;
    }
    const DecisionService::Load load = service.load(texts, onlyIfChanged);
    if (load.unchanged) {
        return;
    }
    if (load.published) {
        const std::shared_ptr<const Served> served = service.served();
        const std::string message = "generation " + std::to_string(served->generation->number()) +
                                    " serves, with " + std::to_string(served->ruleCount) + " rules";
        service.recordReload(true, message);
        std::cerr << "tov serve: reloaded (" << why << "): " << message << std::endl;
        return;
    }
    const std::string faults = faultsOf(service, texts, load, service.maxInputSize());
    service.recordReload(false, faults);
    std::cerr << "tov serve: reload (" << why << ") failed; generation " << before
              << " keeps serving:\n"
              << faults << std::endl;
}

}  // namespace tovserve
