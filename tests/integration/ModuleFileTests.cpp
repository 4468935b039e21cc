// The component as a file: what it imports, exports and carries, and the database that it makes.
#include <windows.h>

#include <winver.h>

#include <algorithm>

#include "component/host/CommandCodes.h"
#include "tests/integration/PeFile.h"
#include "tests/support/FileDatabase.h"
#include "tests/support/PluginFixture.h"

namespace tsl::test {

namespace {

std::filesystem::path ModulePath() {
    return ProgramFolder() / L"TslIfDbActionLog.dll";
}

std::filesystem::path SystemFolder() {
    wchar_t folder[MAX_PATH];
    GetSystemDirectoryW(folder, MAX_PATH);
    return folder;
}

std::string LowerCase(std::string text) {
    std::ranges::transform(text, text.begin(), [](char character) {
        return character >= 'A' && character <= 'Z' ? static_cast<char>(character + 32) : character;
    });
    return text;
}

// A text of the version resource in US English, Unicode.
std::wstring VersionText(const std::wstring& name) {
    DWORD ignored = 0;
    const DWORD size = GetFileVersionInfoSizeW(ModulePath().c_str(), &ignored);
    std::vector<char> block(size);
    if (!GetFileVersionInfoW(ModulePath().c_str(), 0, size, block.data())) return L"no version";
    void* text = nullptr;
    UINT length = 0;
    const std::wstring path = L"\\StringFileInfo\\040904b0\\" + name;
    if (!VerQueryValueW(block.data(), path.c_str(), &text, &length)) return L"no " + name;
    return static_cast<const wchar_t*>(text);
}

// A manifest of the module; empty when it has none of that number.
std::string Manifest(int number) {
    const HMODULE module = GetModuleHandleW(L"TslIfDbActionLog.dll");
    const HRSRC found = FindResourceW(module, MAKEINTRESOURCEW(number), MAKEINTRESOURCEW(24));
    if (!found) return {};
    const auto* const first = static_cast<const char*>(LockResource(LoadResource(module, found)));
    return std::string(first, SizeofResource(module, found));
}

bool Contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

} // namespace

class ModuleFile : public PluginTest {};

TEST_F(ModuleFile, ImportsFromDllsOfTheSystemOnly) {
    const std::vector<std::string> known = {"advapi32.dll", "kernel32.dll", "msvcrt.dll",
                                            "ole32.dll",    "oleaut32.dll", "shell32.dll",
                                            "user32.dll"};
    const std::vector<std::string> imported = PeFile(ModulePath()).ImportedModules();
    EXPECT_FALSE(imported.empty());
    for (const std::string& module : imported) {
        EXPECT_TRUE(std::ranges::count(known, LowerCase(module)) == 1) << module;
        EXPECT_TRUE(std::filesystem::exists(SystemFolder() / module)) << module;
    }
}

TEST_F(ModuleFile, ExportsTheFourEntryPointsOfAComServer) {
    std::vector<std::string> names = PeFile(ModulePath()).ExportedNames();
    std::ranges::sort(names);
    EXPECT_EQ((std::vector<std::string>{"DllCanUnloadNow", "DllGetClassObject", "DllRegisterServer",
                                        "DllUnregisterServer"}),
              names);
}

TEST_F(ModuleFile, NamesItsMakerAndProduct) {
    EXPECT_EQ(L"Corvane Corporation", VersionText(L"CompanyName"));
    EXPECT_EQ(L"Tessaly", VersionText(L"ProductName"));
    EXPECT_EQ(L"TslIfDbActionLog", VersionText(L"InternalName"));
    EXPECT_EQ(L"TslIfDbActionLog.dll", VersionText(L"OriginalFilename"));
    EXPECT_EQ(VersionText(L"FileVersion"), VersionText(L"ProductVersion"));
}

TEST_F(ModuleFile, CarriesAManifestOfTheEngineForEachProcessor) {
    const struct {
        int number;
        const char* architecture;
    } expected[] = {{204, "\"x86\""}, {205, "\"amd64\""}};
    for (const auto& [number, architecture] : expected) {
        SCOPED_TRACE(number);
        const std::string manifest = Manifest(number);
        EXPECT_TRUE(Contains(manifest, "name=\"Corvane.Nimbra.SQLiteEngine\""));
        EXPECT_TRUE(Contains(manifest, "version=\"3.7.8.0\""));
        EXPECT_TRUE(Contains(manifest, "type=\"win32\""));
        EXPECT_TRUE(Contains(manifest, "language=\"*\""));
        EXPECT_TRUE(Contains(manifest, "publicKeyToken=\"1e6dc88fbc313a46\""));
        EXPECT_TRUE(Contains(manifest, std::string("processorArchitecture=") + architecture));
    }
    EXPECT_EQ("", Manifest(206));
}

constexpr char kActionColumnsText[] =
    " (ActionLogId INTEGER,UsedLog INTEGER,AppId INTEGER,AppName TEXT,UserId INTEGER,"
    "ActionName TEXT,ActionParameters TEXT,AppLoggedTime REAL,PluginLoggedTime REAL,"
    "PreActionName TEXT, PreActionParameters TEXT,PreLoggedTime INTEGER,LogKind INTEGER)";

TEST_F(ModuleFile, DatabasesHoldTheirActionTableAndNothingElse) {
    ASSERT_EQ(S_OK, Plugin().SetRecordingEnabled(1));
    ASSERT_EQ(S_OK, Plugin().Notify(kCommandRecordAction, Action(1, L"playItem")));
    const auto expectTable = [](const std::filesystem::path& path, const std::string& table) {
        const FileDatabase database(path);
        const std::vector<Row> expected = {
            {"table", table, "CREATE TABLE " + table + kActionColumnsText}};
        EXPECT_EQ(expected, database.Query("SELECT type, name, sql FROM sqlite_master"));
        EXPECT_EQ("2048", database.Value("PRAGMA page_size"));
        EXPECT_EQ("delete", database.Value("PRAGMA journal_mode"));
    };
    expectTable(ActionLogPath(), "TslIf_DbActionLog");
    expectTable(ReplayPath(), "TslIf_ActionReplay");
}

TEST_F(ModuleFile, StoreFolderHoldsTheTwoDatabasesAndTheCounterFileOnly) {
    ASSERT_EQ(S_OK, Plugin().SetRecordingEnabled(1));
    ASSERT_EQ(S_OK, Plugin().Notify(kCommandRecordAction, Action(NextId(), L"playItem")));
    std::vector<std::wstring> names;
    for (const auto& entry : std::filesystem::directory_iterator(StoreFolder()))
        names.push_back(entry.path().filename().wstring());
    std::ranges::sort(names);
    EXPECT_EQ((std::vector<std::wstring>{L"actionLog.txt", L"ualog.db", L"uareplay.db"}), names);
}

} // namespace tsl::test
