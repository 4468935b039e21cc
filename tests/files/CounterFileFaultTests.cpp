// The counter file on a disk that fails between opening and closing: the result is then the status
// of the open, which tells only whether a file was there before.
#include <gmock/gmock.h>

#include "files/TextActionLog.h"
#include "tests/files/ScratchFolder.h"
#include "tests/support/Failures.h"

namespace tsl::test {

namespace {

using ::testing::Each;
using ::testing::ElementsAre;

constexpr UINT32 kUntouched = 77;

} // namespace

class CounterFileFaultTest : public ScratchTest {
protected:
    std::wstring Path() const { return At(kCounterFileName); }

    // Lets the write of that number, from 1 on, fail with the error. Notes the sizes.
    void FailWrite(size_t number, DWORD error) {
        sizes.clear();
        Calls().writeFile = [this, number, error](DWORD size) -> DWORD {
            sizes.push_back(size);
            return sizes.size() == number ? error : ERROR_SUCCESS;
        };
    }

    std::vector<DWORD> sizes;
};

TEST_F(CounterFileFaultTest, FilesAreOpenedForNobodyElse) {
    struct Open {
        std::wstring path;
        DWORD access;
        DWORD share;
        DWORD disposition;
        DWORD flags;
        bool operator==(const Open&) const = default;
    };
    std::vector<Open> opens;
    Calls().createFile = [&](LPCWSTR path, DWORD access, DWORD share,
                             LPSECURITY_ATTRIBUTES attributes, DWORD disposition,
                             DWORD flags) -> DWORD {
        EXPECT_FALSE(attributes);
        opens.push_back({path, access, share, disposition, flags});
        return ERROR_SUCCESS;
    };
    UINT32 counter = kUntouched;
    EXPECT_EQ(S_OK, WriteCounter(Path(), 42));
    EXPECT_EQ(S_OK, ReadCounter(Path(), counter));
    EXPECT_EQ(42u, counter);
    // It is made only where it is not there, and links are opened themselves.
    const DWORD toWrite = GENERIC_READ | GENERIC_WRITE | FILE_READ_ATTRIBUTES;
    const DWORD flags = FILE_FLAG_OPEN_REPARSE_POINT | SECURITY_SQOS_PRESENT | SECURITY_ANONYMOUS;
    EXPECT_THAT(
        opens,
        ElementsAre(Open{Path(), toWrite, 0, OPEN_EXISTING, flags},
                    Open{Path(), toWrite | DELETE, 0, CREATE_NEW, FILE_ATTRIBUTE_NORMAL | flags},
                    Open{Path(), GENERIC_READ | FILE_READ_ATTRIBUTES, 0, OPEN_EXISTING, flags}));
}

TEST_F(CounterFileFaultTest, FailedOpenGivesItsWin32Error) {
    WriteBytes(Path(), Utf16FileBytes(L"41"));
    for (const DWORD error : {ERROR_ACCESS_DENIED, ERROR_SHARING_VIOLATION, ERROR_WRITE_PROTECT,
                              ERROR_DISK_FULL, ERROR_FILENAME_EXCED_RANGE}) {
        SCOPED_TRACE(error);
        Calls().createFile = [error](auto...) { return error; };
        const HRESULT expected = static_cast<HRESULT>(0x80070000 | error);
        UINT32 counter = kUntouched;
        EXPECT_EQ(expected, WriteCounter(Path(), 42));
        EXPECT_EQ(expected, ReadCounter(Path(), counter));
        EXPECT_EQ(kUntouched, counter);
    }
}

TEST_F(CounterFileFaultTest, FailedWriteOfTheLineGivesTheStatusOfTheOpen) {
    FailWrite(2, ERROR_DISK_FULL);
    EXPECT_EQ(S_OK, WriteCounter(Path(), 42)) << "a new file";
    EXPECT_THAT(sizes, ElementsAre(2, 22));
    EXPECT_EQ(Utf16FileBytes(L""), ReadBytes(Path()));
    FailWrite(2, ERROR_DISK_FULL);
    EXPECT_EQ(kAlreadyExists, WriteCounter(Path(), 42)) << "a file that was there";
}

// The same holds for a process that is ended between two writes.
TEST_F(CounterFileFaultTest, FailedWriteLeavesTheOldCounter) {
    for (const size_t failing : {1u, 2u}) {
        SCOPED_TRACE(failing);
        const Bytes old = Utf16FileBytes(L"00000041\t\r\n");
        WriteBytes(Path(), old);
        FailWrite(failing, ERROR_DISK_FULL);
        EXPECT_EQ(kAlreadyExists, WriteCounter(Path(), 42));
        EXPECT_EQ(old, ReadBytes(Path()));
        UINT32 counter = kUntouched;
        FailWrite(failing, ERROR_DISK_FULL);
        EXPECT_EQ(kAlreadyExists, AdvanceCounter(Path(), counter));
        EXPECT_EQ(old, ReadBytes(Path()));
    }
}

TEST_F(CounterFileFaultTest, LineIsNotWrittenBehindAMissingMark) {
    FailWrite(1, ERROR_DISK_FULL);
    EXPECT_EQ(S_OK, WriteCounter(Path(), 42)) << "a new file";
    EXPECT_THAT(sizes, ElementsAre(2));
    FailWrite(1, ERROR_DISK_FULL);
    EXPECT_EQ(kAlreadyExists, WriteCounter(Path(), 42)) << "a file that was there";
    EXPECT_THAT(sizes, ElementsAre(2));
}

TEST_F(CounterFileFaultTest, FileIsReleasedAfterAFailedWrite) {
    FailWrite(1, ERROR_DISK_FULL);
    WriteCounter(Path(), 42);
    EXPECT_TRUE(OpenExclusively(Path()));
}

TEST_F(CounterFileFaultTest, OlderErrorOfTheThreadIsNotTakenForTheStatus) {
    FailWrite(2, ERROR_DISK_FULL);
    SetLastError(ERROR_ACCESS_DENIED);
    EXPECT_EQ(S_OK, WriteCounter(Path(), 42));

    WriteBytes(At(L"empty"), {});
    UINT32 counter = kUntouched;
    SetLastError(ERROR_ACCESS_DENIED);
    EXPECT_EQ(S_OK, ReadCounter(At(L"empty"), counter));
}

TEST_F(CounterFileFaultTest, LastErrorIsClearedRightBeforeTheOpen) {
    // An open may leave it alone when there is nothing to tell.
    std::vector<DWORD> errors;
    Calls().createFile = [&](auto...) -> DWORD {
        errors.push_back(GetLastError());
        return ERROR_SUCCESS;
    };
    UINT32 counter = kUntouched;
    SetLastError(ERROR_ACCESS_DENIED);
    WriteCounter(Path(), 42);
    SetLastError(ERROR_ACCESS_DENIED);
    ReadCounter(Path(), counter);
    EXPECT_GE(errors.size(), 2u);
    EXPECT_THAT(errors, Each(ERROR_SUCCESS));
}

TEST_F(CounterFileFaultTest, ErrorOfTheGrantIsNotTakenForTheStatus) {
    FailWrite(2, ERROR_DISK_FULL);
    Calls().getSecurity = [](auto...) -> DWORD { return ERROR_ACCESS_DENIED; };
    EXPECT_EQ(S_OK, WriteCounter(Path(), 42));
}

TEST_F(CounterFileFaultTest, FileOfUnknownSizeIsReadAsEmpty) {
    WriteBytes(Path(), Utf16FileBytes(L"00000041\t\r\n"));
    int reads = 0;
    Calls().getFileSize = []() -> DWORD { return ERROR_INVALID_FUNCTION; };
    Calls().readFile = [&](DWORD) -> DWORD {
        ++reads;
        return ERROR_SUCCESS;
    };
    UINT32 counter = kUntouched;
    EXPECT_EQ(S_OK, ReadCounter(Path(), counter));
    EXPECT_EQ(kUntouched, counter);
    EXPECT_EQ(0, reads);
}

TEST_F(CounterFileFaultTest, FailedReadGivesNoLine) {
    WriteBytes(Path(), Utf16FileBytes(L"00000041\t\r\n"));
    for (const size_t failing : {1u, 2u}) {
        SCOPED_TRACE(failing);
        std::vector<DWORD> asked;
        Calls().readFile = [&](DWORD size) -> DWORD {
            asked.push_back(size);
            return asked.size() == failing ? ERROR_CRC : ERROR_SUCCESS;
        };
        UINT32 counter = kUntouched;
        EXPECT_EQ(S_OK, ReadCounter(Path(), counter));
        EXPECT_EQ(kUntouched, counter);
        EXPECT_EQ(failing, asked.size());
        EXPECT_TRUE(OpenExclusively(Path()));
    }
}

} // namespace tsl::test
