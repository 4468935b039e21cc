// Objects and threads that convert one store at the same time: it is converted once, and nobody
// sets the log kinds again.
#include <algorithm>
#include <latch>
#include <thread>

#include "store/Maintenance.h"
#include "tests/maintenance/OldStore.h"
#include "tests/support/LockWaits.h"

namespace tsl::test {

class ConcurrentConversion : public OldStoreTest {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(OldStoreTest::SetUp());
        MakeOldStore("complete.sql");
        before = ReadActionLog();
    }

    // Converts while another object waits for the lock; what is done before the lock is given back
    // is done by change. Yields the other's answer.
    template <class Change>
    static HRESULT ConvertBeforeTheOther(Change change) {
        const LockWaits waits(HeldLocks::AreWaitedFor);
        const CNamedMutex mutex(kSqliteAccessMutexName);
        CMutexGuard lock(mutex, /*timeoutMilliseconds=*/0); // not seen as a wait
        EXPECT_TRUE(lock.IsHeld());
        HRESULT other = E_UNEXPECTED;
        std::jthread waiting([&other] { other = Maintain(); });
        EXPECT_TRUE(waits.SeesWaitFor(kSqliteAccessMutexName));
        change();
        lock.Release();
        waiting.join();
        return other;
    }

    StoreImage before;
};

TEST_F(ConcurrentConversion, IsNotRepeatedByWhoWaitedForTheLock) {
    Bytes database;
    EXPECT_EQ(E_FAIL, ConvertBeforeTheOther([&] {
                  EXPECT_EQ(S_OK, Maintain());
                  ChangeActionLog("UPDATE TslIf_DbActionLog SET LogKind = 2 WHERE UserId = 3");
                  database = ReadBytes(ActionLogPath());
              }));
    EXPECT_EQ(database, ReadBytes(ActionLogPath()));
    EXPECT_EQ(CounterBytes(L"00000042"), ReadBytes(CounterPath()));
}

TEST_F(ConcurrentConversion, IsNotRepeatedOnceTheFirstIdWasHandedOut) {
    Bytes database;
    EXPECT_EQ(E_FAIL, ConvertBeforeTheOther([&] {
                  ASSERT_EQ(S_OK, Plugin().SetRecordingEnabled(32));
                  EXPECT_EQ(43u, NextId());
                  EXPECT_EQ(S_OK, Plugin().Notify(kCommandRecordAction, Action(43, L"playItem")));
                  database = ReadBytes(ActionLogPath());
              }));
    EXPECT_EQ(database, ReadBytes(ActionLogPath()));
    EXPECT_EQ(CounterBytes(L"00000043"), ReadBytes(CounterPath()));
}

TEST_F(ConcurrentConversion, IsDoneByWhoWaitedWhenTheFirstFailed) {
    EXPECT_EQ(S_OK, ConvertBeforeTheOther([] {
                  std::filesystem::create_directory(CounterPath());
                  EXPECT_TRUE(FAILED(Maintain()));
                  std::filesystem::remove(CounterPath());
              }));
    ExpectCompleteStoreIsConverted(before);
}

TEST_F(ConcurrentConversion, OfManyObjectsIsOne) {
    constexpr int kObjects = 8;
    const UINT32 changes = ChangesOfActionLog();
    std::vector<HRESULT> answers(kObjects);
    {
        std::latch start(kObjects);
        std::vector<std::jthread> threads;
        for (HRESULT& answer : answers) {
            threads.emplace_back([&start, &answer] {
                const CActionLogStore store(GetModuleHandleW(nullptr));
                start.arrive_and_wait();
                answer = MaintainStore(store);
            });
        }
    }
    EXPECT_EQ(1, std::ranges::count(answers, S_OK));
    EXPECT_EQ(kObjects - 1, std::ranges::count(answers, E_FAIL));
    EXPECT_EQ(changes + kChangesOfAConversion, ChangesOfActionLog());
    ExpectCompleteStoreIsConverted(before);
}

// Someone may ask for an id before the store is converted; ids never go back.
TEST_F(ConcurrentConversion, DoesNotLowerACounterThatWasMadeMeanwhile) {
    const struct {
        const wchar_t* made;
        const wchar_t* left;
    } cases[] = {{L"00000001", L"00000042"}, {L"00000100", L"00000100"}};
    for (const auto& each : cases) {
        SCOPED_TRACE(each.made);
        std::filesystem::remove(ActionLogPath());
        std::filesystem::remove(CounterPath());
        MakeOldStore("complete.sql");
        const LockWaits waits(HeldLocks::AreWaitedFor);
        const CNamedMutex mutex(kLogIdMutexName);
        CMutexGuard ids(mutex, /*timeoutMilliseconds=*/0);
        ASSERT_TRUE(ids.IsHeld());
        HRESULT answer = E_UNEXPECTED;
        std::jthread maintenance([&answer] { answer = Maintain(); });
        EXPECT_TRUE(waits.SeesWaitFor(kLogIdMutexName));
        WriteBytes(CounterPath(), CounterBytes(each.made));
        ids.Release();
        maintenance.join();
        EXPECT_EQ(S_OK, answer);
        EXPECT_EQ(Converted(before), ReadActionLog());
        EXPECT_EQ(CounterBytes(each.left), ReadBytes(CounterPath()));
    }
}

} // namespace tsl::test
