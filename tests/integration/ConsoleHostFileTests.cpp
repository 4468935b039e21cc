// tslhost.exe as a file that administrators run where others may write: what it imports, exports
// and carries, and whether it can be made to run libraries that somebody has planted beside it.
#include <windows.h>

#include <algorithm>

#include "tests/console/ConsoleRun.h"
#include "tests/integration/PeFile.h"

namespace tsl::test {

namespace {

namespace fs = std::filesystem;

fs::path ConsoleHostPath() {
    return ProgramFolder() / L"tslhost.exe";
}

// The application manifest; empty when there is none.
std::string ApplicationManifest() {
    const HMODULE file = LoadLibraryExW(ConsoleHostPath().c_str(), nullptr,
                                        LOAD_LIBRARY_AS_DATAFILE | LOAD_LIBRARY_AS_IMAGE_RESOURCE);
    std::string manifest;
    // 1, of a program; 24, a manifest.
    if (const HRSRC found = FindResourceW(file, MAKEINTRESOURCEW(1), MAKEINTRESOURCEW(24))) {
        manifest.assign(static_cast<const char*>(LockResource(LoadResource(file, found))),
                        SizeofResource(file, found));
    }
    FreeLibrary(file);
    return manifest;
}

constexpr const wchar_t* kPlanted[] = {L"bcrypt",  L"cryptbase", L"cryptsp", L"rsaenh",
                                       L"profapi", L"propsys",   L"uxtheme", L"ntmarta",
                                       L"sspicli", L"apphelp",   L"winmm"};
// Of which one is imported by Wine's own user32.dll, other than by that of Windows: it is loaded
// before any program begins, whatever the program does.
constexpr wchar_t kPlantedForWine[] = L"version";

// Wine, other than Windows, prefers what it has itself to files of the same names beside a program,
// unless its settings tell otherwise.
class NativePreferred {
public:
    NativePreferred() {
        for (const wchar_t* const name : kPlanted)
            Prefer(name);
        Prefer(kPlantedForWine);
    }
    NativePreferred(const NativePreferred&) = delete;
    NativePreferred& operator=(const NativePreferred&) = delete;
    ~NativePreferred() { RegDeleteKeyW(HKEY_CURRENT_USER, kSettings); }

private:
    static void Prefer(const wchar_t* name) {
        RegSetKeyValueW(HKEY_CURRENT_USER, kSettings, name, REG_SZ, kNativeFirst,
                        sizeof kNativeFirst);
    }

    static constexpr wchar_t kSettings[] =
        L"Software\\Wine\\AppDefaults\\tslhost.exe\\DllOverrides";
    static constexpr wchar_t kNativeFirst[] = L"native,builtin";
};

// A folder with the console host and the component, into which libraries can be planted.
class PlantedFolder {
public:
    PlantedFolder() {
        static unsigned serial = 0;
        m_folder += std::to_wstring(++serial);
        fs::remove_all(m_folder); // of an earlier process of the same number
        fs::create_directories(m_folder);
        for (const wchar_t* const name :
             {L"tslhost.exe", L"TslIfDbActionLog.dll", L"Corvane.Nimbra.SQLiteEngine"})
            fs::copy(ProgramFolder() / name, m_folder / name);
    }
    PlantedFolder(const PlantedFolder&) = delete;
    PlantedFolder& operator=(const PlantedFolder&) = delete;
    ~PlantedFolder() {
        std::error_code ignored;
        fs::remove_all(m_folder, ignored);
    }

