// The mutex around the user id list: waited for, given back, closed.
#include <gmock/gmock.h>

#include <algorithm>
#include <memory>
#include <thread>

#include "tests/support/LockWaits.h"
#include "tests/support/MutexHolder.h"
#include "tests/support/ProcessMeasures.h"
#include "tests/user_ids/UserIdListFixture.h"

namespace tsl::test {

namespace fs = std::filesystem;

using ::testing::ElementsAre;

class UserIdListLock : public UserIdListTest {};

TEST_F(UserIdListLock, ThatAnotherProcessHoldsIsWaitedForHoweverLong) {
    auto other = std::make_unique<MutexHolder>(kLoginLock);
    const LockWaits waits(HeldLocks::AreWaitedFor);
    bool touchedMeanwhile = false;
    std::jthread release([&] {
        EXPECT_TRUE(waits.SeesWaitFor(kLoginLock));
        touchedMeanwhile = fs::exists(UserIdListPath());
        other.reset();
    });
    EXPECT_EQ(1u, LookUp(L"S-1").id);
    release.join();
    EXPECT_THAT(waits.TimeOuts(kLoginLock), ElementsAre(INFINITE));
    EXPECT_FALSE(touchedMeanwhile);
}

TEST_F(UserIdListLock, IsWaitedForByAnyWayToTheCurrentUser) {
    auto other = std::make_unique<MutexHolder>(kLoginLock);
    const LockWaits waits(HeldLocks::AreWaitedFor);
    std::jthread release([&] {
        EXPECT_TRUE(waits.SeesWaitFor(kLoginLock));
        other.reset();
    });
    UINT64 id = 0;
    EXPECT_EQ(S_FALSE, CurrentUserId(id));
    release.join();
    EXPECT_THAT(waits.TimeOuts(kLoginLock), ElementsAre(INFINITE));
    EXPECT_EQ(1u, id);
}

TEST_F(UserIdListLock, IsFreeAndClosedAfterEachOutcome) {
    const auto expectReleased = [] {
        const CHandle mutex(CreateMutexW(nullptr, /*initialOwner=*/FALSE, kLoginLock));
        EXPECT_NE(static_cast<DWORD>(ERROR_ALREADY_EXISTS), GetLastError());
        EXPECT_TRUE(mutex);
    };
    LookUp(L"S-1");
    expectReleased();
    LookUp(L"S-1");
    expectReleased();
    fs::remove_all(UserIdListFolder());
    WriteBytes(UserIdListFolder(), {'x'});
    LookUp(L"S-1");
    expectReleased();
}

TEST_F(UserIdListLock, IsGivenBackWhereOthersKeepItOpen) {
    const CHandle mutex(CreateMutexW(nullptr, /*initialOwner=*/FALSE, kLoginLock));
    ASSERT_TRUE(mutex);
    LookUp(L"S-1");
    EXPECT_TRUE(MutexIsFree(kLoginLock));
    LookUp(L"S-1");
    EXPECT_TRUE(MutexIsFree(kLoginLock));
}

TEST_F(UserIdListLock, ThatWasAbandonedIsNotGivenBack) {
    const CHandle mutex(CreateMutexW(nullptr, /*initialOwner=*/FALSE, kLoginLock));
    ASSERT_TRUE(mutex);
    MutexHolder other(kLoginLock);
    other.Kill();
    std::thread([] {
        EXPECT_EQ(1u, LookUp(L"S-1").id);
        EXPECT_FALSE(MutexIsFree(kLoginLock)) << "it stays with this thread";
    }).join();
    EXPECT_EQ(Utf16FileBytes(L"0x00000001\tS-1\t\r\n"), ReadBytes(UserIdListPath()));
}

TEST_F(UserIdListLock, ThatCannotBeMadeDoesNotStopTheLookUp) {
    const CHandle event(CreateEventW(nullptr, TRUE, FALSE, kLoginLock));
    ASSERT_TRUE(event) << "an event of that name keeps a mutex from being made";
    ASSERT_FALSE(CHandle(CreateMutexW(nullptr, FALSE, kLoginLock)));
    EXPECT_EQ(1u, LookUp(L"S-1").id);
    EXPECT_EQ(2u, LookUp(L"S-2").id);
    EXPECT_TRUE(LookUp(L"S-1").found);
}

TEST_F(UserIdListLock, GivesThreadsThatAskAtOnceDifferentIds) {
    constexpr int kThreads = 8;
    std::vector<UINT64> ids(kThreads);
    {
        std::vector<std::jthread> threads;
        for (int index = 0; index < kThreads; ++index) {
            threads.emplace_back([&, index] {
                ids[static_cast<size_t>(index)] = LookUp(L"S-" + std::to_wstring(index)).id;
            });
        }
    }
    std::wstring expected;
    for (UINT64 id = 1; id <= kThreads; ++id) {
        const auto owner = std::ranges::find(ids, id) - ids.begin();
        ASSERT_LT(owner, kThreads) << "nobody got id " << id;
        expected +=
            L"0x0000000" + std::to_wstring(id) + L"\tS-" + std::to_wstring(owner) + L"\t\r\n";
    }
    EXPECT_EQ(Utf16FileBytes(expected), ReadBytes(UserIdListPath()));
}

TEST_F(UserIdListLock, LeavesNoHandleBehind) {
    UINT64 id = 0;
    CurrentUserId(id);
    const int before = CountHandles();
    for (int call = 0; call < 20; ++call) {
        CurrentUserId(id);
        LookUp(L"S-" + std::to_wstring(call));
    }
    EXPECT_EQ(before, CountHandles());
}

} // namespace tsl::test
