// Copies in the folder for temporary files: nobody can prepare their places, and they go with the
// program.
#include <winternl.h>

#include <algorithm>

#include "tests/support/FileDatabase.h"
#include "tests/untrusted_folder/UpkeepFixture.h"

namespace tsl::test {

namespace fs = std::filesystem;

namespace {

// Lets a program go on that was started but not begun.
void Resume(DWORD processId) {
    using ResumeProcess = LONG(WINAPI*)(HANDLE);
    const auto resume = reinterpret_cast<ResumeProcess>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "NtResumeProcess")));
    const CHandle process(OpenProcess(PROCESS_SUSPEND_RESUME, FALSE, processId));
    ASSERT_TRUE(process && resume && resume(process.Get()) == 0);
}

std::vector<std::wstring> Temporaries() {
    std::vector<std::wstring> names;
    for (const auto& entry : fs::directory_iterator(fs::temp_directory_path())) {
        const std::wstring name = entry.path().filename().wstring();
        // Streams of the tests' own begin so, too.
        if (name.starts_with(L"tslhost-")) names.push_back(name);
    }
    return names;
}

} // namespace

class UpkeepTemporary : public UntrustedStore {
protected:
    // The command looks at such a database in a copy.
    void SwitchToWriteAheadLog() const {
        FileDatabase(Store().actionLog).Query("PRAGMA journal_mode = WAL");
    }
};

TEST_F(UpkeepTemporary, PlacesThatCouldBeGuessedAreLeftAlone) {
    for (const wchar_t* const command : {L"doctor", L"recover --force", L"recover --dry-run"}) {
        for (const bool isFolder : {true, false}) {
            SCOPED_TRACE(fs::path(command).string() + (isFolder ? " folder" : " file"));
            ASSERT_NO_FATAL_FAILURE(MakeStore());
            SwitchToWriteAheadLog();
            const ForeignFolder foreign;
            RunningConsole console(command, {}, CREATE_SUSPENDED);
            const std::wstring start = (fs::temp_directory_path() / L"tslhost-").wstring();
            const std::wstring id = std::to_wstring(console.ProcessId());
            const fs::path places[] = {start + L"doctor-" + id + L"-1", start + id + L"-damaged.db",
                                       start + id + L"-recovered.db"};
            for (const fs::path& place : places)
                MakeSymbolicLink(place, isFolder ? foreign.Path() : foreign.Secret());
            ASSERT_NO_FATAL_FAILURE(Resume(console.ProcessId()));
            const ConsoleResult result = console.WaitForEnd();
            EXPECT_EQ(0, result.exitCode) << result.output << result.errors;
            foreign.ExpectUntouched();
            for (const fs::path& place : places)
                RemoveLink(place);
        }
    }
}

TEST_F(UpkeepTemporary, ALogThatSomebodySwitchedOnKeepsNobodyFromReading) {
    MakeStore();
    SwitchToWriteAheadLog();
    const ConsoleResult result = RunConsole(L"stats");
    EXPECT_EQ(0, result.exitCode) << result.errors;
    SwitchToWriteAheadLog();
    RunningConsole console(L"follow --after 599 --json");
    const ULONGLONG start = GetTickCount64();
    while (console.Output().find("600") == std::string::npos && GetTickCount64() - start < 10'000)
        Sleep(20);
    EXPECT_NE(std::string::npos, console.Output().find("600"));
}

TEST_F(UpkeepTemporary, CopiesAreGoneAfterwards) {
    const std::vector<std::wstring> before = Temporaries();
    for (const wchar_t* const command : {L"doctor", L"recover --force", L"recover --dry-run"}) {
        ASSERT_NO_FATAL_FAILURE(MakeStore());
        SwitchToWriteAheadLog();
        EXPECT_EQ(0, RunConsole(command).exitCode);
        EXPECT_EQ(before, Temporaries()) << fs::path(command).string();
    }
}

TEST_F(UpkeepTemporary, CopiesGoWithAProgramThatIsEnded) {
    const std::vector<std::wstring> before = Temporaries();
    ASSERT_NO_FATAL_FAILURE(MakeStore());
    // Takes a while to examine.
    FileDatabase(Store().actionLog)
        .Query("WITH RECURSIVE n(id) AS (SELECT 9001 UNION ALL SELECT id + 1 FROM n WHERE id < "
               "90000) INSERT INTO TslIf_DbActionLog (ActionLogId, ActionParameters) SELECT id, "
               "hex(zeroblob(500)) FROM n");
    SwitchToWriteAheadLog();
    bool wasThere = false;
    {
        RunningConsole console(L"doctor");
        const ULONGLONG start = GetTickCount64();
        while (!wasThere && console.IsRunning() && GetTickCount64() - start < 20'000)
            wasThere = Temporaries() != before;
        console.Kill();
    }
    ASSERT_TRUE(wasThere) << "the copy was not seen";
    EXPECT_EQ(before, Temporaries());
}

} // namespace tsl::test
