#include "tov/TOVCoreDataControllers.h"

#include "tov/TOVLifecycleBusinessRules.h"
#include "tov/TOVLogger.h"
#include "tov/TOV_DMStructure.h"

TOVCoreDataControllers::TOVCoreDataControllers()
    : rules(nullptr), dmInfo(nullptr), logger(nullptr), ownsData(false), observer(nullptr) {}

TOVCoreDataControllers::~TOVCoreDataControllers() {
    clearContents();
}

void TOVCoreDataControllers::initializeFromStatics() {
    rules = getTOVMainInstance();
    dmInfo = getTOVDMInfoMainInstance();
    logger = getTOVLoggerMainInstance();
    ownsData = false;
}

void TOVCoreDataControllers::initializeByMalloc() {
    rules = new TOVLifecycleBusinessRules();
    dmInfo = new TOV_DMStructure();
    logger = new TOVLogger(LogToFile);
    ownsData = true;
}

void TOVCoreDataControllers::borrowData(TOVCoreDataControllers* other) {
    rules = other->rules;
    dmInfo = other->dmInfo;
    logger = other->logger;
    ownsData = false;
    observer = other->observer;
}

void TOVCoreDataControllers::borrowData(TOVLifecycleBusinessRules* rulesToBorrow,
                                        TOV_DMStructure* dmInfoToBorrow,
                                        TOVLogger* loggerToBorrow) {
    rules = rulesToBorrow;
    dmInfo = dmInfoToBorrow;
    logger = loggerToBorrow;
    ownsData = false;
}

void TOVCoreDataControllers::clearContents() {
    if (ownsData) {
        delete rules;
        delete dmInfo;
        delete logger;
    }
    rules = nullptr;
    dmInfo = nullptr;
    logger = nullptr;
    ownsData = false;
}

namespace {
// Process-wide instances: created on first use, deliberately never deleted.
TOVLifecycleBusinessRules* mainRules = nullptr;
TOV_DMStructure* mainDMInfo = nullptr;
TOVLogger* mainLogger = nullptr;
}  // namespace

TOVLifecycleBusinessRules* getTOVMainInstance() {
    if (mainRules == nullptr) {
        mainRules = new TOVLifecycleBusinessRules();
    }
    return mainRules;
}

TOV_DMStructure* getTOVDMInfoMainInstance() {
    if (mainDMInfo == nullptr) {
        mainDMInfo = new TOV_DMStructure();
    }
    return mainDMInfo;
}

TOVLogger* getTOVLoggerMainInstance() {
    if (mainLogger == nullptr) {
        mainLogger = new TOVLogger(LogToFile);
    }
    return mainLogger;
}

std::string setTOVLoggingFolder(const std::string& folder, TOVCoreDataControllers* coreData) {
    return coreData->getLogger()->setTOVLoggingOutput(folder);
}