    void Plant(const std::wstring& name) const {
        fs::copy_file(ProgramFolder() / L"planted.dll", m_folder / name);
    }
    // The names of those that were loaded.
    std::vector<std::wstring> Ran() const {
        std::vector<std::wstring> names;
        for (const auto& entry : fs::directory_iterator(m_folder)) {
            if (entry.path().extension() == L".ran") names.push_back(entry.path().stem().wstring());
        }
        std::ranges::sort(names);
        return names;
    }
    ConsoleResult Run(const std::wstring& arguments, const std::string& input = {}) const {
        return RunConsoleAt(m_folder / L"tslhost.exe", arguments, input);
    }
    fs::path Path(const std::wstring& name) const { return m_folder / name; }

private:
    fs::path m_folder =
        fs::temp_directory_path() / (L"planted_" + std::to_wstring(GetCurrentProcessId()) + L"_");
};

} // namespace

class ConsoleHostFile : public StoreTest {};

// These the system takes from its own folder, whatever lies beside a program.
TEST_F(ConsoleHostFile, ImportsKnownDllsOnly) {
    const std::vector<std::string> known = {"advapi32.dll", "kernel32.dll", "msvcrt.dll",
                                            "ole32.dll",    "oleaut32.dll", "shell32.dll",
                                            "user32.dll"};
    const std::vector<std::string> imported = PeFile(ConsoleHostPath()).ImportedModules();
    EXPECT_FALSE(imported.empty());
    for (std::string module : imported) {
        std::ranges::transform(module, module.begin(),
                               [](unsigned char letter) { return std::tolower(letter); });
        EXPECT_EQ(1, std::ranges::count(known, module)) << module;
    }
}

TEST_F(ConsoleHostFile, ExportsNothing) {
    const IMAGE_NT_HEADERS64 headers = PeFile(ConsoleHostPath()).Headers();
    EXPECT_EQ(0u, headers.OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_EXPORT].Size);
}

TEST_F(ConsoleHostFile, CarriesTheManifestOfAProgramOfToday) {
    const std::string manifest = ApplicationManifest();
    for (const char* const part : {"level=\"asInvoker\"", ">true</longPathAware>",
                                   "supportedOS Id=\"{8e0f7a12-bfb3-4fe8-b9a5-48fd50a15a9a}\""}) {
        EXPECT_NE(std::string::npos, manifest.find(part)) << part << " in \"" << manifest << '"';
    }
}

TEST_F(ConsoleHostFile, GuardsItsStackAndChecksItsContainers) {
    const PeFile file(ConsoleHostPath());
    EXPECT_GT(file.CallsOf("__stack_chk_fail"), 500u);
    EXPECT_GT(file.CallsOf("_ZSt21__glibcxx_assert_failPKciS0_S0_"), 100u);
}

TEST_F(ConsoleHostFile, ChecksCopiesIntoBuffersOfKnownSizes) {
    const PeFile file(ConsoleHostPath());
    // It takes the same option, but leaves no copy whose length is not known when it compiles.
    if (file.CallsOf("__clang_call_terminate") > 0) GTEST_SKIP() << "clang has nothing to check";
    EXPECT_GT(file.CallsOf("__memcpy_chk"), 0u);
}

TEST_F(ConsoleHostFile, RunsNoLibraryThatLiesBesideIt) {
    const NativePreferred preference;
    const PlantedFolder folder;
    for (const wchar_t* const name : kPlanted)
        folder.Plant(name + std::wstring(L".dll"));
    EXPECT_EQ(0, folder.Run(L"import -", "{\"name\":\"a\",\"app\":1,\"user\":1}\n").exitCode);
    EXPECT_EQ(0, folder.Run(L"doctor").exitCode);
    const ConsoleResult result =
        folder.Run(L"backup \"" + folder.Path(L"backup").wstring() + L"\"");
    EXPECT_EQ(0, result.exitCode) << result.errors;
    EXPECT_EQ(std::vector<std::wstring>(), folder.Ran());
}

TEST_F(ConsoleHostFile, CallsNoLibraryThatLiesBesideItThoughItIsLoaded) {
    const NativePreferred preference;
    const PlantedFolder folder;
    EXPECT_EQ(0, folder.Run(L"import -", "{\"name\":\"a\",\"app\":1,\"user\":1}\n").exitCode);
    const ConsoleResult before = folder.Run(L"doctor --json");
    folder.Plant(kPlantedForWine + std::wstring(L".dll"));
    const ConsoleResult result = folder.Run(L"doctor --json");
    const auto componentIn = [](const std::string& output) {
        const size_t start = std::min(output.find("\"component\""), output.size());
        return output.substr(start, output.find('\n', start) - start);
    };
    EXPECT_NE(std::string::npos, componentIn(before.output).find("version 1."));
    EXPECT_EQ(componentIn(before.output), componentIn(result.output));
}

TEST_F(ConsoleHostFile, WouldBeSeenToRunAPlantedLibrary) {
    const PlantedFolder folder;
    folder.Plant(L"another.dll");
    FreeLibrary(LoadLibraryW(folder.Path(L"another.dll").c_str()));
    EXPECT_EQ(std::vector<std::wstring>{L"another.dll"}, folder.Ran());
}

} // namespace tsl::test
