// Databases in which nothing can be deleted: the answer of each form, and what is left behind.
#include <algorithm>
#include <stdexcept>
#include <thread>

#include "tests/deletion/DeletionFixture.h"
#include "tests/support/EngineSleeps.h"
#include "tests/support/Failures.h"
#include "tests/support/ProcessMeasures.h"

namespace tsl::test {

namespace fs = std::filesystem;

namespace {

// Lets others do with the file what share says.
CHandle HoldDatabaseOpen(DWORD share) {
    return CHandle(CreateFileW(ActionLogPath().c_str(), GENERIC_READ, share, nullptr, OPEN_EXISTING,
                               FILE_ATTRIBUTE_NORMAL, nullptr));
}

// Where the first page begins that is nothing but the digit 0 behind the number of the next one.
size_t PageOfDigits(const Bytes& database) {
    constexpr size_t kPageBytes = 4096;
    for (size_t page = 0; page < database.size(); page += kPageBytes) {
        const auto digits = database.begin() + static_cast<std::ptrdiff_t>(page) + 4;
        const bool isLast =
            std::all_of(digits - 4, digits, [](unsigned char byte) { return !byte; });
        if (!isLast &&
            std::all_of(digits, digits + 100, [](unsigned char byte) { return byte == '0'; })) {
            return page;
        }
    }
    throw std::runtime_error("no such page");
}

} // namespace

class DeletionFailure : public DeletionTest {
protected:
    // The range of ids hides what went wrong, the two other forms tell it.
    void ExpectFailure(HRESULT result) {
        EXPECT_EQ(result, Delete(OneRecord()));
        EXPECT_EQ(E_POINTER, Delete(IdRange()));
        EXPECT_EQ(result, Delete(TimeRange()));
        ExpectLocksAreFree();
    }
    void ExpectAllAreLeftAndCanBeDeleted() {
        EXPECT_EQ("1 2 3 4", Left());
        EXPECT_EQ(S_OK, Delete(OneRecord()));
        EXPECT_EQ("1 3 4", Left());
        EXPECT_EQ(S_OK, Delete(IdRange(4)));
        EXPECT_EQ("1 3", Left());
        EXPECT_EQ(S_OK, Delete(TimeRange()));
        EXPECT_EQ("", Left());
    }
};

TEST_F(DeletionFailure, OfADamagedFileLeavesItAsItIs) {
    MakeStoreFolder();
    const Bytes damaged(4096, 0xA5);
    WriteBytes(ActionLogPath(), damaged);
    ExpectFailure(kEngineNotADatabase);
    EXPECT_EQ(damaged, ReadBytes(ActionLogPath()));
}

TEST_F(DeletionFailure, OfAFolderInPlaceOfTheFileIsOneOfTheOpen) {
    fs::create_directories(ActionLogPath());
    ExpectFailure(kEngineCannotOpen);
    EXPECT_TRUE(fs::is_directory(ActionLogPath()));
}

TEST_F(DeletionFailure, OfAFileInPlaceOfTheFolderIsOneOfTheOpen) {
    fs::remove_all(StoreFolder());
    WriteBytes(StoreFolder(), {'x'});
    ExpectFailure(kEngineCannotOpen);
    EXPECT_EQ(Bytes({'x'}), ReadBytes(StoreFolder()));
    fs::remove(StoreFolder());
}

TEST_F(DeletionFailure, OfTheOpenComesBeforeAMissingOrUnreadableUser) {
    fs::create_directories(ActionLogPath());
    EXPECT_EQ(E_POINTER, Delete(ContainerBuilder().Ui4(kKeyFirstRecordId, 1)));
    EXPECT_EQ(kEngineCannotOpen, Delete(ContainerBuilder()));
    ScriptedContainer range(TimeRange().Get());
    range.getResults[kKeyUserId] = E_ACCESSDENIED;
    EXPECT_EQ(kEngineCannotOpen, Delete(&range)) << "nor is a failure to read it told";
}

TEST_F(DeletionFailure, OfATableWithOtherColumnsIsOneOfThePrepare) {
    MakeStoreFolder();
    FileDatabase(ActionLogPath(), /*create=*/true).Query("CREATE TABLE TslIf_DbActionLog (Other)");
    ExpectFailure(kEngineError);
}

TEST_F(DeletionFailure, OfAViewInPlaceOfTheTableIsOneOfThePrepare) {
    Prepare(kFourDays);
    FileDatabase(ActionLogPath())
        .Query("ALTER TABLE TslIf_DbActionLog RENAME TO Kept;"
               "CREATE VIEW TslIf_DbActionLog AS SELECT * FROM Kept");
    ExpectFailure(kEngineError);
    EXPECT_EQ(4, CountRows(ActionLogPath(), "Kept"));
}

TEST_F(DeletionFailure, OfABusyDatabaseIsTold) {
    Prepare(kFourDays);
    const FileDatabase other(ActionLogPath());
    other.Query("BEGIN IMMEDIATE");
    const EngineSleeps sleeps;
    ExpectFailure(kEngineBusy);
    EXPECT_EQ(3u, sleeps.Waits(kStatementWait)) << "one for each form";
    other.Query("ROLLBACK");
    ExpectAllAreLeftAndCanBeDeleted();
}

// Queries by time take no lock and are in the file while others delete.
TEST_F(DeletionFailure, DoesNotComeFromAReaderThatLeavesInTime) {
    Prepare(kFourDays);
    const FileDatabase reader(ActionLogPath());
    reader.Query("BEGIN");
    reader.Query("SELECT * FROM TslIf_DbActionLog");
    std::thread leaving([&] {
        Sleep(300);
        reader.Query("COMMIT");
    });
    EXPECT_EQ(S_OK, Delete(IdRange()));
    leaving.join();
    EXPECT_EQ("", Left());
}

TEST_F(DeletionFailure, OfAStepKeepsTheRows) {
    Prepare(kFourDays);
    // The second record goes on in pages of its own, of which the chain leads beyond the file.
    FileDatabase(ActionLogPath())
        .Query("UPDATE TslIf_DbActionLog SET ActionParameters = hex(zeroblob(10000)) "
               "WHERE ActionLogId = 2");
    const Bytes whole = ReadBytes(ActionLogPath());
    Bytes damaged = whole;
    const size_t page = PageOfDigits(whole);
    std::fill_n(damaged.begin() + static_cast<std::ptrdiff_t>(page), 4, Bytes::value_type{0x7F});
    WriteBytes(ActionLogPath(), damaged);
    ExpectFailure(kEngineCorrupt);
    EXPECT_EQ(damaged, ReadBytes(ActionLogPath())) << "a range is deleted as a whole or not at all";
    WriteBytes(ActionLogPath(), whole);
    ExpectAllAreLeftAndCanBeDeleted();
}

TEST_F(DeletionFailure, OfAFileThatNobodyMayWriteIsTold) {
    Prepare(kFourDays);
    {
        const CHandle reader = HoldDatabaseOpen(FILE_SHARE_READ);
        ASSERT_TRUE(reader);
        ExpectFailure(kEngineReadOnly);
    }
    ExpectAllAreLeftAndCanBeDeleted();
}

TEST_F(DeletionFailure, OfAFileThatNobodyMayOpenIsTold) {
    Prepare(kFourDays);
    {
        const CHandle owner = HoldDatabaseOpen(/*share=*/0);
        ASSERT_TRUE(owner);
        const EngineSleeps sleeps;
        ExpectFailure(kEngineCannotOpen);
    }
    ExpectAllAreLeftAndCanBeDeleted();
}

TEST_F(DeletionFailure, DoesNotComeFromAnEmptyStore) {
    EXPECT_EQ(S_OK, Delete(OneRecord()));
    EXPECT_EQ(0, CountRows(ActionLogPath(), kActionLogRows));
    EXPECT_EQ("", Left()) << "folder, file and table are made";
    EXPECT_EQ(S_OK, Delete(IdRange()));
    EXPECT_EQ(S_OK, Delete(TimeRange()));
}

TEST_F(DeletionFailure, LeavesNoHandleBehind) {
    const auto runAll = [&] {
        Prepare(kFourDays);
        Delete(OneRecord());
        Delete(IdRange(4));
        Delete(ContainerBuilder());
        FileDatabase(ActionLogPath())
            .Query("DROP TABLE TslIf_DbActionLog; CREATE VIEW TslIf_DbActionLog AS SELECT 1");
        ExpectFailure(kEngineError);
        FileDatabase(ActionLogPath()).Query("DROP VIEW TslIf_DbActionLog");
        Delete(TimeRange());
    };
    runAll();
    const int before = CountHandles();
    for (int round = 0; round < 10; ++round)
        runAll();
    EXPECT_EQ(before, CountHandles());
}

} // namespace tsl::test
