// Databases that cannot be opened, and files that turn out to be unusable later.
#include "store/ActionLogStore.h"
#include "store/SqliteResult.h"
#include "tests/support/ComponentCopy.h"
#include "tests/support/EngineSleeps.h"
#include "tests/support/FileDatabase.h"
#include "tests/support/StoreFixture.h"

namespace tsl::test {

namespace fs = std::filesystem;

namespace {

constexpr HRESULT kMappedOk = 0x00041500;
constexpr auto kMappedBusy = static_cast<HRESULT>(0x80041604);
constexpr auto kMappedReadOnly = static_cast<HRESULT>(0x80041607);
constexpr auto kMappedCorrupt = static_cast<HRESULT>(0x8004160A);
constexpr auto kMappedCannotOpen = static_cast<HRESULT>(0x8004160D);
constexpr auto kMappedNoDatabase = static_cast<HRESULT>(0x80041619);

class OpenFailure : public StoreTest {
protected:
    static HRESULT Open(const CActionLogStore& store, const std::wstring& fileName,
                        CDatabase* database) {
        return store.Open(fileName, L"TslIf", L"DbActionLog", database, TableShape::Action,
                          /*create=*/true);
    }

    static HRESULT Run(const CDatabase& database, const std::wstring& text) {
        return SqliteResultToHresult(ExecuteStatement(database, text));
    }

    void ExpectReadOnly() const {
        CDatabase database;
        EXPECT_EQ(S_OK, Open(m_store, kActionLogFileName, &database));
        EXPECT_EQ(kMappedOk, Run(database, L"SELECT * FROM TslIf_DbActionLog"));
        EXPECT_EQ(kMappedReadOnly, Run(database, kInsert));
    }

    static constexpr wchar_t kInsert[] = L"INSERT INTO TslIf_DbActionLog (ActionLogId) VALUES (1)";

