// A store that is damaged, locked or cannot be made: the answer, and that no lock or handle is
// left.
#include <fstream>

#include "tests/integration/Aftermath.h"
#include "tests/support/Failures.h"
#include "tests/support/FileDatabase.h"
#include "tests/support/PluginFixture.h"

namespace tsl::test {

namespace fs = std::filesystem;

namespace {

// Opens a file and lets others do with it what share says.
CHandle HoldOpen(const fs::path& file, DWORD share) {
    return CHandle(CreateFileW(file.c_str(), GENERIC_READ, share, nullptr, OPEN_EXISTING,
                               FILE_ATTRIBUTE_NORMAL, nullptr));
}

// What the system says when the counter file is made new.
HRESULT StatusOfMakingTheCounterFile() {
    const CHandle file(CreateFileW(CounterPath().c_str(), GENERIC_READ | GENERIC_WRITE,
                                   /*share=*/0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL,
                                   nullptr));
    return file ? S_OK : HRESULT_FROM_WIN32(GetLastError());
}

} // namespace

class BadStore : public PluginTest {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(PluginTest::SetUp());
        MakeCounterFile();
        ASSERT_EQ(S_OK, Plugin().SetRecordingEnabled(1));
    }

    HRESULT Record(UINT32 recordId) {
        const HRESULT result = Plugin().Notify(kCommandRecordAction, Action(recordId, L"playItem"));
        ExpectLocksAreFree();
        return result;
    }
    // The answer to a request for an id; a failure leaves the result as it was.
    HRESULT AskForId() {
        CVariant answer = CVariant::FromUi4(42);
        const HRESULT result =
            Plugin().Request(kCommandNextRecordId, ContainerBuilder(), nullptr, answer.Address());
        EXPECT_EQ(FAILED(result) ? VT_UI4 : VT_UNKNOWN, answer.Type());
        ExpectLocksAreFree();
        return result;
    }
};

TEST_F(BadStore, FolderInPlaceOfTheActionLogIsPassedOverInSilence) {
    fs::create_directories(ActionLogPath());
    EXPECT_EQ(S_OK, Record(1)) << "the answer is that of the replay log";
    EXPECT_EQ(1, CountRows(ReplayPath(), kReplayRows));
    fs::remove(ActionLogPath());
    ExpectAGoodActionIsRecorded(Plugin());
}

TEST_F(BadStore, FolderInPlaceOfTheReplayLogIsReported) {
    fs::create_directories(ReplayPath());
    EXPECT_EQ(kEngineCannotOpen, Record(1));
    EXPECT_EQ(1, CountRows(ActionLogPath(), kActionLogRows));
    fs::remove(ReplayPath());
    ExpectAGoodActionIsRecorded(Plugin());
}

TEST_F(BadStore, FolderInPlaceOfTheCounterFileIsReported) {
    fs::remove(CounterPath());
    fs::create_directories(CounterPath());
    const HRESULT expected = StatusOfMakingTheCounterFile();
    ASSERT_TRUE(FAILED(expected));
    EXPECT_EQ(expected, AskForId());
    EXPECT_TRUE(fs::is_directory(CounterPath()));
    fs::remove(CounterPath());
    EXPECT_EQ(1u, NextId());
    ExpectAGoodActionIsRecorded(Plugin());
}

TEST_F(BadStore, FileInPlaceOfTheParentFolderIsReported) {
    const fs::path parent = StoreFolder().parent_path();
    fs::remove_all(parent);
    fs::create_directories(parent.parent_path());
    WriteBytes(parent, {'x'});
    EXPECT_EQ(kEngineCannotOpen, Record(1));
    const HRESULT expected = StatusOfMakingTheCounterFile();
    ASSERT_TRUE(FAILED(expected));
    EXPECT_EQ(expected, AskForId());
    EXPECT_EQ(Bytes({'x'}), ReadBytes(parent));
    fs::remove(parent);
    EXPECT_EQ(1u, NextId());
    ExpectAGoodActionIsRecorded(Plugin());
}

