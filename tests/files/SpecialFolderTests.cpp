// The path of a special folder with its sub-folders, and what is used when the shell knows none.
#include <shlobj.h>

#include "base/ComPtr.h"
#include "files/Paths.h"
#include "tests/files/MovedDataFolder.h"
#include "tests/files/ScratchFolder.h"

namespace tsl::test {

namespace {

constexpr int kCommonAppData = 0x23;
// "My Computer" is no folder of a disk.
constexpr int kFolderWithoutAPath = CSIDL_DRIVES;
constexpr int kUnknownFolder = 0x7E;

std::wstring CommonAppData() {
    wchar_t folder[MAX_PATH];
    EXPECT_EQ(S_OK, SHGetFolderPathW(nullptr, CSIDL_COMMON_APPDATA, nullptr, 0, folder));
    return folder;
}

} // namespace

class SpecialFolderTest : public ScratchTest {};

TEST_F(SpecialFolderTest, CompanyFolderStandsBeforeTheSubPath) {
    struct Case {
        const wchar_t* sub;
        const wchar_t* company;
        const wchar_t* expected;
    };
    for (const Case& c :
         {Case{L"", L"", L"\\"}, Case{L"Sub", L"", L"\\Sub\\"},
          Case{L"", L"Company", L"\\Company\\"}, Case{L"Sub", L"Company", L"\\Company\\Sub\\"},
          Case{L"Sub\\Deep\\", L"Company\\", L"\\Company\\Sub\\Deep\\"}}) {
        SCOPED_TRACE(c.expected);
        std::wstring path = L"old";
        EXPECT_TRUE(SpecialFolderPath(kCommonAppData, path, c.sub, c.company));
        EXPECT_EQ(CommonAppData() + c.expected, path);
        EXPECT_FALSE(std::filesystem::exists(CommonAppData() + L"\\Sub")) << "made nothing";
    }
}

TEST_F(SpecialFolderTest, BackslashOfTheShellIsNotDoubled) {
    std::wstring path;
    {
        const MovedDataFolder moved(L"C:\\");
        ASSERT_EQ(L"C:\\", CommonAppData());
        EXPECT_TRUE(SpecialFolderPath(kCommonAppData, path, L"Sub"));
        EXPECT_EQ(L"C:\\Sub\\", path);
    }
    const MovedDataFolder moved(Scratch().wstring());
    ASSERT_EQ(Scratch().wstring(), CommonAppData());
    EXPECT_TRUE(SpecialFolderPath(kCommonAppData, path, L"Sub"));
    EXPECT_EQ(Scratch().wstring() + L"\\Sub\\", path);
}

TEST_F(SpecialFolderTest, LongestPathOfTheShellFits) {
    const std::wstring longest = PathOfLength(Scratch(), MAX_PATH - 1);
    ASSERT_TRUE(CreateFolderTree(L"\\\\?\\" + longest));
    const MovedDataFolder moved(longest);
    std::wstring path;
    EXPECT_TRUE(SpecialFolderPath(kCommonAppData, path, L"Sub"));
    EXPECT_EQ(longest + L"\\Sub\\", path);
}

TEST_F(SpecialFolderTest, CurrentDirectoryWithoutSubFoldersTakesThePlaceOfAnUnknownFolder) {
    const CurrentDirectory here(Scratch());
    for (const int folder : {kUnknownFolder, kFolderWithoutAPath}) {
        SCOPED_TRACE(folder);
        std::wstring path = L"old";
        EXPECT_FALSE(SpecialFolderPath(folder, path, L"Sub", L"Company"));
        EXPECT_EQ(Scratch().wstring() + L"\\", path);
    }
}

TEST_F(SpecialFolderTest, CurrentDirectoryTakesThePlaceOfAFolderThatTheShellDoesNotTell) {
    const CurrentDirectory here(Scratch());
    for (const bool location : {true, false}) {
        SCOPED_TRACE(location ? "location" : "path");
        Calls() = SystemCalls();
        if (location) {
            Calls().getSpecialFolderLocation = [](int) { return E_FAIL; };
        } else {
            Calls().getPathFromItems = [](LPCITEMIDLIST) -> DWORD { return ERROR_PATH_NOT_FOUND; };
        }
        std::wstring path = L"old";
        EXPECT_FALSE(SpecialFolderPath(kCommonAppData, path, L"Sub", L"Company"));
        EXPECT_EQ(Scratch().wstring() + L"\\", path);
    }
}

TEST_F(SpecialFolderTest, RootAsCurrentDirectoryHasOneBackslash) {
    const CurrentDirectory here(L"C:\\");
    std::wstring path;
    EXPECT_FALSE(SpecialFolderPath(kUnknownFolder, path));
    EXPECT_EQ(L"C:\\", path);
}

TEST_F(SpecialFolderTest, PathStaysWhenEvenTheCurrentDirectoryIsUnknown) {
    // The first call asks for the length, the second for the path.
    for (const int failing : {1, 2}) {
        SCOPED_TRACE(failing);
        int calls = 0;
        Calls().getCurrentDirectory = [&](DWORD) -> DWORD {
            return ++calls == failing ? ERROR_ACCESS_DENIED : ERROR_SUCCESS;
        };
        std::wstring path = L"old";
        EXPECT_FALSE(SpecialFolderPath(kUnknownFolder, path, L"Sub", L"Company"));
        EXPECT_EQ(L"old", path);
        EXPECT_EQ(failing, calls);
    }
}

TEST_F(SpecialFolderTest, CurrentDirectoryThatGrewBetweenTheCallsIsNotCutOff) {
    const CurrentDirectory here(Scratch());
    std::filesystem::create_directory(At(L"longer"));
    int moves = 0;
    Calls().getCurrentDirectory = [&](DWORD room) -> DWORD {
        if (room != 0) moves += SetCurrentDirectoryW(At(L"longer").c_str());
        return ERROR_SUCCESS;
    };
    std::wstring path = L"old";
    EXPECT_FALSE(SpecialFolderPath(kUnknownFolder, path));
    EXPECT_EQ(L"old", path);
    EXPECT_EQ(1, moves);
}

TEST_F(SpecialFolderTest, ItemListIsFreedWithTheAllocatorOfTheShell) {
    CComPtr<IMalloc> allocator;
    ASSERT_EQ(S_OK, SHGetMalloc(allocator.Put()));
    for (const bool pathIsKnown : {true, false}) {
        SCOPED_TRACE(pathIsKnown);
        void* items = nullptr;
        Calls().getPathFromItems = [&](LPCITEMIDLIST list) -> DWORD {
            items = const_cast<LPITEMIDLIST>(list);
            EXPECT_EQ(1, allocator->DidAlloc(items));
            return pathIsKnown ? ERROR_SUCCESS : ERROR_PATH_NOT_FOUND;
        };
        std::wstring path;
        EXPECT_EQ(pathIsKnown, SpecialFolderPath(kCommonAppData, path));
        ASSERT_TRUE(items);
        EXPECT_EQ(0, allocator->DidAlloc(items));
    }
}

} // namespace tsl::test
