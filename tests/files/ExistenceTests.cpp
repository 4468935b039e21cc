// What counts as a file that is there, and what as a folder.
#include "files/Paths.h"
#include "tests/files/ScratchFolder.h"

namespace tsl::test {

class ExistenceTest : public ScratchTest {
protected:
    void SetUp() override {
        ScratchTest::SetUp();
        WriteBytes(At(L"file"), {});
        std::filesystem::create_directory(At(L"folder"));
    }

    // As for a folder whose wide name the system does not take.
    static void RefuseWideNames() {
        Calls().getFileAttributes = [](LPCWSTR) -> DWORD { return ERROR_INVALID_NAME; };
    }
};

TEST_F(ExistenceTest, TellsFilesFromFolders) {
    struct Case {
        std::wstring path;
        bool file;
        bool folder;
    };
    for (const Case& c : {Case{At(L"file"), true, false}, Case{At(L"folder"), false, true},
                          Case{At(L"folder\\"), false, true}, Case{At(L"none"), false, false},
                          Case{At(L"none\\file"), false, false}, Case{At(L"file\\x"), false, false},
                          Case{L"", false, false}, Case{L"C:\\", false, true},
                          Case{LongPathPrefix(At(L"file"), true, false), true, false},
                          Case{LongPathPrefix(At(L"folder"), true, true), false, true}}) {
        SCOPED_TRACE(c.path);
        EXPECT_EQ(c.file, FileExists(c.path));
        EXPECT_EQ(c.folder, FolderExists(c.path));
    }
}

TEST_F(ExistenceTest, OtherAttributesChangeNothing) {
    SetFileAttributesW(At(L"file").c_str(), FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN);
    SetFileAttributesW(At(L"folder").c_str(), FILE_ATTRIBUTE_HIDDEN);
    EXPECT_TRUE(FileExists(At(L"file")));
    EXPECT_FALSE(FolderExists(At(L"file")));
    EXPECT_TRUE(FolderExists(At(L"folder")));
    EXPECT_FALSE(FileExists(At(L"folder")));
}

TEST_F(ExistenceTest, OpenForNobodyElseIsStillThere) {
    const CHandle open = OpenExclusively(At(L"file"));
    EXPECT_TRUE(FileExists(At(L"file")));
}

TEST_F(ExistenceTest, FolderIsLookedForByItsAnsiNameToo) {
    RefuseWideNames();
    EXPECT_TRUE(FolderExists(At(L"folder")));
    EXPECT_FALSE(FolderExists(At(L"file")));
    EXPECT_FALSE(FolderExists(At(L"none")));
    EXPECT_FALSE(FolderExists(L""));
    // A file is asked for by its wide name alone.
    EXPECT_FALSE(FileExists(At(L"file")));
}

TEST_F(ExistenceTest, AnsiNameIsInTheCodePageOfTheThread) {
    // The bytes that the name has for the thread mean another name to the process.
    const std::string ansi = "\xE6";
    wchar_t meant[2] = {};
    ASSERT_EQ(2, MultiByteToWideChar(CP_ACP, 0, ansi.c_str(), -1, meant, 2));
    std::filesystem::create_directory(At(meant));
    std::string asked;
    RefuseWideNames();
    Calls().getFileAttributesAnsi = [&](LPCSTR path) -> DWORD {
        asked = path;
        return ERROR_SUCCESS;
    };
    const LCID before = GetThreadLocale();
    ASSERT_TRUE(SetThreadLocale(MAKELCID(MAKELANGID(LANG_RUSSIAN, SUBLANG_DEFAULT), SORT_DEFAULT)));
    EXPECT_TRUE(FolderExists(At(L"\x0436")));
    SetThreadLocale(before);
    EXPECT_EQ(Scratch().string() + "\\" + ansi, asked) << "in code page 1251";
}

TEST_F(ExistenceTest, NameOfNoMeaningIsNotThere) {
    for (const std::wstring& path : {At(L"\xD800"),
                                     At(L"a\xDC00"
                                        L"b"),
                                     At(std::wstring(100'000, L'x')), std::wstring(1, L'\0')}) {
        EXPECT_FALSE(FileExists(path));
        EXPECT_FALSE(FolderExists(path));
    }
}

} // namespace tsl::test
