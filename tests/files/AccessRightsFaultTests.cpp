// Rights that cannot be given: what fails, what is then left alone, and the reason that is told.
#include <aclapi.h>
#include <gmock/gmock.h>

#include <type_traits>

#include "base/LocalMemory.h"
#include "files/AccessRights.h"
#include "files/Paths.h"
#include "tests/files/ScratchFolder.h"

namespace tsl::test {

namespace {

constexpr DWORD kSuccess = ERROR_SUCCESS;
constexpr DWORD kAccessDenied = ERROR_ACCESS_DENIED;
constexpr SECURITY_INFORMATION kAccessListOnly = DACL_SECURITY_INFORMATION;

bool HasList(const std::wstring& path) {
    PACL list = nullptr;
    PSECURITY_DESCRIPTOR read = nullptr;
    EXPECT_EQ(kSuccess, GetNamedSecurityInfoW(path.c_str(), SE_FILE_OBJECT, kAccessListOnly,
                                              nullptr, nullptr, &list, nullptr, &read));
    const LocalMemory<std::remove_pointer_t<PSECURITY_DESCRIPTOR>> descriptor(read);
    return list != nullptr;
}

} // namespace

class AccessRightsFaultTest : public ScratchTest {
protected:
    void SetUp() override {
        ScratchTest::SetUp();
        WriteBytes(At(L"file"), {1});
        std::filesystem::create_directory(At(L"folder"));
        ASSERT_FALSE(NamesEveryone(At(L"file"))) << "these tests need a server with umask 077";
    }

    // Lets every write of a list fail, and counts them.
    void FailWrites(DWORD error) {
        Calls().setSecurity = [this, error](auto...) {
            ++writes;
            return error;
        };
    }
    // Lets every reading of a list fail, and counts them.
    void FailReads(DWORD error) {
        Calls().getSecurity = [this, error](SECURITY_INFORMATION what) {
            ++reads;
            EXPECT_EQ(kAccessListOnly, what);
            return error;
        };
    }

