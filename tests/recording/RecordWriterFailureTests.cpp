// Writes that the engine cannot do: the result tells why, and what was stored before is kept.
#include "recording/RecordWriter.h"

#include <filesystem>

#include "tests/recording/RecordStore.h"
#include "tests/support/Containers.h"
#include "tests/support/EngineSleeps.h"

namespace tsl::test {

namespace fs = std::filesystem;

namespace {

constexpr HRESULT kSqliteErrorResult = static_cast<HRESULT>(0x80041600);
constexpr HRESULT kSqliteBusyResult = static_cast<HRESULT>(0x80041604);
constexpr HRESULT kSqliteCantOpenResult = static_cast<HRESULT>(0x8004160D);
constexpr HRESULT kSqliteConstraintResult = static_cast<HRESULT>(0x80041612);
constexpr HRESULT kSqliteNotADatabaseResult = static_cast<HRESULT>(0x80041619);

// The component alone in a folder, without the assembly that holds its engine.
class LonelyComponent {
public:
    LonelyComponent()
        : m_folder(fs::temp_directory_path() /
                   (L"tsl_lonely_component_" + std::to_wstring(GetCurrentProcessId()))) {
        fs::create_directories(m_folder);
        fs::copy_file(ProgramFolder() / kFile, m_folder / kFile,
                      fs::copy_options::overwrite_existing);
        m_module = LoadLibraryW((m_folder / kFile).c_str());
    }
    LonelyComponent(const LonelyComponent&) = delete;
    LonelyComponent& operator=(const LonelyComponent&) = delete;
    ~LonelyComponent() {
        if (m_module) FreeLibrary(m_module);
        std::error_code ignored;
        fs::remove_all(m_folder, ignored);
    }
    HMODULE Module() const { return m_module; }

private:
    static constexpr wchar_t kFile[] = L"TslIfDbActionLog.dll";
    fs::path m_folder;
    HMODULE m_module = nullptr;
};

} // namespace

class RecordWriterFailure : public RecordStoreTest {
protected:
    HRESULT Write(UINT32 id, std::wstring_view name) {
        const HRESULT result = WriteActionRecord(Store(), m_target, Action(id, name));
        EXPECT_TRUE(MutexIsFree(kSqliteAccessMutexName)) << "the lock must be given back";
        return result;
    }

