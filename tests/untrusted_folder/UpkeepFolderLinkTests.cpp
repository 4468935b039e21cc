// A link in the place of a folder of the store: no command does anything behind it.
#include <stdexcept>

#include "console/HostSession.h"
#include "tests/support/ImportHook.h"
#include "tests/untrusted_folder/UpkeepFixture.h"

namespace tsl::test {

namespace fs = std::filesystem;

namespace {

HRESULT WINAPI NoFolder(HWND, int, HANDLE, DWORD, wchar_t* folder) {
    *folder = 0;
    return E_FAIL;
}

} // namespace

TEST(UpkeepFolder, IsNeverTheCurrentOneWhereTheSystemNamesNone) {
    const ImportHook hook("SHGetFolderPathW", NoFolder);
    EXPECT_THROW(MachineStore(), std::runtime_error);
    EXPECT_THROW(CHostSession({}), std::runtime_error);
}

class UpkeepFolderLink : public UntrustedStore {
protected:
    std::vector<fs::path> Folders() const {
        const fs::path store = StoreFolder();
        const fs::path product = store.parent_path();
        return {store, product, product.parent_path()};
    }
};

TEST_F(UpkeepFolderLink, IsNotFollowed) {
    MakeStore();
    ASSERT_EQ(0, RunConsole(Typed(L"backup", L"good")).exitCode);
    const std::wstring commands[] = {
        Typed(L"restore", L"good"), L"recover --force", L"compact", L"doctor", L"stats", L"list",
        Typed(L"backup", L"made")};
    for (const fs::path& folder : Folders()) {
        for (const std::wstring& command : commands) {
            SCOPED_TRACE(folder.string() + ": " + fs::path(command).string());
            fs::remove_all(StoreFolder().parent_path().parent_path());
            const ForeignFolder foreign(/*hasTree=*/true);
            fs::create_directories(folder.parent_path());
            MakeSymbolicLink(folder, foreign.Path());
            const ConsoleResult result = RunConsole(command);
            EXPECT_NE(0, result.exitCode) << result.output;
            foreign.ExpectUntouched();
            RemoveLink(folder);
            fs::remove_all(Out() / L"made");
        }
    }
}

TEST_F(UpkeepFolderLink, IsToldByDoctorWhichNeverAdvisesToOpenIt) {
    for (const fs::path& folder : Folders()) {
        SCOPED_TRACE(folder.string());
        fs::remove_all(StoreFolder().parent_path().parent_path());
        const ForeignFolder foreign(/*hasTree=*/true);
        fs::create_directories(folder.parent_path());
        MakeSymbolicLink(folder, foreign.Path());
        const ConsoleResult result = RunConsole(L"doctor --json");
        EXPECT_EQ(4, result.exitCode);
        EXPECT_NE(std::string::npos, result.output.find("link")) << result.output;
        EXPECT_EQ(std::string::npos, result.output.find("icacls")) << result.output;
        EXPECT_EQ(std::string::npos, result.output.find("give ")) << result.output;
        foreign.ExpectUntouched();
        RemoveLink(folder);
    }
}

} // namespace tsl::test
