// A restore that fails, or whose process ends, at each of the moments when files change places.
#include <algorithm>

#include "console/Text.h"
#include "tests/console/ConsoleRun.h"
#include "tests/support/ImportHook.h"
#include "tests/upkeep/BackupFixture.h"
#include "upkeep/StoreFiles.h"
#include "upkeep/backup/Restore.h"

namespace tsl::test {

namespace {

namespace fs = std::filesystem;

// Four files, and the journal of a database.
constexpr int kMoves = 5;

decltype(&MoveFileExW) g_move = nullptr;
int g_movesLeft = 0;

BOOL WINAPI FailingMove(const wchar_t* from, const wchar_t* to, DWORD flags) {
    if (--g_movesLeft != 0) return g_move(from, to, flags);
    SetLastError(ERROR_ACCESS_DENIED);
    return FALSE;
}

BOOL WINAPI NoLink(const wchar_t*, const wchar_t*, SECURITY_ATTRIBUTES*) {
    SetLastError(ERROR_INVALID_FUNCTION);
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
        g_move = reinterpret_cast<decltype(g_move)>(
            ImportHook::Imported(GetModuleHandleW(nullptr), "MoveFileExW"));
        ASSERT_TRUE(g_move);
    }

    Outcome Run() const {
        return OutcomeOf([&] { RestoreStore(Folder().wstring(), Store(), Unheard); });
    }
};

TEST_F(InterruptedRestore, IsTakenBackWhereverItFails) {
    BackUpAndChange();
    ASSERT_NO_FATAL_FAILURE(LeaveJournal(Store()));
    const FolderContent before = StoreContent();
    const ImportHook hook("MoveFileExW", FailingMove);
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
            const Bytes present = ReadBytes(file.In(Store()));
            EXPECT_TRUE(present == before.at(file.In(Store())) ||
                        present == backup.at(Folder() / file.name))
                << ToUtf8(file.name) << " is neither the old one nor the new one";
        }
        const Outcome again = Run();
        EXPECT_EQ(ExitCode::Fine, again.code) << again.message;
        ExpectSample();
        for (const auto& [path, bytes] : StoreContent())
            EXPECT_NE(L".restoring", path.extension()) << path;

        fs::remove_all(StoreFolder().parent_path());
        for (const auto& [path, bytes] : before) {
            fs::create_directories(path.parent_path());
            if (path.has_extension()) WriteBytes(path, bytes);
        }
    }
}

TEST_F(InterruptedRestore, KeepsCopiesWhereTheDiskKnowsNoSecondNames) {
    BackUpAndChange();
    const FolderContent before = StoreContent();
    const ImportHook links("CreateHardLinkW", NoLink);
    {
        const ImportHook hook("MoveFileExW", FailingMove);
        g_movesLeft = 4;
        EXPECT_EQ(ExitCode::Denied, Run().code);
        EXPECT_EQ(before, StoreContent());
    }
    EXPECT_EQ(ExitCode::Fine, Run().code);
    ExpectSample();
    const FolderContent after = StoreContent();
    for (const auto& [path, bytes] : before)
        EXPECT_TRUE(Holds(after, bytes)) << path << " is lost";
}

} // namespace tsl::test