    static std::vector<Row> Rows() {
        return FileDatabase(ActionLogPath())
            .Query("SELECT ActionLogId, ActionName FROM TslIf_DbActionLog ORDER BY rowid");
    }
};

TEST_F(RecordWriterFailure, OfAMissingEngineIsAPointerFailure) {
    const LonelyComponent component;
    ASSERT_NE(nullptr, component.Module());
    const CActionLogStore store(component.Module());
    ASSERT_EQ(nullptr, store.Engine());

    ScriptedContainer action(Action(5, L"playItem").Get());
    EXPECT_EQ(E_POINTER, WriteActionRecord(store, m_target, &action));
    EXPECT_EQ(E_POINTER, WriteActionRecord(store, m_target, nullptr));
    EXPECT_TRUE(action.keysRead.empty());
    EXPECT_FALSE(fs::exists(ActionLogPath()));
    EXPECT_TRUE(MutexIsFree(kSqliteAccessMutexName));
}

TEST_F(RecordWriterFailure, OfADamagedFileLeavesItAsItIs) {
    MakeStoreFolder();
    const Bytes damaged(8192, 0x5A);
    WriteBytes(ActionLogPath(), damaged);
    EXPECT_EQ(kSqliteNotADatabaseResult, Write(5, L"playItem"));
    EXPECT_EQ(damaged, ReadBytes(ActionLogPath()));
}

TEST_F(RecordWriterFailure, OfAnOpenIsReturnedWhateverTheContainerGives) {
    fs::create_directories(ActionLogPath()); // a folder in place of the file
    EXPECT_EQ(kSqliteCantOpenResult, Write(5, L"playItem"));
    EXPECT_EQ(kSqliteCantOpenResult, Write(0, L"playItem"));
    EXPECT_EQ(kSqliteCantOpenResult, WriteActionRecord(Store(), m_target, nullptr));
    ScriptedContainer action(Action(5, L"playItem").Get());
    action.getResults[kKeyUserId] = E_ACCESSDENIED;
    EXPECT_EQ(kSqliteCantOpenResult, WriteActionRecord(Store(), m_target, &action));
}

TEST_F(RecordWriterFailure, OfADatabaseInUseIsBusy) {
    EXPECT_EQ(S_OK, Write(5, L"first"));
    const FileDatabase other(ActionLogPath());
    other.Query("BEGIN EXCLUSIVE");
    {
        const EngineSleeps sleeps;
        EXPECT_EQ(kSqliteBusyResult, Write(5, L"second"));
        EXPECT_EQ(kSqliteBusyResult, Write(6, L"second"));
        EXPECT_EQ(2u, sleeps.Waits(kWriteWait)) << "each fails where it begins";
    }
    other.Query("COMMIT");
    EXPECT_EQ((std::vector<Row>{{"5", "first"}}), Rows());
    EXPECT_EQ(S_OK, Write(6, L"third"));
    EXPECT_EQ((std::vector<Row>{{"5", "first"}, {"6", "third"}}), Rows());
}

TEST_F(RecordWriterFailure, OfADatabaseThatAnotherWritesToIsBusy) {
    EXPECT_EQ(S_OK, Write(5, L"first"));
    const FileDatabase other(ActionLogPath());
    other.Query("BEGIN IMMEDIATE");
    const EngineSleeps sleeps;
    EXPECT_EQ(kSqliteBusyResult, Write(5, L"second"));
    EXPECT_EQ(1u, sleeps.Waits(kWriteWait));
    other.Query("COMMIT");
    EXPECT_EQ((std::vector<Row>{{"5", "first"}}), Rows());
}

TEST_F(RecordWriterFailure, OfTheLastStepKeepsTheOlderRow) {
    EXPECT_EQ(S_OK, Write(5, L"first"));
    {
        // A reader lets the write begin, but not end.
        const FileDatabase reader(ActionLogPath());
        reader.Query("BEGIN");
        reader.Query("SELECT * FROM TslIf_DbActionLog");
        const EngineSleeps sleeps;
        EXPECT_EQ(kSqliteBusyResult, Write(5, L"second"));
        EXPECT_EQ(kSqliteBusyResult, Write(6, L"other"));
        EXPECT_EQ(2u, sleeps.Waits(kWriteWait));
    }
    EXPECT_EQ((std::vector<Row>{{"5", "first"}}), Rows());
}

TEST_F(RecordWriterFailure, OfTheInsertKeepsTheOlderRow) {
    EXPECT_EQ(S_OK, Write(5, L"first"));
    {
        const FileDatabase file(ActionLogPath());
        file.Query("ALTER TABLE TslIf_DbActionLog ADD COLUMN refuse INTEGER "
                   "CHECK (ActionName = 'first')");
    }
    EXPECT_EQ(kSqliteConstraintResult, Write(5, L"second"));
    EXPECT_EQ(kSqliteConstraintResult, Write(6, L"other"));
    EXPECT_EQ((std::vector<Row>{{"5", "first"}}), Rows());

    FileDatabase(ActionLogPath()).Query("ALTER TABLE TslIf_DbActionLog DROP COLUMN refuse");
    EXPECT_EQ(S_OK, Write(6, L"third"));
    EXPECT_EQ(S_OK, Write(5, L"fourth"));
    EXPECT_EQ((std::vector<Row>{{"6", "third"}, {"5", "fourth"}}), Rows());
}

TEST_F(RecordWriterFailure, OfATableWithOtherColumnsIsReturned) {
    MakeStoreFolder();
    {
        const FileDatabase file(ActionLogPath(), /*create=*/true);
        file.Query("CREATE TABLE TslIf_DbActionLog (ActionLogId INTEGER, Other TEXT)");
        file.Query("INSERT INTO TslIf_DbActionLog VALUES (5, 'kept')");
    }
    EXPECT_EQ(kSqliteErrorResult, Write(5, L"playItem"));
    EXPECT_EQ("kept", Logged("SELECT Other FROM TslIf_DbActionLog"));
}

TEST_F(RecordWriterFailure, OfTheLastStepLeavesNoNewTable) {
    EXPECT_EQ(S_OK, Write(5, L"first"));
    const std::string tables = "SELECT GROUP_CONCAT(name) FROM sqlite_master";
    m_target.tableName = kContentDeleteTable;
    {
        const FileDatabase reader(ActionLogPath());
        reader.Query("BEGIN");
        reader.Query("SELECT * FROM TslIf_DbActionLog");
        const EngineSleeps sleeps;
        EXPECT_EQ(kSqliteBusyResult, Write(5, L"deleteItem"));
    }
    EXPECT_EQ("TslIf_DbActionLog", Logged(tables));
    EXPECT_EQ(S_OK, Write(5, L"deleteItem"));
    EXPECT_EQ("TslIf_DbActionLog,TslIf_ContentDeleteProperty", Logged(tables));
}

TEST_F(RecordWriterFailure, OfATableThatCannotBeMadeIsReturned) {
    MakeStoreFolder();
    {
        const FileDatabase file(ActionLogPath(), /*create=*/true);
        file.Query("CREATE VIEW TslIf_DbActionLog AS SELECT 5 AS ActionLogId");
    }
    EXPECT_EQ(kSqliteErrorResult, Write(6, L"playItem"));
}

TEST_F(RecordWriterFailure, IsNeverASuccessOtherThanOk) {
    EXPECT_EQ(HRESULT{S_OK}, Write(5, L"playItem"));
    EXPECT_EQ(HRESULT{S_OK}, Write(5, L"playItem"));
    EXPECT_EQ(HRESULT{S_OK}, Write(0, L"playItem"));
}

} // namespace tsl::test