    const CActionLogStore m_store{GetModuleHandleW(nullptr)};
};

} // namespace

TEST_F(OpenFailure, WithoutADatabaseIsEPointerWhateverTheName) {
    EXPECT_EQ(E_POINTER, Open(m_store, L"ualog.db", nullptr));
    EXPECT_EQ(E_POINTER, Open(m_store, L"", nullptr));
    EXPECT_FALSE(fs::exists(StoreFolder()));
}

TEST_F(OpenFailure, WithoutAnEngineIsEPointerWhateverTheName) {
    const ComponentCopy copy;
    const CActionLogStore store(copy.Module());
    ASSERT_EQ(nullptr, store.Engine());
    CDatabase database;
    EXPECT_EQ(E_POINTER, Open(store, L"ualog.db", &database));
    EXPECT_EQ(E_POINTER, Open(store, L"", &database));
    EXPECT_FALSE(database);
    EXPECT_FALSE(fs::exists(StoreFolder()));
}

TEST_F(OpenFailure, OfAnEmptyNameIsEInvalidArgAndTouchesNothing) {
    CDatabase database;
    EXPECT_EQ(E_INVALIDARG, Open(m_store, L"", &database));
    EXPECT_FALSE(database);
    EXPECT_FALSE(fs::exists(StoreFolder()));
}

TEST_F(OpenFailure, OfAnEmptyNameLeavesNoOlderConnection) {
    CDatabase database;
    ASSERT_EQ(S_OK, Open(m_store, kActionLogFileName, &database));
    EXPECT_EQ(E_INVALIDARG, Open(m_store, L"", &database));
    EXPECT_FALSE(database);
}

TEST_F(OpenFailure, OfAFolderInThePlaceOfTheFileIsMapped) {
    fs::create_directories(ActionLogPath());
    CDatabase database;
    EXPECT_EQ(kMappedCannotOpen, Open(m_store, kActionLogFileName, &database));
    EXPECT_TRUE(fs::is_empty(ActionLogPath()));
}

TEST_F(OpenFailure, OfAFolderThatCannotBeMadeIsMapped) {
    fs::create_directories(StoreFolder().parent_path());
    WriteBytes(StoreFolder(), Bytes{'f', 'i', 'l', 'e'});
    CDatabase database;
    EXPECT_EQ(kMappedCannotOpen, Open(m_store, kActionLogFileName, &database));
    EXPECT_EQ((Bytes{'f', 'i', 'l', 'e'}), ReadBytes(StoreFolder()));
}

TEST_F(OpenFailure, OfAFileThatSomebodyHoldsAloneIsMapped) {
    ASSERT_EQ(S_OK, [&] {
        CDatabase database;
        return Open(m_store, kActionLogFileName, &database);
    }());
    const CHandle alone(CreateFileW(ActionLogPath().c_str(), GENERIC_READ, /*share=*/0, nullptr,
                                    OPEN_EXISTING, 0, nullptr));
    ASSERT_TRUE(alone);
    CDatabase database;
    const EngineSleeps sleeps;
    EXPECT_EQ(kMappedCannotOpen, Open(m_store, kActionLogFileName, &database));
}

TEST_F(OpenFailure, KeepsAConnectionThatIsClosedLater) {
    fs::create_directories(ActionLogPath());
    {
        CDatabase database;
        ASSERT_TRUE(FAILED(Open(m_store, kActionLogFileName, &database)));
        EXPECT_TRUE(database) << "the engine gave none";
    }
    fs::remove(ActionLogPath());
    CDatabase database;
    EXPECT_EQ(S_OK, Open(m_store, kActionLogFileName, &database));
}

// The engine looks into a file only when a statement needs it.
TEST_F(OpenFailure, OfATextFileShowsAtTheFirstStatement) {
    MakeStoreFolder();
    const Bytes text(4096, 'x');
    WriteBytes(ActionLogPath(), text);
    CDatabase database;
    EXPECT_EQ(S_OK, Open(m_store, kActionLogFileName, &database));
    EXPECT_EQ(kMappedNoDatabase, Run(database, kInsert));
    EXPECT_EQ(kMappedNoDatabase, Run(database, L"SELECT * FROM TslIf_DbActionLog"));
    database.Close();
    EXPECT_EQ(text, ReadBytes(ActionLogPath())) << "a file that is no database was changed";
}

TEST_F(OpenFailure, OfATruncatedDatabaseShowsAtTheFirstStatement) {
    {
        CDatabase database;
        ASSERT_EQ(S_OK, Open(m_store, kActionLogFileName, &database));
    }
    FileDatabase(ActionLogPath())
        .Query("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 500) "
               "INSERT INTO TslIf_DbActionLog (ActionLogId, AppName) SELECT i, "
               "'a text that takes some room' FROM n");
    fs::resize_file(ActionLogPath(), fs::file_size(ActionLogPath()) / 2048 / 2 * 2048);
    CDatabase database;
    EXPECT_EQ(S_OK, Open(m_store, kActionLogFileName, &database));
    EXPECT_EQ(kMappedCorrupt,
              Run(database, L"SELECT AppName FROM TslIf_DbActionLog WHERE AppName = 'another'"));
}

TEST_F(OpenFailure, OfALockedFileShowsAtTheFirstStatement) {
    {
        CDatabase database;
        ASSERT_EQ(S_OK, Open(m_store, kActionLogFileName, &database));
    }
    const FileDatabase other(ActionLogPath());
    other.Query("BEGIN EXCLUSIVE");
    CDatabase database;
    {
        const EngineSleeps sleeps;
        EXPECT_EQ(S_OK, Open(m_store, kActionLogFileName, &database));
        EXPECT_EQ(kMappedBusy, Run(database, kInsert));
        EXPECT_EQ(2u, sleeps.Waits(kWriteWait));
    }
    other.Query("COMMIT");
    EXPECT_EQ(kMappedOk, Run(database, kInsert));
}

// What a read-only file gives: one that somebody else keeps from being written, so that it shows
// for every user.
TEST_F(OpenFailure, OfAFileThatMayOnlyBeReadShowsAtTheFirstWrite) {
    {
        CDatabase database;
        ASSERT_EQ(S_OK, Open(m_store, kActionLogFileName, &database));
    }
    const CHandle reader(CreateFileW(ActionLogPath().c_str(), GENERIC_READ, FILE_SHARE_READ,
                                     nullptr, OPEN_EXISTING, 0, nullptr));
    ASSERT_TRUE(reader);
    ExpectReadOnly();
}

TEST_F(OpenFailure, OfAFileWithTheReadOnlyAttributeShowsAtTheFirstWrite) {
    {
        CDatabase database;
        ASSERT_EQ(S_OK, Open(m_store, kActionLogFileName, &database));
    }
    ASSERT_TRUE(SetFileAttributesW(ActionLogPath().c_str(), FILE_ATTRIBUTE_READONLY));
    if (CHandle(CreateFileW(ActionLogPath().c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr,
                            OPEN_EXISTING, 0, nullptr))) {
        GTEST_SKIP() << "this user may write to files with the attribute";
    }
    ExpectReadOnly();
}

} // namespace tsl::test