TEST_F(BadStore, DamagedReplayLogIsReportedAndLeftAsItIs) {
    MakeStoreFolder();
    const Bytes damaged(4096, 0xA5);
    WriteBytes(ReplayPath(), damaged);
    EXPECT_EQ(kEngineNotADatabase, Record(1));
    EXPECT_EQ(damaged, ReadBytes(ReplayPath()));
    EXPECT_EQ(1, CountRows(ActionLogPath(), kActionLogRows));
    ASSERT_TRUE(fs::remove(ReplayPath()));
    ExpectAGoodActionIsRecorded(Plugin());
}

TEST_F(BadStore, DamagedActionLogDoesNotKeepTheReplayLogFromTheAction) {
    MakeStoreFolder();
    const Bytes damaged(4096, 0xA5);
    WriteBytes(ActionLogPath(), damaged);
    EXPECT_EQ(S_OK, Record(1));
    EXPECT_EQ(damaged, ReadBytes(ActionLogPath()));
    EXPECT_EQ(1, CountRows(ReplayPath(), kReplayRows));
    ASSERT_TRUE(fs::remove(ActionLogPath()));
    ExpectAGoodActionIsRecorded(Plugin());
}

TEST_F(BadStore, TableOfAnotherShapeIsReported) {
    MakeStoreFolder();
    FileDatabase(ReplayPath(), /*create=*/true).Query("CREATE TABLE TslIf_ActionReplay (Text)");
    EXPECT_EQ(static_cast<HRESULT>(0x80041600), Record(1));
    ASSERT_TRUE(fs::remove(ReplayPath()));
    ExpectAGoodActionIsRecorded(Plugin());
}

// Another program that lets nobody write has the effect of a file without write permission, which
// does not bind the privileged user that these tests may run as.
TEST_F(BadStore, DatabaseThatCannotBeWrittenIsReported) {
    ASSERT_EQ(S_OK, Record(1));
    {
        const CHandle reader = HoldOpen(ReplayPath(), FILE_SHARE_READ);
        ASSERT_TRUE(reader);
        EXPECT_EQ(kEngineReadOnly, Record(2));
        EXPECT_EQ(2, CountRows(ActionLogPath(), kActionLogRows));
    }
    EXPECT_EQ(1, CountRows(ReplayPath(), kReplayRows));
    ExpectAGoodActionIsRecorded(Plugin());
}

TEST_F(BadStore, DatabaseThatNobodyMayOpenIsReported) {
    ASSERT_EQ(S_OK, Record(1));
    {
        const CHandle owner = HoldOpen(ReplayPath(), /*share=*/0);
        ASSERT_TRUE(owner);
        EXPECT_EQ(kEngineCannotOpen, Record(2));
    }
    EXPECT_EQ(1, CountRows(ReplayPath(), kReplayRows));
    ExpectAGoodActionIsRecorded(Plugin());
}

TEST_F(BadStore, DatabaseThatAnotherConnectionWritesIsReportedAsBusy) {
    ASSERT_EQ(S_OK, Record(1));
    const FileDatabase other(ReplayPath());
    other.Query("BEGIN EXCLUSIVE");
    EXPECT_EQ(kEngineBusy, Record(2));
    other.Query("ROLLBACK");
    EXPECT_EQ(1, CountRows(ReplayPath(), kReplayRows));
    EXPECT_EQ(S_OK, Record(3));
}

TEST_F(BadStore, LockedCounterFileIsReportedAndNoIdIsHandedOut) {
    ASSERT_EQ(1u, NextId());
    {
        const CHandle owner = HoldOpen(CounterPath(), /*share=*/0);
        ASSERT_TRUE(owner);
        EXPECT_EQ(kSharingViolation, AskForId());
    }
    EXPECT_EQ(2u, NextId());
    EXPECT_TRUE(NobodyHasOpen(CounterPath()));
    ExpectAGoodActionIsRecorded(Plugin());
}

} // namespace tsl::test
