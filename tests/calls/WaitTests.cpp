// How long a call can wait for others, at the worst.
#include <gmock/gmock.h>

#include "component/host/CommandCodes.h"
#include "tests/calls/CallsFixture.h"
#include "tests/support/Containers.h"
#include "tests/support/EngineSleeps.h"
#include "tests/support/FileDatabase.h"
#include "tests/support/LockWaits.h"
#include "tests/support/MutexHolder.h"

namespace tsl::test {

namespace {

using ::testing::ElementsAre;

// With the milliseconds that the tries themselves ask for.
constexpr DWORD kMostOfTwoWaits = 2 * kStatementWait + 100;

} // namespace

class Waits : public CallsTest {
protected:
    ContainerBuilder OfUser() { return ContainerBuilder().Ui4(kKeyUserId, 7); }
};

TEST_F(Waits, ForTheRecordIdLockAreOneInAQueryByIds) {
    const MutexHolder holder(kLogIdLock);
    const LockWaits waits(HeldLocks::AreGivenUpAtOnce, kComponentLibrary);
    CVariant answer;
    EXPECT_EQ(S_OK, Plugin().Request(kCommandQueryIds, OfUser().Ui4(kKeyFirstRecordId, 2), nullptr,
                                     answer.Address()));
    EXPECT_THAT(waits.TimeOuts(kLogIdLock), ElementsAre(10000));
    EXPECT_THAT(waits.TimeOuts(kSqliteAccessLock), ElementsAre(3000));
}

TEST_F(Waits, ForWhoeverStaysInTheFilesAreTwoInAnOperation) {
    for (const char* const hold : {"BEGIN EXCLUSIVE", "BEGIN IMMEDIATE", "BEGIN"}) {
        for (const HostCommand& command : HostCommands()) {
            SCOPED_TRACE(std::string(command.name) + " meets " + hold);
            const FileDatabase log(ActionLogPath());
            const FileDatabase replay(ReplayPath());
            for (const FileDatabase* const database : {&log, &replay}) {
                database->Query(hold);
                database->Query("SELECT COUNT(*) FROM sqlite_master");
            }
            // A command can have several operations, each with a wait of its own for the lock.
            DWORD longest = 0;
            DWORD before = 0;
            const EngineSleeps sleeps;
            const auto endOperation = [&] {
                longest = std::max(longest, sleeps.Milliseconds() - before);
                before = sleeps.Milliseconds();
            };
            Host().onCall = [&](HostMethod) { endOperation(); };
            CallByHost(command, Plugin(), Turn::First);
            endOperation();
            Host().onCall = nullptr;
            // Whoever is there all the time is waited for twice at the most.
            EXPECT_LE(longest, kMostOfTwoWaits);
        }
    }
}

// Who is in the file goes on as soon as the engine has nearly given up, and is there again.
TEST_F(Waits, OfARecordThatMeetsSomebodyAtEachStepStayBelowThatForTheLock) {
    const FileDatabase replay(ReplayPath());
    replay.Query("BEGIN EXCLUSIVE");
    bool reads = false;
    DWORD soFar = 0;
    {
        const EngineSleeps sleeps([&](DWORD asked) {
            soFar = asked;
            if (reads || asked < 800) return;
            reads = true;
            replay.Query("COMMIT");
            replay.Query("BEGIN");
            replay.Query("SELECT COUNT(*) FROM TslIf_ActionReplay");
        });
        EXPECT_EQ(static_cast<HRESULT>(0x80041604),
                  Plugin().Notify(kCommandRecordAction, Action(31, L"playItem")));
    }
    EXPECT_TRUE(reads);
    EXPECT_GT(soFar, 1600u) << "both steps were waited for";
    EXPECT_LT(soFar, 1900u) << "each wait is below a third of that for the lock";
}

} // namespace tsl::test
