// The lock of the databases around a deletion: taken, waited for no longer than it may, given back.
#include <gmock/gmock.h>

#include <memory>
#include <thread>

#include "tests/deletion/DeletionFixture.h"
#include "tests/support/EngineWrites.h"
#include "tests/support/LockWaits.h"
#include "tests/support/LockWatchingContainer.h"
#include "tests/support/MutexHolder.h"

namespace tsl::test {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class DeletionLock : public DeletionTest {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(DeletionTest::SetUp());
        Prepare(kFourDays);
    }
};

TEST_F(DeletionLock, IsHeldWhileRowsAreDeletedAndFreeWhileTheContainerIsRead) {
    using Reads = std::map<UINT64, bool>;
    {
        LockWatchingContainer ids(IdRange(4).Get());
        const EngineWrites writes;
        EXPECT_EQ(S_OK, Delete(&ids));
        EXPECT_TRUE(writes.WereUnderTheLock());
        EXPECT_EQ((Reads{{kKeyRecordToTake, true},
                         {kKeyFirstRecordId, true},
                         {kKeyLastRecordId, true},
                         {kKeyUserId, true}}),
                  ids.lockWasFree);
    }
    {
        LockWatchingContainer times(TimeRange().Date(kKeyStartTime, 40003).Get());
        const EngineWrites writes;
        EXPECT_EQ(S_OK, Delete(&times));
        EXPECT_TRUE(writes.WereUnderTheLock());
        EXPECT_EQ((Reads{{kKeyRecordToTake, true},
                         {kKeyStartTime, true},
                         {kKeyEndTime, true},
                         {kKeyUserId, true}}),
                  times.lockWasFree);
    }
    EXPECT_EQ("1 2", Left());
}

TEST_F(DeletionLock, OfOneRecordNeedsNothingElseOfTheContainer) {
    LockWatchingContainer one(OneRecord().Ui4(kKeyUserId, 7).Get());
    const EngineWrites writes;
    EXPECT_EQ(S_OK, Delete(&one));
    EXPECT_TRUE(writes.WereUnderTheLock());
    EXPECT_EQ((std::map<UINT64, bool>{{kKeyRecordToTake, true}}), one.lockWasFree);
}

TEST_F(DeletionLock, IsFreeAfterEachForm) {
    for (const ContainerBuilder& request :
         {OneRecord(), IdRange(4), TimeRange(), ContainerBuilder(),
          ContainerBuilder().Ui4(kKeyFirstRecordId, 1)}) {
        EXPECT_EQ(S_OK, Delete(request));
        EXPECT_TRUE(MutexExists(kSqliteAccessLock));
        EXPECT_TRUE(MutexIsFree(kSqliteAccessLock));
        EXPECT_TRUE(NobodyHasOpen(ActionLogPath()));
    }
}

TEST_F(DeletionLock, ThatAnotherProcessHoldsDelaysEachFormThreeSecondsOnly) {
    const MutexHolder other(kSqliteAccessLock);
    const struct {
        ContainerBuilder request;
        const char* left;
    } cases[] = {{OneRecord(), "1 3 4"}, {IdRange(4), "1 3"}, {TimeRange(), ""}};
    for (const auto& each : cases) {
        SCOPED_TRACE(each.left);
        const LockWaits waits(HeldLocks::AreGivenUpAtOnce, kComponentLibrary);
        EXPECT_EQ(S_OK, Delete(each.request));
        EXPECT_THAT(waits.TimeOuts(kSqliteAccessLock), ElementsAre(3000));
        EXPECT_EQ(each.left, Left());
        EXPECT_FALSE(MutexIsFree(kSqliteAccessLock)) << "what was not taken is not given back";
    }
}

TEST_F(DeletionLock, ThatComesFreeInTimeIsTaken) {
    auto other = std::make_unique<MutexHolder>(kSqliteAccessLock);
    const LockWaits waits(HeldLocks::AreWaitedFor, kComponentLibrary);
    std::jthread release([&] {
        EXPECT_TRUE(waits.SeesWaitFor(kSqliteAccessLock));
        EXPECT_EQ("1 2 3 4", Left()) << "deleted without the lock";
        other.reset();
    });
    EXPECT_EQ(S_OK, Delete(OneRecord()));
    release.join();
    EXPECT_THAT(waits.TimeOuts(kSqliteAccessLock), ElementsAre(3000));
    EXPECT_EQ("1 3 4", Left());
}

TEST_F(DeletionLock, ThatWasAbandonedDoesNotStopTheDeletion) {
    MutexHolder other(kSqliteAccessLock);
    other.Kill();
    std::thread([&] {
        EXPECT_EQ(S_OK, Delete(OneRecord()));
        EXPECT_FALSE(MutexIsFree(kSqliteAccessLock)) << "it stays with this thread";
    }).join();
    EXPECT_EQ("1 3 4", Left());
    ReleasePlugin(); // the abandoned mutex goes with its last handle
}

TEST_F(DeletionLock, OfTheRecordIdsIsNotTouched) {
    const MutexHolder other(kLogIdLock);
    const LockWaits waits(HeldLocks::AreGivenUpAtOnce, kComponentLibrary);
    EXPECT_EQ(S_OK, Delete(OneRecord()));
    EXPECT_EQ(S_OK, Delete(IdRange(4)));
    EXPECT_EQ(S_OK, Delete(TimeRange()));
    EXPECT_THAT(waits.TimeOuts(kLogIdLock), IsEmpty());
    EXPECT_EQ("", Left());
}

} // namespace tsl::test
