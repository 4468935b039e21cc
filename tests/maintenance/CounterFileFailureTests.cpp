// The counter file of a conversion cannot be made: the records have their kinds, the old table
// stays, and the next run does it all again. Only a whole counter file marks a conversion.
#include <gmock/gmock.h>

#include <functional>
#include <thread>

#include "tests/maintenance/OldStore.h"
#include "tests/support/ImportHook.h"

namespace tsl::test {

namespace fs = std::filesystem;

using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

// What happens to the writes and moves of the code under test.
struct Disk {
    // Before any hook: the system's own functions.
    decltype(&WriteFile) write = &WriteFile;
    decltype(&SetFileInformationByHandle) change = &SetFileInformationByHandle;
    // May cut the write short; false lets it fail.
    std::function<bool(DWORD& size)> takes;
    // So many moves fail with the error.
    DWORD moveError = ERROR_SUCCESS;
    int failingMoves = 0;
    int moves = 0;
    DWORD milliseconds = 0; // that were waited
    int cut = 0;
};
Disk* g_disk = nullptr;

BOOL WINAPI FaultyWrite(HANDLE file, LPCVOID bytes, DWORD size, LPDWORD written,
                        LPOVERLAPPED overlapped) {
    if (g_disk->takes(size)) return g_disk->write(file, bytes, size, written, overlapped);
    *written = 0;
    SetLastError(ERROR_DISK_FULL);
    return FALSE;
}

BOOL WINAPI FaultyMove(HANDLE file, FILE_INFO_BY_HANDLE_CLASS what, LPVOID request, DWORD size) {
    if (what != FileRenameInfo || ++g_disk->moves > g_disk->failingMoves)
        return g_disk->change(file, what, request, size);
    SetLastError(g_disk->moveError);
    return FALSE;
}

void WINAPI NoteSleep(DWORD milliseconds) {
    g_disk->milliseconds += milliseconds;
}

} // namespace

class CounterFileFailure : public OldStoreTest {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(OldStoreTest::SetUp());
        MakeOldStore("complete.sql");
        before = ReadActionLog();
        g_disk = &disk;
    }

    // Fails with an error of the system's and stops before the old table is dropped.
    void ExpectItStopsBeforeTheDrop() {
        const HRESULT result = Maintain();
        EXPECT_TRUE(FAILED(result));
        EXPECT_EQ(FACILITY_WIN32, HRESULT_FACILITY(result));
        ExpectLocksAreFree();
        ExpectOnlyLogKindsAreSet(before);
    }
    void ExpectTheNextRunConverts() {
        EXPECT_EQ(S_OK, Plugin().SetRecordingEnabled(1));
        ExpectCompleteStoreIsConverted(before);
    }

    // Of the counter's line, the disk takes that many bytes only.
    void TakeOfTheLine(DWORD taken) {
        disk.takes = [this, taken](DWORD& size) {
            if (size == kLineSize && taken < size) {
                ++disk.cut;
                size = taken;
            }
            return true;
        };
    }
    // Eight digits; with TAB, CR and LF.
    static constexpr DWORD kNumberSize = 16;
    static constexpr DWORD kLineSize = 22;

    StoreImage before;
    Disk disk;
};

TEST_F(CounterFileFailure, OfAFolderInItsPlaceIsNoConversion) {
    fs::create_directory(CounterPath());
    ExpectItStopsBeforeTheDrop();
    ExpectTheSwitchWorks();
    ExpectOnlyLogKindsAreSet(before);
    EXPECT_TRUE(fs::is_directory(CounterPath()));
    fs::remove(CounterPath());
    ExpectTheNextRunConverts();
}

TEST_F(CounterFileFailure, OfAFullFolderInItsPlaceIsNoConversion) {
    fs::create_directory(CounterPath());
    WriteBytes(CounterPath() / L"file", {'x'});
    ExpectItStopsBeforeTheDrop();
    ExpectTheSwitchWorks();
    EXPECT_EQ(Bytes{'x'}, ReadBytes(CounterPath() / L"file"));
    fs::remove_all(CounterPath());
    ExpectTheNextRunConverts();
}

TEST_F(CounterFileFailure, SetsTheKindsOfRecordsWrittenMeanwhileAgain) {
    fs::create_directory(CounterPath());
    ExpectItStopsBeforeTheDrop();
    ChangeActionLog("UPDATE TslIf_DbActionLog SET LogKind = 2 WHERE ActionLogId < 20");
    fs::remove(CounterPath());
    ExpectTheNextRunConverts();
}

TEST_F(CounterFileFailure, OfADiskThatIsFullIsNoConversion) {
    for (const int failing : {1, 2}) {
        SCOPED_TRACE(failing);
        int writes = 0;
        disk.takes = [&](DWORD&) { return ++writes != failing; };
        const ImportHook hook("WriteFile", &FaultyWrite);
        ExpectItStopsBeforeTheDrop();
        EXPECT_THAT(FilesInTheMaking(), IsEmpty());
        EXPECT_EQ(failing, writes) << "the mark, then the line";
    }
    ExpectTheNextRunConverts();
}

