#include "tov/TOVCoreDataControllers.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <regex>
#include <string>

#include "test_support.h"
#include "tov/TOVLifecycleBusinessRules.h"
#include "tov/TOVLogger.h"
#include "tov/TOVTrigger.h"
#include "tov/TOV_DMStructure.h"
#include "tov/TOV_DMStructureObject.h"

#if defined(__SANITIZE_ADDRESS__)
#define TOV_TEST_SEES_FREES 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define TOV_TEST_SEES_FREES 1
#endif
#endif

#if defined(TOV_TEST_SEES_FREES)
#include <sanitizer/asan_interface.h>
#endif

namespace {

using tovtest::TempFolder;

// Only AddressSanitizer can tell whether a block was freed: it poisons freed memory
// and holds it back from reuse for a while. Without it the checks are skipped.
#if defined(TOV_TEST_SEES_FREES)
constexpr bool kSeesFrees = true;
bool wasFreed(const void* object) {
    return __asan_address_is_poisoned(object) != 0;
}
#else
constexpr bool kSeesFrees = false;
bool wasFreed(const void*) {
    return false;
}
#endif

// A log file name as the logger makes it: the folder, a back-slash, the second.
const std::regex kLogFileInDefaultFolder(R"(.*/\\TOV_Log_-?[0-9]+\.txt)");

std::string captureWhatIsLogged(TOVLogger* logger, const char* message, bool* printed) {
    testing::internal::CaptureStdout();
    *printed = logger->printToLog(message);
    std::fflush(stdout);
    return testing::internal::GetCapturedStdout();
}

class MainInstancesRestorer {
public:
    MainInstancesRestorer()
        : rules_(*getTOVMainInstance()),
          dmInfo_(*getTOVDMInfoMainInstance()),
          logger_(*getTOVLoggerMainInstance()) {}
    ~MainInstancesRestorer() {
        *getTOVMainInstance() = rules_;
        *getTOVDMInfoMainInstance() = dmInfo_;
        *getTOVLoggerMainInstance() = logger_;
    }
    MainInstancesRestorer(const MainInstancesRestorer&) = delete;
    MainInstancesRestorer& operator=(const MainInstancesRestorer&) = delete;

private:
    TOVLifecycleBusinessRules rules_;
    TOV_DMStructure dmInfo_;
    TOVLogger logger_;
};

// ---------------------------------------------------------------------------
// Construction and ownership

TEST(CoreData, DefaultRecordHoldsNothing) {
    TOVCoreDataControllers coreData;
    EXPECT_EQ(coreData.getRules(), nullptr);
    EXPECT_EQ(coreData.getDmInfo(), nullptr);
    EXPECT_EQ(coreData.getLogger(), nullptr);
}

TEST(CoreData, DefaultRecordIsDestroyedAndClearedWithoutEffect) {
    { TOVCoreDataControllers coreData; }
    TOVCoreDataControllers coreData;
    coreData.clearContents();
    coreData.clearContents();
    EXPECT_EQ(coreData.getRules(), nullptr);
    EXPECT_EQ(coreData.getDmInfo(), nullptr);
    EXPECT_EQ(coreData.getLogger(), nullptr);
}

TEST(CoreData, MainInstancesAreTheSameEachTime) {
    TOVLifecycleBusinessRules* rules = getTOVMainInstance();
    TOV_DMStructure* dmInfo = getTOVDMInfoMainInstance();
    TOVLogger* logger = getTOVLoggerMainInstance();
    ASSERT_NE(rules, nullptr);
    ASSERT_NE(dmInfo, nullptr);
    ASSERT_NE(logger, nullptr);
    EXPECT_EQ(getTOVMainInstance(), rules);
    EXPECT_EQ(getTOVDMInfoMainInstance(), dmInfo);
    EXPECT_EQ(getTOVLoggerMainInstance(), logger);
}

TEST(CoreData, InitializeFromStaticsSharesTheMainInstances) {
    TOVCoreDataControllers coreData;
    coreData.initializeFromStatics();
    EXPECT_EQ(coreData.getRules(), getTOVMainInstance());
    EXPECT_EQ(coreData.getDmInfo(), getTOVDMInfoMainInstance());
    EXPECT_EQ(coreData.getLogger(), getTOVLoggerMainInstance());

    TOVCoreDataControllers other;
    other.initializeFromStatics();
    EXPECT_EQ(other.getRules(), coreData.getRules());
    EXPECT_EQ(other.getDmInfo(), coreData.getDmInfo());
    EXPECT_EQ(other.getLogger(), coreData.getLogger());
}

TEST(CoreData, ClearingStaticsDeletesNothingAndKeepsTheirContents) {
    // Other suites share the main instances: give them back as they were afterwards.
    const MainInstancesRestorer restorer;
    const TempFolder folder;
    ASSERT_FALSE(folder.path().empty());

    TOVCoreDataControllers coreData;
    coreData.initializeFromStatics();
    coreData.getRules()->clearAllRules();
    coreData.getRules()->appendNewTriggerRule(TOVTrigger());
    coreData.getDmInfo()->clearAllInfo();
    coreData.getDmInfo()->appendDMStructureObject(TOV_DMStructureObject("Part"));
    const std::string file = setTOVLoggingFolder(folder.asLoggingFolder(), &coreData);

    coreData.clearContents();
    EXPECT_EQ(coreData.getRules(), nullptr);
    EXPECT_EQ(coreData.getDmInfo(), nullptr);
    EXPECT_EQ(coreData.getLogger(), nullptr);

    if (kSeesFrees) {
        EXPECT_FALSE(wasFreed(getTOVMainInstance()));
        EXPECT_FALSE(wasFreed(getTOVDMInfoMainInstance()));
        EXPECT_FALSE(wasFreed(getTOVLoggerMainInstance()));
    }
    // What was put in through the cleared record is still in the main instances.
    EXPECT_TRUE(getTOVMainInstance()->existAnyRules());
    ASSERT_EQ(getTOVDMInfoMainInstance()->getAllStructureObjects().size(), 1u);
    EXPECT_EQ(getTOVDMInfoMainInstance()->getAllStructureObjects()[0].getName(), "Part");
    EXPECT_EQ(getTOVLoggerMainInstance()->getFile(), file);
    EXPECT_TRUE(getTOVLoggerMainInstance()->printToLog("still here"));

    TOVCoreDataControllers again;
    again.initializeFromStatics();
    EXPECT_TRUE(again.getRules()->existAnyRules());
    EXPECT_TRUE(again.getDmInfo()->existAnyInfo());
    EXPECT_EQ(again.getLogger()->getFile(), file);
}

TEST(CoreData, InitializeByMallocCreatesAPrivateEmptySet) {
    TOVCoreDataControllers coreData;
    coreData.initializeByMalloc();
    ASSERT_NE(coreData.getRules(), nullptr);
    ASSERT_NE(coreData.getDmInfo(), nullptr);
    ASSERT_NE(coreData.getLogger(), nullptr);
    EXPECT_NE(coreData.getRules(), getTOVMainInstance());
    EXPECT_NE(coreData.getDmInfo(), getTOVDMInfoMainInstance());
    EXPECT_NE(coreData.getLogger(), getTOVLoggerMainInstance());
    EXPECT_FALSE(coreData.getRules()->existAnyRules());
    EXPECT_FALSE(coreData.getDmInfo()->existAnyInfo());
    // The new logger starts in the default folder, which ends in a forward slash.
    EXPECT_TRUE(std::regex_match(coreData.getLogger()->getFile(), kLogFileInDefaultFolder))
        << coreData.getLogger()->getFile();
}

TEST(CoreData, TwoPrivateSetsShareNothing) {
    TOVCoreDataControllers first;
    TOVCoreDataControllers second;
    first.initializeByMalloc();
    second.initializeByMalloc();
    EXPECT_NE(first.getRules(), second.getRules());
    EXPECT_NE(first.getDmInfo(), second.getDmInfo());
    EXPECT_NE(first.getLogger(), second.getLogger());
}

TEST(CoreData, ClearingAPrivateSetDeletesItAndASecondClearDoesNothing) {
    TOVCoreDataControllers coreData;
    coreData.initializeByMalloc();
    const TOVLifecycleBusinessRules* rules = coreData.getRules();
    const TOV_DMStructure* dmInfo = coreData.getDmInfo();
    const TOVLogger* logger = coreData.getLogger();
    if (kSeesFrees) {
        EXPECT_FALSE(wasFreed(rules));
        EXPECT_FALSE(wasFreed(dmInfo));
        EXPECT_FALSE(wasFreed(logger));
    }

    coreData.clearContents();
    EXPECT_EQ(coreData.getRules(), nullptr);
    EXPECT_EQ(coreData.getDmInfo(), nullptr);
    EXPECT_EQ(coreData.getLogger(), nullptr);
    if (kSeesFrees) {
        EXPECT_TRUE(wasFreed(rules));
        EXPECT_TRUE(wasFreed(dmInfo));
        EXPECT_TRUE(wasFreed(logger));
    }

    // A second delete of the same objects would abort under AddressSanitizer.
    coreData.clearContents();
    EXPECT_EQ(coreData.getRules(), nullptr);
    EXPECT_EQ(coreData.getDmInfo(), nullptr);
    EXPECT_EQ(coreData.getLogger(), nullptr);
}

TEST(CoreData, DestroyingAnOwningRecordDeletesItsSet) {
    const TOVLogger* logger = nullptr;
    const TOVLifecycleBusinessRules* rules = nullptr;
    const TOV_DMStructure* dmInfo = nullptr;
    {
        TOVCoreDataControllers coreData;
        coreData.initializeByMalloc();
        logger = coreData.getLogger();
        rules = coreData.getRules();
        dmInfo = coreData.getDmInfo();
    }
    if (kSeesFrees) {
        EXPECT_TRUE(wasFreed(rules));
        EXPECT_TRUE(wasFreed(dmInfo));
        EXPECT_TRUE(wasFreed(logger));
    }
}

TEST(CoreData, InitializeFromStaticsAfterClearingAPrivateSetSharesTheMainInstances) {
    TOVCoreDataControllers coreData;
    coreData.initializeByMalloc();
    coreData.clearContents();
    coreData.initializeFromStatics();
    EXPECT_EQ(coreData.getLogger(), getTOVLoggerMainInstance());
    coreData.clearContents();
    if (kSeesFrees) {
        EXPECT_FALSE(wasFreed(getTOVLoggerMainInstance()));
    }
}

TEST(CoreData, BorrowingGivesTheSamePointersWithoutOwnership) {
    TOVCoreDataControllers owner;
    owner.initializeByMalloc();
    {
        TOVCoreDataControllers borrower;
        borrower.borrowData(&owner);
        EXPECT_EQ(borrower.getRules(), owner.getRules());
        EXPECT_EQ(borrower.getDmInfo(), owner.getDmInfo());
        EXPECT_EQ(borrower.getLogger(), owner.getLogger());
    }
    if (kSeesFrees) {
        EXPECT_FALSE(wasFreed(owner.getRules()));
        EXPECT_FALSE(wasFreed(owner.getDmInfo()));
        EXPECT_FALSE(wasFreed(owner.getLogger()));
    }
    // Still usable through the owner, which frees them when it goes.
    EXPECT_FALSE(owner.getRules()->existAnyRules());
    EXPECT_FALSE(owner.getDmInfo()->existAnyInfo());
    EXPECT_FALSE(owner.getLogger()->getFile().empty());
}

TEST(CoreData, ClearingABorrowerOnlyForgetsThePointers) {
    TOVCoreDataControllers owner;
    owner.initializeByMalloc();
    TOVCoreDataControllers borrower;
    borrower.borrowData(&owner);
    borrower.clearContents();
    EXPECT_EQ(borrower.getLogger(), nullptr);
    ASSERT_NE(owner.getLogger(), nullptr);
    if (kSeesFrees) {
        EXPECT_FALSE(wasFreed(owner.getLogger()));
    }
}

TEST(CoreData, BorrowingDropsOwnershipOfTheBorrowersOwnSetWithoutFreeingIt) {
    TOVCoreDataControllers owner;
    owner.initializeByMalloc();
    TOVCoreDataControllers record;
    record.initializeByMalloc();
    TOVCoreDataControllers keeper;
    keeper = record;  // keeper now owns record's set
    record.borrowData(&owner);
    EXPECT_EQ(record.getLogger(), owner.getLogger());
    EXPECT_NE(keeper.getLogger(), owner.getLogger());
    if (kSeesFrees) {
        EXPECT_FALSE(wasFreed(keeper.getLogger()));
    }
}

TEST(CoreData, CopyAssignmentCopiesTheOwnershipFlag) {
    TOVCoreDataControllers original;
    original.initializeByMalloc();
    TOVCoreDataControllers copy;
    copy = original;
    EXPECT_EQ(copy.getRules(), original.getRules());
    EXPECT_EQ(copy.getDmInfo(), original.getDmInfo());
    EXPECT_EQ(copy.getLogger(), original.getLogger());

    const TOVLogger* logger = original.getLogger();
    // Only one of two owning copies may free the set: drop the original's flag first.
    original.borrowData(&copy);
    copy.clearContents();
    if (kSeesFrees) {
        EXPECT_TRUE(wasFreed(logger));
    }
    original.clearContents();
}

TEST(CoreData, CopyAssignmentFromANonOwningRecordOwnsNothing) {
    TOVCoreDataControllers statics;
    statics.initializeFromStatics();
    TOVCoreDataControllers copy;
    copy = statics;
    EXPECT_EQ(copy.getLogger(), getTOVLoggerMainInstance());
    copy.clearContents();
    EXPECT_EQ(copy.getLogger(), nullptr);
    if (kSeesFrees) {
        EXPECT_FALSE(wasFreed(getTOVLoggerMainInstance()));
    }
}

TEST(CoreData, CopyAssignmentReleasesNothingItHeld) {
    TOVCoreDataControllers target;
    target.initializeByMalloc();
    TOVCoreDataControllers keeper;
    keeper = target;
    const TOVLogger* logger = target.getLogger();

    TOVCoreDataControllers empty;
    target = empty;
    EXPECT_EQ(target.getLogger(), nullptr);
    if (kSeesFrees) {
        EXPECT_FALSE(wasFreed(logger));
    }
}

// ---------------------------------------------------------------------------
// setTOVLoggingFolder

TEST(CoreData, LoggingFolderEmptyReturnsTheCurrentFileAndSilencesTheLogger) {
    TOVCoreDataControllers coreData;
    coreData.initializeByMalloc();
    const std::string before = coreData.getLogger()->getFile();
    EXPECT_EQ(setTOVLoggingFolder("", &coreData), before);
    EXPECT_EQ(coreData.getLogger()->getFile(), before);
    bool printed = true;
    EXPECT_EQ(captureWhatIsLogged(coreData.getLogger(), "dropped", &printed), "");
    EXPECT_FALSE(printed);
}

TEST(CoreData, LoggingFolderKeywordInCapitalsSwitchesToTheConsole) {
    TOVCoreDataControllers coreData;
    coreData.initializeByMalloc();
    const std::string before = coreData.getLogger()->getFile();
    EXPECT_EQ(setTOVLoggingFolder("CONSOLE", &coreData), before);
    bool printed = false;
    EXPECT_EQ(captureWhatIsLogged(coreData.getLogger(), "to the console", &printed),
              "to the console\n");
    EXPECT_TRUE(printed);
}

TEST(CoreData, LoggingFolderNamesTheNewLogFile) {
    const TempFolder folder;
    ASSERT_FALSE(folder.path().empty());
    TOVCoreDataControllers coreData;
    coreData.initializeByMalloc();
    const std::string file = setTOVLoggingFolder(folder.asLoggingFolder(), &coreData);
    EXPECT_EQ(file, coreData.getLogger()->getFile());
    const std::string prefix = folder.path() + "/\\TOV_Log_";
    ASSERT_EQ(file.compare(0, prefix.size(), prefix), 0) << file;
    EXPECT_TRUE(std::regex_match(file.substr(prefix.size()), std::regex(R"([0-9]+\.txt)"))) << file;
    EXPECT_TRUE(coreData.getLogger()->printToLog("into the folder"));
    EXPECT_EQ(access(file.c_str(), F_OK), 0);
}

TEST(CoreData, LoggingFolderChangesOnlyTheGivenRecordsLogger) {
    TOVCoreDataControllers first;
    TOVCoreDataControllers second;
    first.initializeByMalloc();
    second.initializeByMalloc();
    const std::string secondFile = second.getLogger()->getFile();
    setTOVLoggingFolder("console", &first);
    EXPECT_EQ(second.getLogger()->getFile(), secondFile);
    bool printed = true;
    EXPECT_EQ(captureWhatIsLogged(first.getLogger(), "m", &printed), "m\n");
    EXPECT_TRUE(printed);
}

}  // namespace
