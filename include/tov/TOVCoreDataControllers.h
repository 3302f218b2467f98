// The brain that every request carries: rule store, data-model information and
// logger, either borrowed from the process-wide instances or owned privately.
//
// One private set per host (or per thread that serves requests on its own):
//
//   TOVCoreDataControllers coreData;
//   coreData.initializeByMalloc();            // owns a new store, data model, logger
//   setTOVLoggingFolder("console", &coreData);  // or a folder, or "" for silence
//   // ... load the documents and evaluate (see entry_points.h) ...
//   // Destroying coreData frees the set; the pointers handed out die with it.
#ifndef TOV_TOVCOREDATACONTROLLERS_H_
#define TOV_TOVCOREDATACONTROLLERS_H_

#include <string>

#include "tov/export.h"

class TOVDecisionObserver;
class TOVLifecycleBusinessRules;
class TOV_DMStructure;
class TOVLogger;

class TOV_API TOVCoreDataControllers {
public:
    // All three pointers null; owns nothing.
    TOVCoreDataControllers();
    TOVCoreDataControllers(const TOVCoreDataControllers& other) = default;
    // Copies all four fields as they stand, the ownership flag included, and
    // releases nothing: only one of two owning copies may be destroyed.
    TOVCoreDataControllers& operator=(const TOVCoreDataControllers& other) = default;
    ~TOVCoreDataControllers();

    // Shares the process-wide instances, which are never freed.
    void initializeFromStatics();
    // Creates a private, empty set that this record owns and frees.
    void initializeByMalloc();
    // Copies the pointers of `other` (not null) without owning them, its
    // decision observer included.
    void borrowData(TOVCoreDataControllers* other);
    // Borrows the three parts one by one, so that parts owned elsewhere (an
    // engine's generations share a data model between them) can be combined.
    void borrowData(TOVLifecycleBusinessRules* rulesToBorrow, TOV_DMStructure* dmInfoToBorrow,
                    TOVLogger* loggerToBorrow);
    // Frees an owned set; always leaves the record null and not owning.
    void clearContents();

    TOVLifecycleBusinessRules* getRules() { return rules; }
    TOV_DMStructure* getDmInfo() { return dmInfo; }
    TOVLogger* getLogger() { return logger; }

    // Who is told which rules judge the requests of calls on this core data
    // (see TOVDecisionTrace.h), or null, the default, for nobody. Not owned.
    // Give each calling thread a core data of its own when observing.
    void setDecisionObserver(TOVDecisionObserver* observerToTell) { observer = observerToTell; }
    TOVDecisionObserver* getDecisionObserver() const { return observer; }

private:
    TOVLifecycleBusinessRules* rules;
    TOV_DMStructure* dmInfo;
    TOVLogger* logger;
    bool ownsData;
    TOVDecisionObserver* observer;
};

// The process-wide instances, created empty on first use and never deleted.
// First use is unguarded: make it from one thread.
TOV_API TOVLifecycleBusinessRules* getTOVMainInstance();
TOV_API TOV_DMStructure* getTOVDMInfoMainInstance();
TOV_API TOVLogger* getTOVLoggerMainInstance();

// Sets where `coreData`'s logger writes: a folder, "console", or "" for nowhere.
// Returns the path of the current log file.
TOV_API std::string setTOVLoggingFolder(const std::string& folder,
                                        TOVCoreDataControllers* coreData);

#endif  // TOV_TOVCOREDATACONTROLLERS_H_