// The counter is then 0, which an empty file could be taken for.
TEST_F(CounterFileFailure, OfADiskThatIsFullIsNoConversionAfterTheHighestIdEither) {
    fs::remove(ActionLogPath());
    MakeOldStore("highest-id.sql");
    before = ReadActionLog();
    {
        disk.takes = [](DWORD&) { return false; };
        const ImportHook hook("WriteFile", &FaultyWrite);
        ExpectItStopsBeforeTheDrop();
    }
    EXPECT_FALSE(fs::exists(CounterPath()));
    EXPECT_EQ(S_OK, Maintain());
    EXPECT_TRUE(fs::exists(CounterPath()));
}

TEST_F(CounterFileFailure, OfADiskThatTakesHalfTheNumberIsNoConversion) {
    const ImportHook hook("WriteFile", &FaultyWrite);
    for (DWORD taken = 0; taken < kNumberSize; ++taken) {
        SCOPED_TRACE(taken);
        const int cutBefore = disk.cut;
        TakeOfTheLine(taken);
        ExpectItStopsBeforeTheDrop();
        EXPECT_EQ(cutBefore + 1, disk.cut);
        EXPECT_THAT(FilesInTheMaking(), IsEmpty());
    }
    TakeOfTheLine(kLineSize);
    ExpectTheNextRunConverts();
}

TEST_F(CounterFileFailure, ToWriteTheEndOfTheLineLosesNoId) {
    const ImportHook hook("WriteFile", &FaultyWrite);
    TakeOfTheLine(kNumberSize);
    const HRESULT result = Maintain();
    EXPECT_EQ(1, disk.cut);
    TakeOfTheLine(kLineSize);
    EXPECT_EQ(result == S_OK ? E_FAIL : S_OK, Maintain());
    EXPECT_EQ(Converted(before), ReadActionLog());
    EXPECT_EQ(43u, NextId());
}

TEST_F(CounterFileFailure, ToBePutInPlaceIsNoConversion) {
    disk.failingMoves = 1000;
    for (const DWORD error : {ERROR_ACCESS_DENIED, ERROR_SHARING_VIOLATION, ERROR_DISK_FULL}) {
        SCOPED_TRACE(error);
        disk.moveError = error;
        disk.moves = 0;
        disk.milliseconds = 0;
        const ImportHook move("SetFileInformationByHandle", &FaultyMove);
        const ImportHook sleep("Sleep", &NoteSleep);
        EXPECT_EQ(HRESULT_FROM_WIN32(error), Maintain());
        const bool triedAgain = error != ERROR_DISK_FULL;
        EXPECT_EQ(triedAgain ? 20 : 1, disk.moves);
        EXPECT_EQ(triedAgain ? 950u : 0u, disk.milliseconds);
        ExpectOnlyLogKindsAreSet(before);
        EXPECT_THAT(FilesInTheMaking(), IsEmpty());
    }
    ExpectTheNextRunConverts();
}

TEST_F(CounterFileFailure, ToBePutInPlaceAtOnceIsMadeUpForWithinASecond) {
    disk.moveError = ERROR_SHARING_VIOLATION;
    disk.failingMoves = 19;
    {
        const ImportHook move("SetFileInformationByHandle", &FaultyMove);
        const ImportHook sleep("Sleep", &NoteSleep);
        EXPECT_EQ(S_OK, Maintain());
    }
    EXPECT_EQ(20, disk.moves);
    ExpectCompleteStoreIsConverted(before);
}

TEST_F(CounterFileFailure, IsNotCausedByOthersOnceItIsBegun) {
    // Whoever would open the file between its writing and its move.
    int seen = 0;
    int opened = 0;
    disk.takes = [&](DWORD&) {
        for (const fs::path& made : FilesInTheMaking()) {
            ++seen;
            if (CHandle(CreateFileW(made.c_str(), GENERIC_READ,
                                    FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                    OPEN_EXISTING, 0, nullptr))) {
                ++opened;
            }
        }
        return true;
    };
    {
        const ImportHook hook("WriteFile", &FaultyWrite);
        EXPECT_EQ(S_OK, Maintain());
    }
    EXPECT_GT(seen, 0);
    EXPECT_EQ(0, opened);
    ExpectCompleteStoreIsConverted(before);
}

TEST_F(CounterFileFailure, LeftHalfWrittenByAnotherProcessIsNoConversion) {
    for (const Bytes& half : {Bytes(), Bytes{0xFF, 0xFE}, Bytes{0xFF, 0xFE, '0', 0, '0'},
                              CounterBytes(L"00000042"), Bytes(5000, 'x')}) {
        SCOPED_TRACE(half.size());
        fs::remove(ActionLogPath());
        fs::remove(CounterPath());
        MakeOldStore("complete.sql");
        const fs::path left = CounterPath().wstring() + L".left.new";
        WriteBytes(left, half);
        EXPECT_EQ(S_OK, Maintain());
        EXPECT_THAT(FilesInTheMaking(), ElementsAre(left)) << "it may be another process's yet";
        ExpectCompleteStoreIsConverted(before);
        fs::remove(left);
    }
}

} // namespace tsl::test
