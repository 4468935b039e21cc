// The first id of a store without a counter file: one of the older form is converted before, so
// that no id that it has is handed out again.
#include <gmock/gmock.h>

#include "tests/maintenance/OldStore.h"
#include "tests/support/EngineSleeps.h"
#include "tests/support/ImportHook.h"
#include "tests/support/LockWaits.h"
#include "tests/support/MutexHolder.h"

namespace tsl::test {

namespace fs = std::filesystem;

using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

decltype(&SetFileInformationByHandle) g_change = &SetFileInformationByHandle;

BOOL WINAPI RefuseToMove(HANDLE file, FILE_INFO_BY_HANDLE_CLASS what, LPVOID request, DWORD size) {
    if (what != FileRenameInfo) return g_change(file, what, request, size);
    SetLastError(ERROR_ACCESS_DENIED);
    return FALSE;
}

void WINAPI DoNotSleep(DWORD) {}

} // namespace

class FirstId : public OldStoreTest {
protected:
    // Asks for an id and expects the failure, that nothing was issued, and that the locks are free.
    void ExpectRefusal(HRESULT failure) {
        CVariant answer;
        EXPECT_EQ(failure, Plugin().Request(kCommandNextRecordId, ContainerBuilder(), nullptr,
                                            answer.Address()));
        EXPECT_EQ(VT_EMPTY, answer.Type());
        EXPECT_FALSE(fs::is_regular_file(CounterPath()));
        ExpectLocksAreFree();
    }
};

TEST_F(FirstId, ConvertsAStoreOfTheOlderForm) {
    MakeOldStore("complete.sql");
    const StoreImage before = ReadActionLog();
    EXPECT_EQ(43u, NextId());
    EXPECT_EQ(Converted(before), ReadActionLog());
    EXPECT_EQ(44u, NextId());
}

TEST_F(FirstId, IsRefusedWhileTheStoreCannotBeConverted) {
    MakeOldStore("complete.sql");
    const StoreImage before = ReadActionLog();
    for (const char* const begin : {"BEGIN IMMEDIATE", "BEGIN EXCLUSIVE"}) {
        SCOPED_TRACE(begin);
        const FileDatabase other(ActionLogPath());
        other.Query(begin);
        const EngineSleeps sleeps;
        EXPECT_EQ(S_OK, Plugin().SetRecordingEnabled(1));
        ExpectRefusal(kEngineBusy);
        other.Query("ROLLBACK");
    }
    EXPECT_EQ(43u, NextId());
    EXPECT_EQ(Converted(before), ReadActionLog());
}

TEST_F(FirstId, IsRefusedWhileTheCounterCannotBeMade) {
    MakeOldStore("complete.sql");
    const StoreImage before = ReadActionLog();
    {
        const HMODULE component = GetModuleHandleW(L"TslIfDbActionLog.dll");
        const ImportHook hook(component, "SetFileInformationByHandle", &RefuseToMove);
        const ImportHook sleep(component, "Sleep", &DoNotSleep);
        EXPECT_EQ(S_OK, Plugin().SetRecordingEnabled(1));
        ExpectRefusal(kAccessDenied);
    }
    ExpectOnlyLogKindsAreSet(before);
    EXPECT_EQ(43u, NextId());
    EXPECT_EQ(Converted(before), ReadActionLog());
}

TEST_F(FirstId, IsRefusedWhileTheDatabaseCannotBeOpened) {
    MakeOldStore("complete.sql");
    {
        const CHandle owner(CreateFileW(ActionLogPath().c_str(), GENERIC_READ, /*shareMode=*/0,
                                        nullptr, OPEN_EXISTING, 0, nullptr));
        ASSERT_TRUE(owner);
        const EngineSleeps sleeps;
        ExpectRefusal(kEngineCannotOpen);
    }
    EXPECT_EQ(43u, NextId());
}

TEST_F(FirstId, IsOneWithoutADatabaseAndMakesNone) {
    EXPECT_EQ(1u, NextId());
    EXPECT_FALSE(fs::exists(ActionLogPath()));
}

TEST_F(FirstId, IsOneOfAStoreThatIsNotOfTheOlderForm) {
    const char* const stores[] = {
        "CREATE TABLE TslIf_DbActionLog (ActionLogId INTEGER)",
        "CREATE TABLE TslIf_ActionRecordId (CurrentRecordId INTEGER, ActionLogId INTEGER);"
        "INSERT INTO TslIf_ActionRecordId VALUES (1, 42)",
    };
    for (const char* const sql : stores) {
        SCOPED_TRACE(sql);
        fs::remove(ActionLogPath());
        fs::remove(CounterPath());
        ChangeActionLog(sql);
        const Bytes database = ReadBytes(ActionLogPath());
        EXPECT_EQ(1u, NextId());
        EXPECT_EQ(database, ReadBytes(ActionLogPath()));
    }
}

TEST_F(FirstId, IsOneOfAStoreWithoutALastId) {
    MakeOldStore("no-last-id.sql");
    const Bytes database = ReadBytes(ActionLogPath());
    EXPECT_EQ(1u, NextId());
    EXPECT_EQ(database, ReadBytes(ActionLogPath()));
}

TEST_F(FirstId, IsOneOfAFileThatIsNoDatabase) {
    MakeStoreFolder();
    WriteBytes(ActionLogPath(), Bytes(4096, 0xA5));
    EXPECT_EQ(1u, NextId());
    EXPECT_EQ(Bytes(4096, 0xA5), ReadBytes(ActionLogPath()));
}

TEST_F(FirstId, WaitsThreeSecondsForTheDatabasesAndConvertsThen) {
    MakeOldStore("complete.sql");
    const MutexHolder other(kSqliteAccessLock);
    {
        const LockWaits waits(HeldLocks::AreGivenUpAtOnce, kComponentLibrary);
        EXPECT_EQ(43u, NextId());
        EXPECT_THAT(waits.TimeOuts(kSqliteAccessLock), ElementsAre(3000));
    }
    const LockWaits waits(HeldLocks::AreGivenUpAtOnce, kComponentLibrary);
    EXPECT_EQ(44u, NextId());
    EXPECT_THAT(waits.TimeOuts(kSqliteAccessLock), IsEmpty()) << "there is a counter now";
}

} // namespace tsl::test
