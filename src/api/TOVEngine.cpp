#include "tov/TOVEngine.h"

#include <mutex>
#include <utility>

#include "api/log_setting.h"
#include "api/request_kinds.h"
#include "tov/TOVCoreDataControllers.h"
#include "tov/TOVLifecycleBusinessRules.h"
#include "tov/TOVLogger.h"
#include "tov/TOV_DMStructure.h"

namespace {

std::shared_ptr<TOVLogger> loggerTo(const std::string& libraryFolder) {
    auto logger = std::make_shared<TOVLogger>(LogToFile);
    logger->setTOVLoggingOutput(libraryFolder);
    return logger;
}

// `kind` is one of the two documents.
TOVResponse loadDocument(const char* kind, const std::string& input, bool inputIsFilePath,
                         TOVCoreDataControllers* core) {
    const TOVRequestKind* document = tovapi::findRequestKind(kind);
    return (inputIsFilePath ? document->fromFile : document->fromText)(input, core);
}

}  // namespace

TOVEngineGeneration::TOVEngineGeneration(std::shared_ptr<TOVLifecycleBusinessRules> rules,
                                         std::shared_ptr<TOV_DMStructure> dataModel,
                                         std::shared_ptr<TOVLogger> logger, std::uint64_t number)
    : rulesStore(std::move(rules)),
      dataModelInfo(std::move(dataModel)),
      logger(std::move(logger)),
      generationNumber(number) {}

TOVEngineGeneration::~TOVEngineGeneration() = default;

TOVResponse TOVEngineGeneration::evaluate(const std::string& kind, const std::string& input,
                                          bool inputIsFilePath,
                                          TOVDecisionObserver* observer) const {
    const TOVRequestKind* found = tovapi::findRequestKind(kind.c_str());
    if (found == nullptr || found->isDocument) {
        return tovapi::unknownKindResponse(kind);
    }
    // Borrowed for the call only; evaluations read the stores and change neither.
    TOVCoreDataControllers core;
    lendTo(core);
    core.setDecisionObserver(observer);
    return (inputIsFilePath ? found->fromFile : found->fromText)(input, &core);
}

void TOVEngineGeneration::lendTo(TOVCoreDataControllers& core) const {
    core.borrowData(rulesStore.get(), dataModelInfo.get(), logger.get());
}

struct TOVEngine::State {
    // Guards `current` alone, and only while a pointer is copied or swapped,
    // so that an evaluation never waits for a load to finish.
    mutable std::mutex publishing;
    std::shared_ptr<const TOVEngineGeneration> current;
    // Serializes loads and log changes: each builds on the current generation
    // and must not lose what another one published meanwhile.
    std::mutex changing;

    std::shared_ptr<const TOVEngineGeneration> now() const {
        std::lock_guard<std::mutex> lock(publishing);
        return current;
    }

    void publish(std::shared_ptr<const TOVEngineGeneration> next) noexcept {
        {
            std::lock_guard<std::mutex> lock(publishing);
            current.swap(next);
        }
        // `next` holds the old generation now; it is freed here, outside the
        // lock, unless an evaluation still holds it.
    }
};

TOVEngine::TOVEngine() : state(std::make_unique<State>()) {
    state->current.reset(new TOVEngineGeneration(std::make_shared<TOVLifecycleBusinessRules>(),
                                                 std::make_shared<TOV_DMStructure>(), loggerTo(""),
                                                 0));
}

TOVEngine::~TOVEngine() = default;

std::shared_ptr<const TOVEngineGeneration> TOVEngine::current() const {
    return state->now();
}

TOVResponse TOVEngine::evaluate(const std::string& kind, const std::string& text,
                                TOVDecisionObserver* observer) {
    return answer(kind, text, false, observer);
}

TOVResponse TOVEngine::evaluateFile(const std::string& kind, const std::string& path,
                                    TOVDecisionObserver* observer) {
    return answer(kind, path, true, observer);
}

TOVResponse TOVEngine::answer(const std::string& kind, const std::string& input,
                              bool inputIsFilePath, TOVDecisionObserver* observer) {
    // A request's answer comes back by value, with no hand-on in between: the
    // hot path pays for nothing a load needs.
    if (!isDocumentKind(kind)) {
        return state->now()->evaluate(kind, input, inputIsFilePath, observer);
    }
    TOVResponse loaded;
    load(kind, input, inputIsFilePath, [&loaded](const TOVResponse& given) { loaded = given; });
    return loaded;
}

