// Handing out the next counter, and raising it: in one piece, whoever else comes along.
#include <gmock/gmock.h>

#include "files/TextActionLog.h"
#include "tests/files/ScratchFolder.h"
#include "tests/support/Failures.h"

namespace tsl::test {

class AdvanceCounterTest : public ScratchTest {
protected:
    std::wstring Path() const { return At(kCounterFileName); }

    UINT32 Advanced() {
        UINT32 counter = 77;
        EXPECT_EQ(S_OK, AdvanceCounter(Path(), counter));
        return counter;
    }
};

TEST_F(AdvanceCounterTest, MissingFileIsMadeWithOne) {
    EXPECT_EQ(1u, Advanced());
    EXPECT_EQ(Utf16FileBytes(L"00000001\t\r\n"), ReadBytes(Path()));
    EXPECT_EQ(2u, Advanced());
}

TEST_F(AdvanceCounterTest, FileWithoutALineGivesTwo) {
    for (const Bytes& content : {Bytes{}, Utf16FileBytes(L"")}) {
        WriteBytes(Path(), content);
        EXPECT_EQ(2u, Advanced());
    }
}

TEST_F(AdvanceCounterTest, NumberOfTheLastLineIsRaised) {
    WriteBytes(Path(), Utf16FileBytes(L"7\r\n  4294967294 \t\r\n"));
    EXPECT_EQ(0xFFFFFFFFu, Advanced());
    EXPECT_EQ(Utf16FileBytes(L"4294967295\t\r\n"), ReadBytes(Path()));
    EXPECT_EQ(0u, Advanced()) << "it has 32 bits";
    EXPECT_EQ(Utf16FileBytes(L"00000000\t\r\n"), ReadBytes(Path())) << "the rest is cut off";
}

TEST_F(AdvanceCounterTest, NobodyElseGetsInBetween) {
    WriteBytes(Path(), Utf16FileBytes(L"00000041\t\r\n"));
    std::vector<HRESULT> others;
    const auto tryToo = [&](DWORD) -> DWORD {
        UINT32 counter = 77;
        others.push_back(AdvanceCounter(Path(), counter));
        return ERROR_SUCCESS;
    };
    Calls().readFile = tryToo;
    Calls().writeFile = tryToo;
    EXPECT_EQ(42u, Advanced());
    EXPECT_THAT(others, ::testing::ElementsAre(kSharingViolation, kSharingViolation,
                                               kSharingViolation, kSharingViolation));
}

// Whoever makes the file between the look for it and the open has handed out 1 already.
TEST_F(AdvanceCounterTest, FileMadeByAnotherInTheLastMomentIsRead) {
    Calls().createFile = [&](auto...) -> DWORD {
        WriteBytes(Path(), Utf16FileBytes(L"00000001\t\r\n"));
        return ERROR_SUCCESS;
    };
    EXPECT_EQ(2u, Advanced());
}

TEST_F(AdvanceCounterTest, CounterIsRaisedButNeverLowered) {
    WriteBytes(Path(), Utf16FileBytes(L"00000041\t\r\n"));
    RaiseCounter(Path(), 40);
    EXPECT_EQ(42u, Advanced());
    RaiseCounter(Path(), 99);
    EXPECT_EQ(Utf16FileBytes(L"00000099\t\r\n"), ReadBytes(Path()));
}

TEST_F(AdvanceCounterTest, CounterThatCannotBeReadIsNotRaised) {
    const Bytes stored = Utf16FileBytes(L"00005000\t\r\n");
    WriteBytes(Path(), stored);
    Calls().readFile = [](DWORD) -> DWORD { return ERROR_CRC; };
    RaiseCounter(Path(), 1);
    RaiseCounter(Path(), 9000);
    Calls() = SystemCalls();
    EXPECT_EQ(stored, ReadBytes(Path()));
}

TEST_F(AdvanceCounterTest, RaisingMakesNoFile) {
    RaiseCounter(Path(), 99);
    UINT32 counter = 77;
    EXPECT_EQ(E_INVALIDARG, ReadCounter(Path(), counter));
}

TEST_F(AdvanceCounterTest, FailedOpenHandsOutNothing) {
    UINT32 counter = 77;
    EXPECT_EQ(kPathNotFound, AdvanceCounter(At(L"none\\actionLog.txt"), counter));
    EXPECT_EQ(77u, counter);
}

} // namespace tsl::test
