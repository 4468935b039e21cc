// What a range of record ids does to the counter, so that records to come have ids of the range.
#include <gmock/gmock.h>

#include "base/Handle.h"
#include "tests/query/QueryFixture.h"
#include "tests/support/LockWaits.h"
#include "tests/support/MutexHolder.h"

namespace tsl::test {

namespace {

using ::testing::ElementsAre;

} // namespace

class IdRangeCounter : public QueryTest {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(QueryTest::SetUp());
        StoreLog({{.id = 5}});
    }
    static void WriteCounterText(std::wstring_view text) {
        WriteBytes(CounterPath(), Utf16FileBytes(text));
    }
    static void ExpectCounterText(std::wstring_view text) {
        EXPECT_EQ(Utf16FileBytes(text), ReadBytes(CounterPath()));
    }
    // What the query itself finds does not matter here.
    void AskFrom(UINT32 first) {
        CVariant answer;
        Ask(kAskForIds, ContainerBuilder().Ui4(kUser, 7).Ui4(kFirst, first), answer.Address());
    }
};

TEST_F(IdRangeCounter, IsRaisedToOneBelowTheFirstId) {
    WriteCounterText(L"00000041\t\r\n");
    ExpectNoAnswer(E_INVALIDARG, kAskForIds, ContainerBuilder().Ui4(kUser, 7).Ui4(kFirst, 1000));
    ExpectCounterText(L"00000999\t\r\n");
    CVariant answer;
    ASSERT_EQ(S_OK, Ask(0x0400000102000000, ContainerBuilder(), answer.Address()));
    auto* const next = static_cast<ITslParamContainer*>(answer.Get().punkVal);
    EXPECT_EQ(1000u, ValueOf(*next, 0x0200002200000013).Get().ulVal) << "ids go on in the range";
}

TEST_F(IdRangeCounter, GoesByTheFirstIdAlone) {
    struct Case {
        const wchar_t* before;
        UINT32 first;
        const wchar_t* after;
    };
    const Case cases[] = {
        {L"00000041\t\r\n", 42, L"00000041\t\r\n"},
        {L"00000041\t\r\n", 41, L"00000041\t\r\n"},
        {L"00000041\t\r\n", 40, L"00000041\t\r\n"},
        {L"00000041\t\r\n", 43, L"00000042\t\r\n"},
        {L"00000041\t\r\n", 0, L"00000041\t\r\n"},
        {L"4294967295\t\r\n", 4294967295, L"4294967295\t\r\n"},
        {L"4294967294\t\r\n", 4294967295, L"4294967294\t\r\n"},
        {L"00000001\t\r\n", 4294967295, L"4294967294\t\r\n"},
        {L"abc\r\n", 2, L"00000001\t\r\n"},
        {L"00000100\t\r\n00000003\t\r\n", 10, L"00000009\t\r\n"},
    };
    for (const Case& one : cases) {
        SCOPED_TRACE(one.first);
        WriteCounterText(one.before);
        AskFrom(one.first);
        ExpectCounterText(one.after);
    }
}

TEST_F(IdRangeCounter, IsNeverLowered) {
    for (const UINT32 first : {0u, 1u, 5u, 499u, 500u}) {
        WriteCounterText(L"00000500\t\r\n");
        AskFrom(first);
        ExpectCounterText(L"00000500\t\r\n");
    }
}

TEST_F(IdRangeCounter, StaysWhenOnlyALastIdIsGiven) {
    WriteCounterText(L"00000002\t\r\n");
    ExpectIds({5}, kAskForIds, ContainerBuilder().Ui4(kUser, 7).Ui4(kLast, 900));
    ExpectCounterText(L"00000002\t\r\n");
}

TEST_F(IdRangeCounter, IsNotMadeWhenItIsMissing) {
    ExpectIds({5}, kAskForIds, ContainerBuilder().Ui4(kUser, 7).Ui4(kFirst, 5));
    EXPECT_FALSE(std::filesystem::exists(CounterPath()));
}

TEST_F(IdRangeCounter, OfAFileWithoutLineCountsAsOne) {
    WriteCounterText(L"");
    AskFrom(1);
    ExpectCounterText(L"");
    AskFrom(3);
    ExpectCounterText(L"00000002\t\r\n");
}

TEST_F(IdRangeCounter, IsRaisedAlsoWhenTheLastIdCannotBeRead) {
    WriteCounterText(L"00000002\t\r\n");
    ScriptedContainer request(ContainerBuilder().Ui4(kUser, 7).Ui4(kFirst, 10).Get());
    request.getResults[kLast] = E_ACCESSDENIED;
    ExpectNoAnswer(E_ACCESSDENIED, kAskForIds, &request);
    ExpectCounterText(L"00000009\t\r\n");
}

TEST_F(IdRangeCounter, StaysWhenNoUserIsGiven) {
    WriteCounterText(L"00000002\t\r\n");
    ExpectNoAnswer(S_OK, kAskForIds, ContainerBuilder().Ui4(kFirst, 10));
    ExpectCounterText(L"00000002\t\r\n");
}

TEST_F(IdRangeCounter, ThatAnotherProgramHasOpenIsLeftAndTheQueryAnswers) {
    WriteCounterText(L"00000002\t\r\n");
    {
        const CHandle owner(CreateFileW(CounterPath().c_str(), GENERIC_READ, /*share=*/0, nullptr,
                                        OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
        ASSERT_TRUE(owner);
        ExpectIds({5}, kAskForIds, ContainerBuilder().Ui4(kUser, 7).Ui4(kFirst, 5));
    }
    ExpectCounterText(L"00000002\t\r\n");
}

// The counter is read and raised under one hold of the lock.
TEST_F(IdRangeCounter, IsRaisedWithoutTheLockAfterOneWaitOfTenSeconds) {
    WriteCounterText(L"00000002\t\r\n");
    const LockWaits waits(HeldLocks::AreGivenUpAtOnce, kComponentLibrary);
    {
        const MutexHolder holder(kLogIdLock);
        ExpectIds({5}, kAskForIds, ContainerBuilder().Ui4(kUser, 7).Ui4(kFirst, 5));
    }
    EXPECT_THAT(waits.TimeOuts(kLogIdLock), ElementsAre(10000));
    ExpectCounterText(L"00000004\t\r\n");
}

} // namespace tsl::test