void TOVEngine::evaluateAndHandOn(const std::string& kind, const std::string& input,
                                  bool inputIsFilePath,
                                  const std::function<void(const TOVResponse&)>& handOn,
                                  TOVDecisionObserver* observer) {
    const TOVRequestKind* found = tovapi::findRequestKind(kind.c_str());
    if (found == nullptr) {
        handOn(tovapi::unknownKindResponse(kind));
    } else if (found->isDocument) {
        load(kind, input, inputIsFilePath, handOn);
    } else {
        handOn(state->now()->evaluate(kind, input, inputIsFilePath, observer));
    }
}

void TOVEngine::load(const std::string& kind, const std::string& input, bool inputIsFilePath,
                     const std::function<void(const TOVResponse&)>& handOn) {
    const bool rules = kind == "rules";
    std::lock_guard<std::mutex> lock(state->changing);
    const std::shared_ptr<const TOVEngineGeneration> base = state->now();
    // The document being loaded gets a new, empty store; the other is shared.
    std::shared_ptr<TOVEngineGeneration> next(new TOVEngineGeneration(
        rules ? std::make_shared<TOVLifecycleBusinessRules>() : base->rulesStore,
        rules ? base->dataModelInfo : std::make_shared<TOV_DMStructure>(), base->logger,
        base->number() + 1));
    TOVCoreDataControllers core;
    next->lendTo(core);
    try {
        handOn(loadDocument(kind.c_str(), input, inputIsFilePath, &core));
    } catch (...) {
        // An interrupted load (out of memory, most likely), or an answer that
        // could not be handed on: the document counts as not loaded, as after
        // any failed load. Emptying a store allocates nothing.
        if (rules) {
            next->rulesStore->clearAllRules();
        } else {
            next->dataModelInfo->clearAllInfo();
        }
        state->publish(std::move(next));
        throw;
    }
    state->publish(std::move(next));
}

TOVEngine::DocumentsLoad TOVEngine::replaceDocuments(const std::string& rules,
                                                     const std::string& dataModel,
                                                     bool inputsArePaths) {
    std::lock_guard<std::mutex> lock(state->changing);
    const std::shared_ptr<const TOVEngineGeneration> base = state->now();
    std::shared_ptr<TOVEngineGeneration> next(new TOVEngineGeneration(
        std::make_shared<TOVLifecycleBusinessRules>(), std::make_shared<TOV_DMStructure>(),
        base->logger, base->number() + 1));
    TOVCoreDataControllers core;
    next->lendTo(core);
    // The data model first, as the program loads the documents. An exception
    // leaves the current generation serving: nothing was published.
    DocumentsLoad outcome{TOVResponse(), TOVResponse(), false};
    outcome.dataModel = loadDocument("datamodel", dataModel, inputsArePaths, &core);
    outcome.rules = loadDocument("rules", rules, inputsArePaths, &core);
    outcome.published = outcome.dataModel.getGeneralResult() && outcome.rules.getGeneralResult();
    if (outcome.published) {
        state->publish(std::move(next));
    }
    return outcome;
}

bool TOVEngine::setLog(const std::string& where, std::string& whyNot) {
    std::string libraryFolder;
    if (!tovapi::libraryLogSetting(where, libraryFolder, whyNot)) {
        return false;
    }
    std::lock_guard<std::mutex> lock(state->changing);
    const std::shared_ptr<const TOVEngineGeneration> base = state->now();
    state->publish(std::shared_ptr<const TOVEngineGeneration>(new TOVEngineGeneration(
        base->rulesStore, base->dataModelInfo, loggerTo(libraryFolder), base->number())));
    return true;
}

const std::vector<std::string>& TOVEngine::kindNames() {
    static const std::vector<std::string> names = [] {
        std::vector<std::string> words;
        for (const TOVRequestKind& kind : GetTOVRequestKinds()) {
            words.emplace_back(kind.name);
        }
        return words;
    }();
    return names;
}

bool TOVEngine::isDocumentKind(const std::string& kind) {
    const TOVRequestKind* found = tovapi::findRequestKind(kind.c_str());
    return found != nullptr && found->isDocument;
}
