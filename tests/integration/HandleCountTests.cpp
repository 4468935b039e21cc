// Thousands of actions, and a thousand objects, leave no handle and no memory behind.
#include "base/Handle.h"
#include "base/LocalMemory.h"
#include "component/host/CommandCodes.h"
#include "tests/support/FullForm.h"
#include "tests/support/PluginFixture.h"
#include "tests/support/StoreChecks.h"
#include "tests/support/UsageOverTime.h"

namespace tsl::test {

namespace {

constexpr int kWarmUp = 500;
const int kCalls = InForm(1'000, 10'000);
// The same few rows are replaced over and over, so that the work does not grow.
constexpr int kRecords = 50;
constexpr int kCallsPerId = 10;

// A block lost in every tenth call would be seen, and every handle.
void ExpectFlat(int calls, const std::function<void()>& round) {
    UsageOverTime usage(SmallestLeak::OfBlocks(static_cast<size_t>(calls / kCallsPerId)));
    usage.Repeat(round);
    Measured("rounds of " + std::to_string(calls) + ": " + usage.ExpectFlat());
}

} // namespace

class HandleCount : public PluginTest {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(PluginTest::SetUp());
        ASSERT_EQ(S_OK, Plugin().SetRecordingEnabled(1));
    }
    void Record(int calls) {
        for (int call = 0; call < calls; ++call) {
            ContainerBuilder action = Action(1 + static_cast<UINT32>(call % kRecords), L"playItem");
            action.Texts(kKeyStringValues, {L"some text", L"and more"});
            ASSERT_EQ(S_OK, Plugin().Notify(kCommandRecordAction, action));
            if (call % kCallsPerId == 0) {
                ASSERT_NE(0u, NextId());
            }
        }
    }
    void CreateObjects(int objects) {
        for (int object = 0; object < objects; ++object)
            EXPECT_EQ(S_OK, Library().CreatePlugin()->Reserved1());
    }
};

TEST_F(HandleCount, SeesOneHandleAndWhatIsAllocated) {
    const int handles = CountHandles();
    const CHandle event(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    EXPECT_EQ(handles + 1, CountHandles());

    // What C++ allocates lies outside the heaps in the checked build, in pages that are committed.
    constexpr size_t kBlock = 64 * 1024;
    const MemoryUsage before = MemoryUsage::Now();
    const LocalMemory<void> block(LocalAlloc(LMEM_FIXED, kBlock));
    EXPECT_GE(MemoryUsage::Now().heapBytes, before.heapBytes + kBlock);
    const std::vector<char> large(4 * 1024 * 1024, 'x');
    EXPECT_GE(MemoryUsage::Now().committedBytes, before.committedBytes + large.size());
}

TEST_F(HandleCount, StaysFlatOverThousandsOfActions) {
    ASSERT_NO_FATAL_FAILURE(Record(kWarmUp));
    ExpectFlat(kCalls, [&] { Record(kCalls); });
    EXPECT_EQ(kRecords, CountRows(ReplayPath(), kReplayRows));
}

TEST_F(HandleCount, StaysFlatOverAThousandActionsThatFail) {
    ContainerBuilder action = Action(1, L"playItem");
    action.Text(kKeyIntValues, L"no numbers");
    const auto fail = [&](int calls) {
        for (int call = 0; call < calls; ++call)
            EXPECT_EQ(E_INVALIDARG, Plugin().Notify(kCommandRecordAction, action));
    };
    fail(kWarmUp);
    ExpectFlat(1000, [&] { fail(1000); });
}

TEST_F(HandleCount, StaysFlatOverAThousandObjects) {
    CreateObjects(50);
    ExpectFlat(1000, [&] { CreateObjects(1000); });
}

} // namespace tsl::test
