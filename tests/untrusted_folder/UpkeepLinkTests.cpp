// A link in the place of each file that a command reads, makes or replaces: what it leads to stays
// as it is, is not copied, and nothing comes into being there.
#include "console/Text.h"
#include "tests/support/MutexHolder.h"
#include "tests/support/StoreChecks.h"
#include "tests/untrusted_folder/UpkeepFixture.h"

namespace tsl::test {

namespace fs = std::filesystem;

class UpkeepLink : public UntrustedStore {
protected:
    // A whole backup of the store, to be restored.
    void BackUp() const {
        MakeStore();
        const ConsoleResult made = RunConsole(Typed(L"backup", L"good"));
        ASSERT_EQ(0, made.exitCode) << made.errors;
    }
    std::wstring Restore() const { return Typed(L"restore", L"good"); }

    // Names that lie in the store's folders beside those of its files.
    std::vector<PlantedFile> Beside(const std::vector<const wchar_t*>& additions) const {
        std::vector<PlantedFile> files;
        for (const auto& group : {TextFiles(), Databases()}) {
            for (const PlantedFile& file : group) {
                for (const wchar_t* const addition : additions) {
                    files.push_back({file.name + ToUtf8(addition), file.path.wstring() + addition});
                }
            }
        }
        return files;
    }
};

TEST_F(UpkeepLink, InThePlaceOfAFileIsNotReplacedByRestore) {
    ASSERT_NO_FATAL_FAILURE(BackUp());
    for (const PlantedFile& file : TextFiles())
        ExpectForeignUntouched(file, Restore(), kDenied);
    for (const PlantedFile& file : Databases())
        ExpectForeignUntouched(file, Restore(), kDenied);
    for (const PlantedFile& file : Companions())
        ExpectForeignUntouched(file, Restore(), kDenied);
}

TEST_F(UpkeepLink, BesideTheFilesIsNotWrittenThroughByRestore) {
    ASSERT_NO_FATAL_FAILURE(BackUp());
    for (const PlantedFile& file : Beside({L".restoring", L".new"}))
        ExpectForeignUntouched(file, Restore(), 0);
}

TEST_F(UpkeepLink, InThePlaceOfAFileIsNotFollowedByRecover) {
    for (const PlantedFile& file : TextFiles()) {
        const int expected = file.path == fs::path(Store().counter) ? kDenied : 0;
        ExpectForeignUntouched(file, L"recover --force", expected);
    }
    for (const PlantedFile& file : Databases()) {
        ExpectForeignUntouched(file, L"recover --force", kDenied);
        ExpectForeignUntouched(file, L"recover --dry-run", kDenied);
    }
    for (const PlantedFile& file : Companions()) {
        if (!file.path.wstring().ends_with(L"-shm"))
            ExpectForeignUntouched(file, L"recover --force", kDenied);
    }
}

TEST_F(UpkeepLink, BesideTheFilesIsNotWrittenThroughByRecover) {
    const fs::path folder = StoreFolder();
    for (const PlantedFile& file :
         std::vector<PlantedFile>{{"action log while made", folder / L"ualog.recovering.db"},
                                  {"its journal", folder / L"ualog.recovering.db-journal"},
                                  {"replay log while made", folder / L"uareplay.recovering.db"},
                                  {"counter while made", folder / L"actionLog.txt.new"}})
        ExpectForeignUntouched(file, L"recover --force", 0);
}

TEST_F(UpkeepLink, InThePlaceOfAFileIsNotBackedUp) {
    for (const PlantedFile& file : AllFiles()) {
        // The engine has no use for an index of the log.
        if (file.path.wstring().ends_with(L"-shm") || file.path.wstring().ends_with(L"-wal"))
            continue;
        ExpectForeignUntouched(file, Typed(L"backup", L"made"), kDenied);
    }
}

TEST_F(UpkeepLink, PutIntoTheFolderOfABackupThatWaitsIsNotWrittenThrough) {
    const fs::path made = Out() / L"made";
    for (const LinkKind kind : kLinkKinds) {
        for (const wchar_t* const name : {L"ualog.db", L"UserIdList.dat", L"manifest.json"}) {
            SCOPED_TRACE(std::string(NameOf(kind)) + " as " + ToUtf8(name));
            ASSERT_NO_FATAL_FAILURE(MakeStore());
            const ForeignFolder foreign;
            std::optional<MutexHolder> holder(std::in_place, kSqliteAccessLock);
            RunningConsole console(Typed(L"backup", L"made"));
            while (console.IsRunning() && !fs::exists(made))
                Sleep(5);
            foreign.PlantAt(made / name, kind);
            holder.reset();
            const ConsoleResult result = console.WaitForEnd();
            // What cannot be seen is replaced by what is moved to its place.
            if (kind != LinkKind::Dangling) {
                EXPECT_EQ(kDenied, result.exitCode) << result.output;
            }
            foreign.ExpectUntouched();
            RemoveLink(made / name);
            fs::remove_all(made);
        }
    }
}

TEST_F(UpkeepLink, InThePlaceOfADatabaseIsNotCompactedReadOrFollowed) {
    const std::wstring commands[] = {L"compact", L"stats", L"list", Typed(L"report", L"r.html"),
                                     Typed(L"export --output", L"e.jsonl")};
    for (const std::wstring& command : commands)
        ExpectForeignUntouched(Databases()[0], command, kDenied);
    for (const std::wstring& command : {commands[0], commands[1], commands[3]})
        ExpectForeignUntouched(Databases()[1], command, kDenied);
}

TEST_F(UpkeepLink, InThePlaceOfTheCounterIsNotReadByStatistics) {
    ExpectForeignUntouched(TextFiles()[0], L"stats", kDenied);
}

TEST_F(UpkeepLink, InThePlaceOfAFileIsNotRaisedByAnImport) {
    const fs::path lines = Out() / L"lines.jsonl";
    const std::string line = "{\"id\":900,\"name\":\"playItem\",\"user\":7,\"app\":1,\"kind\":1}\n";
    WriteBytes(lines, Bytes(line.begin(), line.end()));
    for (const PlantedFile& file : AllFiles()) {
        if (file.path == fs::path(Store().userIds) || file.path.extension() != L".db") continue;
        ExpectForeignUntouched(file, L"import --keep-ids \"" + lines.wstring() + L"\"", kDenied);
    }
    ExpectForeignUntouched(TextFiles()[0], L"import --keep-ids \"" + lines.wstring() + L"\"",
                           kDenied);
}

TEST_F(UpkeepLink, InThePlaceOfAFileIsToldByDoctorAndNothingOfItIsShown) {
    for (const LinkKind kind : {LinkKind::Symbolic, LinkKind::Hard}) {
        for (const PlantedFile& file : AllFiles()) {
            if (file.path.wstring().ends_with(L"-shm")) continue;
            SCOPED_TRACE(std::string(NameOf(kind)) + " as " + file.name);
            ASSERT_NO_FATAL_FAILURE(MakeStore());
            const ForeignFolder foreign;
            foreign.PlantAt(file.path, kind);
            const ConsoleResult result = RunConsole(L"doctor --json");
            EXPECT_EQ(4, result.exitCode) << result.errors;
            EXPECT_NE(std::string::npos, result.output.find("is a link or has a second name"))
                << result.output;
            EXPECT_EQ(std::string::npos, result.output.find("give "))
                << "must not be opened to anybody";
            foreign.ExpectUntouched();
            RemoveLink(file.path);
        }
    }
}

TEST_F(UpkeepLink, InThePlaceOfAReportOrExportIsReplacedNotFollowed) {
    for (const std::wstring command : {L"report", L"export --output"}) {
        for (const wchar_t* const addition : {L"", L".new"}) {
            const PlantedFile file = {"the output" + ToUtf8(addition),
                                      (Out() / L"out").wstring() + addition};
            ExpectForeignUntouched(file, Typed(command, L"out"), 0);
            fs::remove(Out() / L"out");
        }
    }
}

} // namespace tsl::test
