// Rights that are given on disk: what the system's own functions read back afterwards.
//
// The emulator makes access lists up from nine permission bits. It can show that Everyone is named
// and with which of read, write and execute; it cannot show inheritance flags, the generic mask, an
// entry that denies, a missing list or a second user. What a list holds is tried on lists in
// memory, in AccessListTests.cpp; failures are in AccessRightsFaultTests.cpp.
#include "files/AccessRights.h"

#include <aclapi.h>
#include <sddl.h>

#include "tests/files/ScratchFolder.h"

namespace tsl::test {

namespace {

// The full access of a file as the emulator shows it: it leaves out the rights to change rights.
constexpr DWORD kAllThatIsShown =
    FILE_GENERIC_READ | FILE_GENERIC_WRITE | FILE_GENERIC_EXECUTE | DELETE;
constexpr char kNeedsUmask[] = "these tests need a server with umask 077";

LONGLONG TimeOfLastChange(const std::wstring& path) {
    const CHandle file(CreateFileW(path.c_str(), FILE_READ_ATTRIBUTES,
                                   FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING,
                                   FILE_FLAG_BACKUP_SEMANTICS, nullptr));
    FILE_BASIC_INFO info{};
    EXPECT_TRUE(GetFileInformationByHandleEx(file.Get(), FileBasicInfo, &info, sizeof info));
    return info.ChangeTime.QuadPart;
}

// Replaces the access list by one in the system's text form.
void SetAccess(const std::wstring& path, const wchar_t* text) {
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    ASSERT_TRUE(ConvertStringSecurityDescriptorToSecurityDescriptorW(text, SDDL_REVISION_1,
                                                                     &descriptor, nullptr));
    EXPECT_TRUE(SetFileSecurityW(path.c_str(), DACL_SECURITY_INFORMATION, descriptor));
    LocalFree(descriptor);
}

} // namespace

class AccessRightsTest : public ScratchTest {
protected:
    void SetUp() override {
        ScratchTest::SetUp();
        WriteBytes(At(L"file"), {1});
        std::filesystem::create_directory(At(L"folder"));
        ASSERT_FALSE(NamesEveryone(At(L"file"))) << kNeedsUmask;
        ASSERT_FALSE(NamesEveryone(At(L"folder"))) << kNeedsUmask;
    }
};

TEST_F(AccessRightsTest, EveryoneGetsFullAccessToAFolder) {
    EXPECT_TRUE(GrantFolderAccess(At(L"folder")));
    EXPECT_EQ(kAllThatIsShown, MaskOfEveryone(At(L"folder")) & kAllThatIsShown);
}

TEST_F(AccessRightsTest, EveryoneGetsFullAccessToAFile) {
    EXPECT_TRUE(GrantFileAccess(At(L"file")));
    EXPECT_EQ(kAllThatIsShown, MaskOfEveryone(At(L"file")) & kAllThatIsShown);
    EXPECT_EQ(Bytes{1}, ReadBytes(At(L"file")));
}

TEST_F(AccessRightsTest, SecondGrantSucceedsWithoutWriting) {
    for (const bool folder : {true, false}) {
        SCOPED_TRACE(folder ? "folder" : "file");
        const std::wstring path = At(folder ? L"folder" : L"file");
        const auto grant = folder ? GrantFolderAccess : GrantFileAccess;
        const LONGLONG before = TimeOfLastChange(path);
        Sleep(20);
        EXPECT_TRUE(grant(path));
        const LONGLONG granted = TimeOfLastChange(path);
        EXPECT_LT(before, granted);
        Sleep(20);
        EXPECT_TRUE(grant(path));
        EXPECT_EQ(granted, TimeOfLastChange(path));
    }
}

TEST_F(AccessRightsTest, NarrowEntryOfEveryoneStaysAsItIs) {
    for (const bool folder : {true, false}) {
        SCOPED_TRACE(folder ? "folder" : "file");
        const std::wstring path = At(folder ? L"folder" : L"file");
        SetAccess(path, L"D:P(A;;FA;;;OW)(A;;FA;;;BA)(A;;FR;;;WD)");
        const DWORD narrow = MaskOfEveryone(path);
        ASSERT_NE(0u, narrow);
        ASSERT_EQ(0u, narrow & FILE_WRITE_DATA);
        EXPECT_TRUE(folder ? GrantFolderAccess(path) : GrantFileAccess(path));
        EXPECT_EQ(narrow, MaskOfEveryone(path));
    }
}

TEST_F(AccessRightsTest, MissingFolderIsMadeWithItsParents) {
    EXPECT_TRUE(GrantFolderAccess(At(L"a\\b\\c")));
    EXPECT_TRUE(std::filesystem::is_directory(At(L"a\\b\\c")));
    EXPECT_TRUE(NamesEveryone(At(L"a\\b\\c")));
    EXPECT_FALSE(NamesEveryone(At(L"a\\b"))) << "the parents are not opened";
}

TEST_F(AccessRightsTest, TrailingBackslashAndLongPathPrefixAreTaken) {
    EXPECT_TRUE(GrantFolderAccess(At(L"one\\two\\")));
    EXPECT_TRUE(NamesEveryone(At(L"one\\two")));
    const std::wstring prefixed = L"\\\\?\\" + PathOfLength(Scratch(), 300);
    EXPECT_TRUE(GrantFolderAccess(prefixed));
    EXPECT_TRUE(NamesEveryone(prefixed));
}

TEST_F(AccessRightsTest, MissingFileIsAFailureAndIsNotMade) {
    for (const wchar_t* const name : {L"none", L"none\\file"}) {
        EXPECT_FALSE(GrantFileAccess(At(name)));
        EXPECT_FALSE(std::filesystem::exists(At(name)));
    }
    EXPECT_FALSE(GrantFileAccess(L""));
    EXPECT_FALSE(GrantFolderAccess(L""));
}

TEST_F(AccessRightsTest, FolderIsNoFileAndAFileIsNoFolder) {
    EXPECT_FALSE(GrantFileAccess(At(L"folder")));
    EXPECT_FALSE(NamesEveryone(At(L"folder")));
    EXPECT_FALSE(GrantFolderAccess(At(L"file")));
    EXPECT_FALSE(GrantFolderAccess(At(L"file\\below")));
    EXPECT_FALSE(NamesEveryone(At(L"file")));
}

TEST_F(AccessRightsTest, FileThatIsOpenForNobodyElseIsOpenedToEveryone) {
    // As the counter file is when its rights are given.
    const CHandle open = OpenExclusively(At(L"file"));
    EXPECT_TRUE(GrantFileAccess(At(L"file")));
    EXPECT_TRUE(NamesEveryone(At(L"file")));
}

} // namespace tsl::test
