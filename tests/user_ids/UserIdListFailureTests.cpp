// A user id list that cannot be read, written or reached: the user gets an id all the same.
#include "base/Handle.h"
#include "tests/support/Failures.h"
#include "tests/support/ImportHook.h"
#include "tests/user_ids/UserIdListFixture.h"

namespace tsl::test {

namespace fs = std::filesystem;

namespace {

HANDLE WINAPI FailToOpenForWriting(LPCWSTR path, DWORD access, DWORD share,
                                   LPSECURITY_ATTRIBUTES attributes, DWORD disposition, DWORD flags,
                                   HANDLE templateFile) {
    if (access & GENERIC_WRITE) {
        SetLastError(ERROR_ACCESS_DENIED);
        return INVALID_HANDLE_VALUE;
    }
    static const auto system = std::bit_cast<decltype(&CreateFileW)>(
        GetProcAddress(GetModuleHandleW(L"kernel32.dll"), "CreateFileW"));
    return system(path, access, share, attributes, disposition, flags, templateFile);
}

BOOL WINAPI FailToWrite(HANDLE, LPCVOID, DWORD, LPDWORD written, LPOVERLAPPED) {
    *written = 0;
    SetLastError(ERROR_DISK_FULL);
    return FALSE;
}

CHandle HoldOpen(const fs::path& file, DWORD share) {
    return CHandle(CreateFileW(file.c_str(), GENERIC_READ, share, nullptr, OPEN_EXISTING,
                               FILE_ATTRIBUTE_NORMAL, nullptr));
}

void ExpectIdOne() {
    UINT64 id = 0;
    EXPECT_EQ(S_FALSE, CurrentUserId(id));
    EXPECT_EQ(1u, id);
    const LookUpResult other = LookUp(L"S-other");
    EXPECT_FALSE(other.found);
    EXPECT_EQ(1u, other.id);
    ASSERT_EQ(1u, other.entries.size());
    EXPECT_EQ(L"S-other", other.entries[0].sid);
    EXPECT_FALSE(MutexExists(kLoginLock));
}

} // namespace

class UserIdListFailure : public UserIdListTest {};

TEST_F(UserIdListFailure, LockedFileCountsAsEmpty) {
    const Bytes content = Utf16FileBytes(L"0x00000007\t" + TokenSid() + L"\t\r\n");
    PrepareUserIdList(content);
    for (const DWORD share : {0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE}) {
        SCOPED_TRACE(share);
        const CHandle other = HoldOpen(UserIdListPath(), share);
        ASSERT_TRUE(other);
        ExpectIdOne();
        EXPECT_EQ(kSharingViolation, WriteUserIdList({{1, L"S-1"}}));
    }
    EXPECT_EQ(content, ReadBytes(UserIdListPath()));
    UINT64 id = 0;
    EXPECT_EQ(S_FALSE, CurrentUserId(id));
    EXPECT_EQ(7u, id) << "once the file is free again";
}

TEST_F(UserIdListFailure, MissingFolderIsMade) {
    fs::remove_all(UserIdListFolder().parent_path().parent_path());
    EXPECT_EQ(1u, LookUp(L"S-1").id);
    EXPECT_EQ(Utf16FileBytes(L"0x00000001\tS-1\t\r\n"), ReadBytes(UserIdListPath()));
}

TEST_F(UserIdListFailure, MissingFolderIsMadeForAWrite) {
    EXPECT_EQ(S_OK, WriteUserIdList({{1, L"S-1"}}));
    EXPECT_EQ(Utf16FileBytes(L"0x00000001\tS-1\t\r\n"), ReadBytes(UserIdListPath()));
}

TEST_F(UserIdListFailure, FileInPlaceOfTheFolderGivesIdOne) {
    fs::create_directories(UserIdListFolder().parent_path());
    WriteBytes(UserIdListFolder(), {'x'});
    ExpectIdOne();
    EXPECT_EQ(E_INVALIDARG, WriteUserIdList({{1, L"S-1"}}));
    EXPECT_EQ(Bytes({'x'}), ReadBytes(UserIdListFolder()));
}

TEST_F(UserIdListFailure, FolderInPlaceOfTheFileGivesIdOne) {
    fs::create_directories(UserIdListPath());
    ExpectIdOne();
    const CHandle direct(CreateFileW(UserIdListPath().c_str(), GENERIC_READ | GENERIC_WRITE, 0,
                                     nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
    const HRESULT expected = HRESULT_FROM_WIN32(GetLastError());
    ASSERT_FALSE(direct);
    EXPECT_EQ(expected, WriteUserIdList({{1, L"S-1"}}));
    EXPECT_TRUE(fs::is_directory(UserIdListPath()));
}

// A file without write permission would do the same, but that does not bind the privileged user
// that these tests may run as.
TEST_F(UserIdListFailure, FileThatCannotBeWrittenStillGivesTheNextId) {
    const Bytes content = Utf16FileBytes(L"0x00000007\tS-7\t\r\n");
    PrepareUserIdList(content);
    {
        const ImportHook hook("CreateFileW", &FailToOpenForWriting);
        const LookUpResult known = LookUp(L"S-7");
        EXPECT_TRUE(known.found);
        EXPECT_EQ(7u, known.id);
        UINT64 id = 0;
        EXPECT_EQ(S_FALSE, CurrentUserId(id));
        EXPECT_EQ(8u, id);
        const LookUpResult other = LookUp(L"S-other");
        EXPECT_FALSE(other.found);
        EXPECT_EQ(8u, other.id) << "nothing was kept";
        EXPECT_EQ(2u, other.entries.size());
        EXPECT_EQ(kAccessDenied, WriteUserIdList({{1, L"S-1"}}));
    }
    EXPECT_EQ(content, ReadBytes(UserIdListPath()));
}

// A process that is ended between opening and writing loses nobody's id.
TEST_F(UserIdListFailure, FailedWriteLeavesTheOldList) {
    const Bytes content = Utf16FileBytes(L"0x00000007\tS-7\t\r\n");
    PrepareUserIdList(content);
    {
        const ImportHook hook("WriteFile", &FailToWrite);
        EXPECT_EQ(8u, LookUp(L"S-8").id);
    }
    EXPECT_EQ(content, ReadBytes(UserIdListPath()));
    EXPECT_EQ(8u, LookUp(L"S-8").id);
}

TEST_F(UserIdListFailure, LeavesTheFileClosed) {
    LookUp(L"S-1");
    EXPECT_TRUE(HoldOpen(UserIdListPath(), /*share=*/0));
    LookUp(L"S-1");
    EXPECT_TRUE(HoldOpen(UserIdListPath(), /*share=*/0));
}

} // namespace tsl::test
