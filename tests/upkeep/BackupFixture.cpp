#include "tests/upkeep/BackupFixture.h"

#include "tests/support/StoreChecks.h"
#include "tests/upkeep/DamagedStore.h"
#include "upkeep/backup/Backup.h"

namespace tsl::test {

namespace fs = std::filesystem;

Outcome OutcomeOf(const std::function<void()>& operation) {
    try {
        operation();
    } catch (const CFailure& failure) {
        return {failure.Code(), failure.what()};
    }
    return {};
}

void Unheard(const std::string&, UINT64, UINT64) {}

FolderContent ContentOf(const fs::path& folder) {
    FolderContent content;
    if (!fs::exists(folder)) return content;
    for (const auto& entry : fs::recursive_directory_iterator(folder))
        content[entry.path()] = entry.is_directory() ? Bytes() : ReadBytes(entry.path());
    return content;
}

std::vector<Row> RowsOf(const fs::path& database, const std::string& table) {
    return FileDatabase(database).Query("SELECT * FROM " + table + " ORDER BY rowid");
}

void LeaveJournal(const StorePaths& store) {
    const Bytes before = ReadBytes(store.actionLog);
    Bytes during;
    Bytes journal;
    {
        const FileDatabase database(store.actionLog);
        database.Query("PRAGMA cache_size = 1; PRAGMA synchronous = OFF");
        database.Query("BEGIN; UPDATE TslIf_DbActionLog SET ActionName = 'interrupted'");
        // More than the engine keeps in memory.
        database.Query("WITH RECURSIVE n(id) AS (SELECT 9001 UNION ALL SELECT id + 1 FROM n WHERE "
                       "id < 9400) INSERT INTO TslIf_DbActionLog (ActionLogId, ActionParameters) "
                       "SELECT id, hex(zeroblob(500)) FROM n");
        during = ReadBytes(store.actionLog);
        journal = ReadBytes(JournalOf(store.actionLog));
        database.Query("ROLLBACK");
    }
    ASSERT_TRUE(before != during) << "nothing to take back";
    WriteBytes(store.actionLog, during);
    WriteBytes(JournalOf(store.actionLog), journal);
}

void BackupTest::SetUp() {
    ASSERT_NO_FATAL_FAILURE(StoreTest::SetUp());
    m_store = MachineStore();
    m_folder =
        fs::temp_directory_path() / (L"tsl backup " + std::to_wstring(GetCurrentProcessId()));
    fs::remove_all(m_folder);
}

void BackupTest::TearDown() {
    fs::remove_all(m_folder);
    StoreTest::TearDown();
}

void BackupTest::MakeSample() const {
    MakeStoreFolder();
    fs::create_directories(fs::path(m_store.userIds).parent_path());
    MakeSampleStore(m_store);
}

FolderContent BackupTest::StoreContent() {
    return ContentOf(StoreFolder().parent_path());
}

void BackupTest::BackUp() const {
    const Outcome made =
        OutcomeOf([&] { BackUpStore(m_store, m_folder.wstring(), "the tests", Unheard); });
    ASSERT_EQ(ExitCode::Fine, made.code) << made.message;
}

void BackupTest::BackUpAndChange() const {
    MakeSample();
    ASSERT_NO_FATAL_FAILURE(BackUp());
    FileDatabase(m_store.actionLog).Query("DELETE FROM TslIf_DbActionLog WHERE ActionLogId > 9");
    FileDatabase(m_store.replayLog).Query("DELETE FROM TslIf_ActionReplay");
    WriteBytes(m_store.counter, Utf16FileBytes(L"00000500\t\r\n"));
    WriteBytes(m_store.userIds, Utf16FileBytes(L"0x00000009\tS-1-5-18\t\r\n"));
}

void BackupTest::ExpectSample() const {
    EXPECT_EQ(600, CountRows(m_store.actionLog, kActionLogRows));
    EXPECT_EQ(100, CountRows(m_store.replayLog, kReplayRows));
    EXPECT_EQ(Utf16FileBytes(L"00000600\t\r\n"), ReadBytes(m_store.counter));
    EXPECT_EQ(ReadBytes(m_folder / L"UserIdList.dat"), ReadBytes(m_store.userIds));
}

std::wstring BackupTest::Typed(const std::wstring& command) const {
    return command + L" \"" + m_folder.wstring() + L"\"";
}

} // namespace tsl::test
