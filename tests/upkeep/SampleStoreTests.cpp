// The sample is a store like those of the component, or the other tests would prove nothing.
#include "tests/support/FileDatabase.h"
#include "tests/upkeep/DamagedStore.h"

namespace tsl::test {

namespace {

using SampleStore = StoreTest;

TEST_F(SampleStore, HasThreeTablesWithTheirRecords) {
    MakeStoreFolder();
    const StorePaths store = StoreIn(StoreFolder().wstring());
    MakeSampleStore(store);
    const FileDatabase actionLog(store.actionLog);
    EXPECT_EQ("600", actionLog.Value("SELECT COUNT(*) FROM TslIf_DbActionLog"));
    EXPECT_EQ("40", actionLog.Value("SELECT COUNT(*) FROM TslIf_ContentDeleteProperty"));
    EXPECT_EQ("2048", actionLog.Value("PRAGMA page_size"));
    EXPECT_NE("0", actionLog.Value("PRAGMA freelist_count"));
    EXPECT_EQ("600", actionLog.Value("PRAGMA user_version"));
    const FileDatabase replayLog(store.replayLog);
    EXPECT_EQ("100", replayLog.Value("SELECT COUNT(*) FROM TslIf_ActionReplay"));
    EXPECT_EQ("ok", actionLog.Value("PRAGMA integrity_check"));
}

TEST_F(SampleStore, IsDamagedInManyWays) {
    MakeStoreFolder();
    const StorePaths store = StoreIn(StoreFolder().wstring());
    MakeSampleStore(store);
    const Bytes whole = ReadBytes(store.actionLog);
    const std::vector<DamagedFile> damaged = DamagedDatabases(whole, 200);
    EXPECT_GE(damaged.size(), 200u);
    for (const DamagedFile& file : damaged)
        EXPECT_NE(whole, file.bytes) << file.how;
}

} // namespace

} // namespace tsl::test
