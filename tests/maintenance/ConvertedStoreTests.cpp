// A store with a counter file is taken for converted: whatever else it holds, nothing changes.
#include <gmock/gmock.h>

#include "store/Maintenance.h"
#include "tests/maintenance/OldStore.h"
#include "tests/support/LockWaits.h"
#include "tests/support/MutexHolder.h"

namespace tsl::test {

namespace fs = std::filesystem;

using ::testing::IsEmpty;

class ConvertedStore : public OldStoreTest {};

TEST_F(ConvertedStore, IsToldByAnyCounterFile) {
    MakeOldStore("complete.sql");
    const Bytes database = ReadBytes(ActionLogPath());
    for (const Bytes& counter :
         {CounterBytes(L"00000007"), Bytes(), Utf16FileBytes(L""), Utf16FileBytes(L"abc"),
          Bytes{0xFF, 0xFE, '0', 0, '0'}, CounterBytes(L"4294967295")}) {
        SCOPED_TRACE(counter.size());
        WriteBytes(CounterPath(), counter);
        EXPECT_EQ(E_FAIL, Maintain());
        ExpectTheSwitchWorks();
        EXPECT_EQ(counter, ReadBytes(CounterPath()));
        EXPECT_EQ(database, ReadBytes(ActionLogPath()));
    }
}

TEST_F(ConvertedStore, IsToldByACounterFileThatNobodyMayRead) {
    MakeOldStore("complete.sql");
    const Bytes database = ReadBytes(ActionLogPath());
    WriteBytes(CounterPath(), CounterBytes(L"00000007"));
    {
        const CHandle other(CreateFileW(CounterPath().c_str(), GENERIC_READ, /*share=*/0, nullptr,
                                        OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
        ASSERT_TRUE(other);
        EXPECT_EQ(E_FAIL, Maintain());
        ExpectTheSwitchWorks();
    }
    EXPECT_EQ(database, ReadBytes(ActionLogPath()));
}

TEST_F(ConvertedStore, WithoutADatabaseGetsNone) {
    MakeStoreFolder();
    WriteBytes(CounterPath(), CounterBytes(L"00000007"));
    EXPECT_EQ(E_FAIL, Maintain());
    ExpectTheSwitchWorks();
    EXPECT_FALSE(fs::exists(ActionLogPath()));
    EXPECT_EQ(8u, NextId());
}

TEST_F(ConvertedStore, DoesNotWaitForTheLocks) {
    MakeOldStore("complete.sql");
    WriteBytes(CounterPath(), CounterBytes(L"00000007"));
    const MutexHolder database(kSqliteAccessLock);
    const MutexHolder counter(kLogIdLock);
    const LockWaits waits(HeldLocks::AreGivenUpAtOnce);
    EXPECT_EQ(E_FAIL, Maintain());
    EXPECT_THAT(waits.TimeOuts(kSqliteAccessLock), IsEmpty());
    EXPECT_THAT(waits.TimeOuts(kLogIdLock), IsEmpty());
}

TEST_F(ConvertedStore, IsLeftAloneByTheSecondRun) {
    MakeOldStore("complete.sql");
    ASSERT_EQ(S_OK, Maintain());
    const Bytes database = ReadBytes(ActionLogPath());
    const Bytes counter = ReadBytes(CounterPath());
    EXPECT_EQ(E_FAIL, Maintain());
    ExpectTheSwitchWorks();
    EXPECT_EQ(database, ReadBytes(ActionLogPath()));
    EXPECT_EQ(counter, ReadBytes(CounterPath()));
}

TEST_F(ConvertedStore, IsLeftAloneByTheSameObjectToo) {
    MakeOldStore("complete.sql");
    const CActionLogStore store(GetModuleHandleW(nullptr));
    EXPECT_EQ(S_OK, MaintainStore(store));
    const Bytes database = ReadBytes(ActionLogPath());
    EXPECT_EQ(E_FAIL, MaintainStore(store));
    EXPECT_EQ(database, ReadBytes(ActionLogPath()));
}

TEST_F(ConvertedStore, KeepsTheKindsOfRecordsWrittenSince) {
    MakeOldStore("complete.sql");
    for (const UINT32 kind : {2u, 8u, 32u}) {
        ASSERT_EQ(S_OK, Plugin().SetRecordingEnabled(kind));
        const UINT32 id = NextId();
        ASSERT_EQ(S_OK, Plugin().Notify(kCommandRecordAction, Action(id, L"userLocation")));
    }
    EXPECT_EQ(S_OK, Plugin().SetRecordingEnabled(1));
    EXPECT_EQ(E_FAIL, Maintain());
    EXPECT_EQ((std::vector<Row>{{"43", "2"}, {"44", "8"}, {"45", "32"}}),
              FileDatabase(ActionLogPath())
                  .Query("SELECT ActionLogId, LogKind FROM TslIf_DbActionLog "
                         "WHERE ActionLogId > 41 ORDER BY rowid"));
}

// Without the old table there is nothing to convert; the first id makes the counter file.
TEST_F(ConvertedStore, IsWhatAStoreWithoutALastIdIsAfterItsFirstId) {
    MakeOldStore("no-id-table.sql");
    ASSERT_EQ(kEngineError, Maintain());
    EXPECT_EQ("1 4 1 4 1 1", LogKinds());
    ChangeActionLog("UPDATE TslIf_DbActionLog SET LogKind = 2");
    ASSERT_EQ(kEngineError, Maintain());
    EXPECT_EQ("1 4 1 4 1 1", LogKinds()) << "not converted: all of it again";
    ChangeActionLog("UPDATE TslIf_DbActionLog SET LogKind = 2");
    EXPECT_EQ(1u, NextId());
    EXPECT_EQ(E_FAIL, Maintain());
    ExpectTheSwitchWorks();
    EXPECT_EQ("2 2 2 2 2 2", LogKinds());
}

} // namespace tsl::test
