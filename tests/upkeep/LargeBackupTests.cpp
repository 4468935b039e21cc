// A store that has grown for years: what saving it, putting it back and compacting it take.
#include "tests/support/FullForm.h"
#include "tests/support/StoreChecks.h"
#include "tests/upkeep/BackupFixture.h"
#include "upkeep/backup/Backup.h"
#include "upkeep/backup/Compact.h"
#include "upkeep/backup/Restore.h"

namespace tsl::test {

namespace {

// Milliseconds that an operation takes; expects it to work.
ULONGLONG TimeOf(const std::function<void()>& operation) {
    const ULONGLONG start = GetTickCount64();
    const Outcome outcome = OutcomeOf(operation);
    EXPECT_EQ(ExitCode::Fine, outcome.code) << outcome.message;
    return GetTickCount64() - start;
}

using LargeBackup = BackupTest;

} // namespace

TEST_F(LargeBackup, IsSavedPutBackAndCompacted) {
    MakeSample();
    const int records = InForm(20'000, 500'000);
    {
        const FileDatabase database(Store().actionLog);
        database.Query("WITH RECURSIVE n(id) AS (SELECT 601 UNION ALL SELECT id + 1 FROM n WHERE "
                       "id < " +
                       std::to_string(records) +
                       ") INSERT INTO TslIf_DbActionLog SELECT id, 0, 1, NULL, 1, 'playItem', "
                       "'ullValues={' || id || '}&stringValues={' || hex(zeroblob(60)) || '}', "
                       "45000.0, 45000.0, NULL, NULL, 0, 1 FROM n");
        database.Query("PRAGMA user_version = " + std::to_string(records));
    }
    const auto size = std::filesystem::file_size(Store().actionLog);
    UINT64 told = 0;
    const Progress progress = [&](const std::string&, UINT64 done, UINT64 all) {
        EXPECT_LE(done, all);
        told = std::max(told, all);
    };
    const ULONGLONG saved = TimeOf([&] { BackUpStore(Store(), Folder().wstring(), "", progress); });
    EXPECT_EQ(size, told) << "the progress tells how much there is";
    FileDatabase(Store().actionLog)
        .Query("DELETE FROM TslIf_DbActionLog WHERE ActionLogId % 4 != 0");
    const ULONGLONG compacted = TimeOf([&] { CompactStore(Store(), Unheard); });
    EXPECT_LT(std::filesystem::file_size(Store().actionLog), size / 2);
    EXPECT_EQ(records / 4, CountRows(Store().actionLog, kActionLogRows));
    const ULONGLONG restored = TimeOf([&] { RestoreStore(Folder().wstring(), Store(), Unheard); });
    EXPECT_EQ(records, CountRows(Store().actionLog, kActionLogRows));
    Measured(std::to_string(records) + " records, " + std::to_string(size >> 20) + " MB: backup " +
             std::to_string(saved) + " ms, restore " + std::to_string(restored) +
             " ms, compacting it when three of four records are gone " + std::to_string(compacted) +
             " ms");
}

} // namespace tsl::test
