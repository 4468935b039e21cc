// A restore that fails, or whose process ends, at each of the moments when files change places.
#include <algorithm>

#include "console/Text.h"
#include "tests/console/ConsoleRun.h"
#include "tests/support/ImportHook.h"
#include "tests/upkeep/BackupFixture.h"
#include "tests/upkeep/Examination.h"
#include "upkeep/StoreFiles.h"
#include "upkeep/backup/Restore.h"

namespace tsl::test {

namespace {

namespace fs = std::filesystem;

// Both text files, each with the copy that is kept; both databases, each with the old one, which is
// kept; and a journal.
constexpr int kMoves = 9;

decltype(&SetFileInformationByHandle) g_set = nullptr;
int g_movesLeft = 0;

BOOL WINAPI FailingMove(HANDLE file, FILE_INFO_BY_HANDLE_CLASS kind, void* what, DWORD size) {
    if (kind != FileRenameInfo || --g_movesLeft != 0) return g_set(file, kind, what, size);
    SetLastError(ERROR_ACCESS_DENIED);
    return FALSE;
}

bool Holds(const FolderContent& content, const Bytes& bytes) {
    return std::ranges::any_of(content, [&](const auto& file) { return file.second == bytes; });
}

} // namespace

class InterruptedRestore : public BackupTest {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(BackupTest::SetUp());
        g_set = reinterpret_cast<decltype(g_set)>(
            ImportHook::Imported(GetModuleHandleW(nullptr), "SetFileInformationByHandle"));
        ASSERT_TRUE(g_set);
    }

    Outcome Run() const {
        return OutcomeOf([&] { RestoreStore(Folder().wstring(), Store(), Unheard); });
    }
};

TEST_F(InterruptedRestore, IsTakenBackWhereverItFails) {
    BackUpAndChange();
    ASSERT_NO_FATAL_FAILURE(LeaveJournal(Store()));
    const FolderContent before = StoreContent();
    const ImportHook hook("SetFileInformationByHandle", FailingMove);
    for (int move = 1; move <= kMoves; ++move) {
        SCOPED_TRACE(move);
        g_movesLeft = move;
        const Outcome outcome = Run();
        EXPECT_EQ(ExitCode::Denied, outcome.code) << outcome.message;
        EXPECT_EQ(before, StoreContent());
    }
    g_movesLeft = kMoves + 1;
    EXPECT_EQ(ExitCode::Fine, Run().code) << "there are no more moves";
    ExpectSample();
}

TEST_F(InterruptedRestore, LosesNothingWhereverItsProcessEnds) {
    BackUpAndChange();
    ASSERT_NO_FATAL_FAILURE(LeaveJournal(Store()));
    const FolderContent before = StoreContent();
    const FolderContent backup = ContentOf(Folder());
    for (int move = 1; move <= kMoves; ++move) {
        SCOPED_TRACE(move);
        const ConsoleResult ended =
            RunConsoleAt(ProgramFolder() / L"restore_worker.exe",
                         L"\"" + Folder().wstring() + L"\" " + std::to_wstring(move));
        ASSERT_EQ(77, ended.exitCode);
        const FolderContent after = StoreContent();
        for (const auto& [path, bytes] : before)
            EXPECT_TRUE(Holds(after, bytes)) << path << " is lost";
        for (const StoreFile& file : kStoreFiles) {
            if (file.isDatabase && !fs::exists(file.In(Store()))) {
                const Finding told = WorstOf(Examine(Store()), ToUtf8(file.name));
                EXPECT_TRUE(told.damage) << told.text;
                EXPECT_NE(std::string::npos, told.remedy.find("tslhost restore again"));
                continue;
            }
            const Bytes present = ReadBytes(file.In(Store()));
            EXPECT_TRUE(present == before.at(file.In(Store())) ||
                        present == backup.at(Folder() / file.name))
                << ToUtf8(file.name) << " is neither the old one nor the new one";
        }
        const Outcome again = Run();
        EXPECT_EQ(ExitCode::Fine, again.code) << again.message;
        ExpectSample();
        EXPECT_FALSE(WorstOf(Examine(Store()), "").damage);

        fs::remove_all(StoreFolder().parent_path());
        for (const auto& [path, bytes] : before) {
            fs::create_directories(path.parent_path());
            if (path.has_extension()) WriteBytes(path, bytes);
        }
    }
}

TEST_F(InterruptedRestore, LeavesNoMomentWithoutACounterOrAUserList) {
    BackUpAndChange();
    static const StorePaths* store = nullptr;
    static int missing = 0;
    store = &Store();
    const auto look = [](HANDLE file, FILE_INFO_BY_HANDLE_CLASS kind, void* what, DWORD size)
                          WINAPI -> BOOL {
        const BOOL done = g_set(file, kind, what, size);
        missing += !fs::exists(store->counter) + !fs::exists(store->userIds);
        return done;
    };
    const ImportHook hook("SetFileInformationByHandle", static_cast<decltype(g_set)>(look));
    EXPECT_EQ(ExitCode::Fine, Run().code);
    EXPECT_EQ(0, missing);
}

} // namespace tsl::test
