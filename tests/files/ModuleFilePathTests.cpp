// The path of a module's file, which may be longer than any room that is offered first.
#include <memory>
#include <type_traits>

#include "files/Paths.h"
#include "tests/files/ScratchFolder.h"

namespace tsl::test {

namespace {

struct LibraryDeleter {
    void operator()(HMODULE module) const noexcept { FreeLibrary(module); }
};
using Library = std::unique_ptr<std::remove_pointer_t<HMODULE>, LibraryDeleter>;

class ModuleFilePathTest : public ScratchTest {
protected:
    // Notes the room that is offered each time.
    void SetUp() override {
        ScratchTest::SetUp();
        Calls().getModuleFileName = [this](DWORD room) -> DWORD {
            rooms.push_back(room);
            return ERROR_SUCCESS;
        };
    }

    std::vector<DWORD> rooms;
};

// Puts a copy of the component at a path, which may be beyond the limit, and loads it from there
// without running it.
Library LoadCopy(const std::wstring& path) {
    const std::wstring prefixed = LongPathPrefix(path, /*force=*/true, /*directory=*/false);
    EXPECT_TRUE(CreateFolderTree(prefixed.substr(0, prefixed.rfind(L'\\'))));
    const std::filesystem::path component = ProgramFolder() / L"TslIfDbActionLog.dll";
    EXPECT_TRUE(CopyFileW(component.c_str(), prefixed.c_str(), /*failIfExists=*/TRUE));
    return Library(LoadLibraryExW(prefixed.c_str(), nullptr, DONT_RESOLVE_DLL_REFERENCES));
}

} // namespace

TEST_F(ModuleFilePathTest, IsThatOfTheProgramAndOfALibrary) {
    std::wstring path = L"old";
    EXPECT_TRUE(ModuleFilePath(path, nullptr));
    EXPECT_EQ((ProgramFolder() / L"files_tests.exe").wstring(), path);
    EXPECT_TRUE(ModuleFilePath(path, GetModuleHandleW(L"kernel32.dll")));
    EXPECT_EQ(L"kernel32.dll", std::filesystem::path(path).filename().wstring());
}

TEST_F(ModuleFilePathTest, UnknownModuleLeavesAnEmptyPath) {
    std::wstring path = L"old";
    EXPECT_FALSE(ModuleFilePath(path, reinterpret_cast<HMODULE>(0x10000)));
    EXPECT_EQ(L"", path);
    Calls().getModuleFileName = [](DWORD) -> DWORD { return ERROR_ACCESS_DENIED; };
    path = L"old";
    EXPECT_FALSE(ModuleFilePath(path, nullptr));
    EXPECT_EQ(L"", path);
}

TEST_F(ModuleFilePathTest, RoomGrowsByHalfUntilThePathFits) {
    struct Case {
        size_t length;
        std::vector<DWORD> rooms;
    };
    for (const Case& c :
         {Case{150, {260}}, Case{259, {260}}, Case{260, {260, 390}}, Case{389, {260, 390}},
          Case{390, {260, 390, 585}}, Case{800, {260, 390, 585, 877}},
          Case{1000, {260, 390, 585, 877, 1315}}}) {
        SCOPED_TRACE(c.length);
        const std::wstring file = PathOfLength(Scratch(), c.length - 4) + L".dll";
        ASSERT_EQ(c.length, file.size());
        const Library library = LoadCopy(file);
        ASSERT_TRUE(library);
        rooms.clear();
        std::wstring path;
        EXPECT_TRUE(ModuleFilePath(path, library.get()));
        EXPECT_EQ(file, path) << "the emulator's loader leaves the prefix out";
        EXPECT_EQ(c.rooms, rooms);
    }
}

} // namespace tsl::test
