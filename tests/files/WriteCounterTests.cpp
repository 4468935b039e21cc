// Writing the counter file: its bytes, and the status for each way in which opening can fail.
#include "files/TextActionLog.h"

#include "tests/files/ScratchFolder.h"
#include "tests/support/Failures.h"

namespace tsl::test {

class WriteCounterTest : public ScratchTest {
protected:
    std::wstring Path() const { return At(kCounterFileName); }
};

TEST_F(WriteCounterTest, FortyTwoGivesTheseTwentyFourBytes) {
    ASSERT_EQ(S_OK, WriteCounter(Path(), 42));
    const Bytes expected = {0xFF, 0xFE, '0', 0, '0', 0, '0', 0, '0',  0, '0',  0,
                            '0',  0,    '4', 0, '2', 0, 9,   0, 0x0D, 0, 0x0A, 0};
    ASSERT_EQ(24u, expected.size());
    EXPECT_EQ(expected, ReadBytes(Path()));
}

TEST_F(WriteCounterTest, NumberIsPaddedToEightDigits) {
    struct Case {
        UINT32 counter;
        const wchar_t* line;
    };
    for (const Case& c :
         {Case{0, L"00000000\t\r\n"}, Case{1, L"00000001\t\r\n"}, Case{9999999, L"09999999\t\r\n"},
          Case{12345678, L"12345678\t\r\n"}, Case{99999999, L"99999999\t\r\n"},
          Case{100000000, L"100000000\t\r\n"}, Case{123456789, L"123456789\t\r\n"},
          Case{0x80000000, L"2147483648\t\r\n"}, Case{0xFFFFFFFF, L"4294967295\t\r\n"}}) {
        SCOPED_TRACE(c.counter);
        EXPECT_EQ(S_OK, WriteCounter(Path(), c.counter));
        EXPECT_EQ(Utf16FileBytes(c.line), ReadBytes(Path()));
        UINT32 read = 1;
        EXPECT_EQ(S_OK, ReadCounter(Path(), read));
        EXPECT_EQ(c.counter, read);
    }
}

TEST_F(WriteCounterTest, LongerFileIsCutToTheNewLine) {
    WriteBytes(Path(), Bytes(100'000, 'x'));
    EXPECT_EQ(S_OK, WriteCounter(Path(), 7));
    EXPECT_EQ(Utf16FileBytes(L"00000007\t\r\n"), ReadBytes(Path()));
}

TEST_F(WriteCounterTest, FileIsOpenedToEveryone) {
    WriteBytes(At(L"other"), {});
    ASSERT_FALSE(NamesEveryone(At(L"other"))) << "these tests need a server with umask 077";
    ASSERT_EQ(S_OK, WriteCounter(Path(), 1));
    EXPECT_TRUE(NamesEveryone(Path()));
}

TEST_F(WriteCounterTest, RightsThatCannotBeGivenDoNotMatter) {
    Calls().getSecurity = [](auto...) -> DWORD { return ERROR_ACCESS_DENIED; };
    EXPECT_EQ(S_OK, WriteCounter(Path(), 42));
    EXPECT_EQ(Utf16FileBytes(L"00000042\t\r\n"), ReadBytes(Path()));
}

TEST_F(WriteCounterTest, FileIsReleasedAfterwards) {
    ASSERT_EQ(S_OK, WriteCounter(Path(), 1));
    EXPECT_TRUE(OpenExclusively(Path()));
}

TEST_F(WriteCounterTest, NobodyElseOpensTheFileMeanwhile) {
    int refused = 0;
    Calls().writeFile = [&](DWORD) -> DWORD {
        const CHandle other(CreateFileW(Path().c_str(), GENERIC_READ,
                                        FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                        nullptr, OPEN_EXISTING, 0, nullptr));
        if (!other && GetLastError() == ERROR_SHARING_VIOLATION) ++refused;
        return ERROR_SUCCESS;
    };
    EXPECT_EQ(S_OK, WriteCounter(Path(), 1));
    EXPECT_EQ(Utf16FileBytes(L"00000001\t\r\n"), ReadBytes(Path()));
    EXPECT_EQ(2, refused) << "once for the mark, once for the line";
}

TEST_F(WriteCounterTest, LockedFileIsASharingViolationAndStaysAsItIs) {
    WriteBytes(Path(), {1, 2, 3});
    {
        const CHandle open = OpenExclusively(Path());
        EXPECT_EQ(kSharingViolation, WriteCounter(Path(), 42));
    }
    EXPECT_EQ((Bytes{1, 2, 3}), ReadBytes(Path()));
}

TEST_F(WriteCounterTest, DirectoryInItsPlaceIsRefused) {
    std::filesystem::create_directory(Path());
    EXPECT_EQ(kAccessDenied, WriteCounter(Path(), 42));
    EXPECT_TRUE(std::filesystem::is_directory(Path()));
}

TEST_F(WriteCounterTest, ReadOnlyFileIsRefusedAndStaysAsItIs) {
    WriteBytes(Path(), {1, 2, 3});
    ASSERT_TRUE(SetFileAttributesW(Path().c_str(), FILE_ATTRIBUTE_READONLY));
    const bool refused = !CHandle(CreateFileW(Path().c_str(), GENERIC_WRITE, 0, nullptr,
                                              OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!refused) GTEST_SKIP() << "the emulator runs as a superuser, who may write to every file";
    EXPECT_EQ(kAccessDenied, WriteCounter(Path(), 42));
    EXPECT_EQ((Bytes{1, 2, 3}), ReadBytes(Path()));
}

TEST_F(WriteCounterTest, MissingFolderIsNotMade) {
    EXPECT_EQ(kPathNotFound, WriteCounter(At(L"none\\actionLog.txt"), 42));
    EXPECT_FALSE(std::filesystem::exists(At(L"none")));
}

TEST_F(WriteCounterTest, UnusablePathIsAFailedOpen) {
    for (const std::wstring& path : {std::wstring(), At(L"a*b"), At(std::wstring(300, L'x'))}) {
        SCOPED_TRACE(path);
        const HRESULT result = WriteCounter(path, 42);
        EXPECT_EQ(static_cast<HRESULT>(0x80070000), result & static_cast<HRESULT>(0xFFFF0000));
        EXPECT_NE(0, result & 0xFFFF);
    }
}

} // namespace tsl::test