    int reads = 0;
    int writes = 0;
};

TEST_F(AccessRightsFaultTest, UnreadableListLeavesItsReasonAsLastError) {
    FailWrites(kAccessDenied);
    for (const DWORD error : {ERROR_ACCESS_DENIED, ERROR_NOT_SUPPORTED}) {
        SCOPED_TRACE(error);
        FailReads(error);
        SetLastError(ERROR_SUCCESS);
        EXPECT_FALSE(GrantFileAccess(At(L"file")));
        EXPECT_EQ(error, GetLastError());
        SetLastError(ERROR_SUCCESS);
        EXPECT_FALSE(GrantFolderAccess(At(L"folder")));
        EXPECT_EQ(error, GetLastError());
    }
    EXPECT_EQ(4, reads);
    EXPECT_EQ(0, writes);
}

TEST_F(AccessRightsFaultTest, FailedWriteLeavesItsReasonAsLastErrorAndIsNotRepeated) {
    FailWrites(ERROR_ACCESS_DENIED);
    SetLastError(ERROR_SUCCESS);
    EXPECT_FALSE(GrantFileAccess(At(L"file")));
    EXPECT_EQ(kAccessDenied, GetLastError());
    EXPECT_EQ(1, writes);
    SetLastError(ERROR_SUCCESS);
    EXPECT_FALSE(GrantFolderAccess(At(L"folder")));
    EXPECT_EQ(kAccessDenied, GetLastError());
    EXPECT_EQ(2, writes);
}

TEST_F(AccessRightsFaultTest, WriteIsAskedForTheAccessListAloneWithTheFullGrantInIt) {
    for (const bool folder : {true, false}) {
        SCOPED_TRACE(folder ? "folder" : "file");
        const std::wstring object = At(folder ? L"folder" : L"file");
        int grants = 0;
        Calls().setSecurity = [&](HANDLE opened, SECURITY_INFORMATION what,
                                  PSECURITY_DESCRIPTOR descriptor) {
            ++writes;
            wchar_t path[MAX_PATH] = L"";
            GetFinalPathNameByHandleW(opened, path, MAX_PATH, VOLUME_NAME_DOS);
            EXPECT_EQ(L"\\\\?\\" + object, path);
            EXPECT_EQ(kAccessListOnly, what);
            PACL list = nullptr;
            BOOL isPresent = FALSE;
            BOOL isDefaulted = TRUE;
            EXPECT_TRUE(GetSecurityDescriptorDacl(descriptor, &isPresent, &list, &isDefaulted));
            EXPECT_TRUE(isPresent && !isDefaulted);
            for (WORD index = 0; index < list->AceCount; ++index) {
                void* entry = nullptr;
                EXPECT_TRUE(GetAce(list, index, &entry));
                const auto* const first = static_cast<const unsigned char*>(entry);
                // Access allowed, object and container inherit, GENERIC_ALL, S-1-1-0.
                if (Bytes(first, first + static_cast<const ACE_HEADER*>(entry)->AceSize) ==
                    Bytes{0x00, 0x03, 0x14, 0x00, 0x00, 0x00, 0x00, 0x10, 0x01, 0x01,
                          0x00, 0x00, 0x00, 0x00, 0x00, 0x01, 0x00, 0x00, 0x00, 0x00}) {
                    ++grants;
                }
            }
            return kAccessDenied;
        };
        EXPECT_FALSE(folder ? GrantFolderAccess(object) : GrantFileAccess(object));
        EXPECT_EQ(1, grants);
    }
    EXPECT_EQ(2, writes);
}

TEST_F(AccessRightsFaultTest, WrittenListLeavesNoLastError) {
    SetLastError(ERROR_FILE_NOT_FOUND);
    EXPECT_TRUE(GrantFileAccess(At(L"file")));
    EXPECT_EQ(kSuccess, GetLastError());
}

TEST_F(AccessRightsFaultTest, ObjectWithoutAListIsLeftAlone) {
    // No file or folder of the emulator is without a list, but its null device is.
    const std::wstring device = L"NUL";
    if (HasList(device)) GTEST_SKIP() << "the null device of this system has a list";
    const CHandle opened(
        CreateFileW(device.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
    Calls().getSecurity = [this](SECURITY_INFORMATION) {
        ++reads;
        return kSuccess;
    };
    FailWrites(kAccessDenied);
    EXPECT_FALSE(GrantAccess(opened));
    EXPECT_EQ(1, reads);
    EXPECT_EQ(0, writes);
}

TEST_F(AccessRightsFaultTest, NothingIsWrittenWithoutTheSidOfEveryone) {
    int sids = 0;
    Calls().allocateSid = [&] {
        ++sids;
        return kAccessDenied;
    };
    FailWrites(kAccessDenied);
    EXPECT_FALSE(GrantFileAccess(At(L"file")));
    EXPECT_FALSE(GrantFolderAccess(At(L"folder")));
    EXPECT_GE(sids, 2);
    EXPECT_EQ(0, writes);
}

TEST_F(AccessRightsFaultTest, FolderThatCannotBeMadeIsNotAskedForItsList) {
    FailReads(kAccessDenied);
    bool anyAttributes = false;
    int tries = 0;
    Calls().createDirectory = [&](LPCWSTR, LPSECURITY_ATTRIBUTES attributes) {
        ++tries;
        anyAttributes = anyAttributes || attributes;
        return kAccessDenied;
    };
    EXPECT_FALSE(GrantFolderAccess(At(L"new")));
    EXPECT_EQ(1, tries);
    EXPECT_FALSE(anyAttributes);
    EXPECT_EQ(0, reads);
}

TEST_F(AccessRightsFaultTest, FolderThatCannotBeOpenedAfterItWasMadeIsNotAskedForItsList) {
    FailReads(kAccessDenied);
    const std::wstring folder = At(L"new");
    Calls().createFile = [&](LPCWSTR path, auto...) {
        return path == folder && FolderExists(folder) ? kAccessDenied : kSuccess;
    };
    EXPECT_FALSE(GrantFolderAccess(folder));
    EXPECT_EQ(0, reads);
    Calls() = SystemCalls();
    EXPECT_TRUE(std::filesystem::is_directory(folder));
}

} // namespace tsl::test
