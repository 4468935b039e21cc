// Thousands of actions, and a thousand objects, leave no handle and no memory behind.
#include "base/Handle.h"
#include "base/LocalMemory.h"
#include "component/host/CommandCodes.h"
#include "tests/support/FullForm.h"
#include "tests/support/PluginFixture.h"
#include "tests/support/ProcessMeasures.h"
#include "tests/support/StoreChecks.h"

namespace tsl::test {

namespace {

constexpr int kWarmUp = 500;
const int kCalls = InForm(2'000, 10'000);
// The same few rows are replaced over and over, so that the work does not grow.
constexpr int kRecords = 50;
constexpr int kCallsPerId = 10;

// Memory: a leak of eight bytes in each call would be seen on the heap; what the heaps themselves
// commit varies more.
constexpr size_t kToleratedHeapBytes = 64 * 1024;
constexpr size_t kToleratedCommittedBytes = 2 * 1024 * 1024;

struct Usage {
    int handles = CountHandles();
    size_t heapBytes = AllocatedHeapBytes();
    size_t committedBytes = CommittedPrivateBytes();
};

void ExpectFlat(const Usage& before) {
    const Usage after;
    EXPECT_EQ(before.handles, after.handles);
    EXPECT_LT(after.heapBytes, before.heapBytes + kToleratedHeapBytes);
    EXPECT_LT(after.committedBytes, before.committedBytes + kToleratedCommittedBytes);
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
    const Usage before;
    const CHandle event(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    EXPECT_EQ(before.handles + 1, CountHandles());

    // What C++ allocates lies outside the heaps in the checked build, in pages that are committed.
    const LocalMemory<void> block(LocalAlloc(LMEM_FIXED, kToleratedHeapBytes));
    EXPECT_GE(AllocatedHeapBytes(), before.heapBytes + kToleratedHeapBytes);
    const std::vector<char> large(2 * kToleratedCommittedBytes, 'x');
    EXPECT_GE(CommittedPrivateBytes(), before.committedBytes + large.size());
}

TEST_F(HandleCount, StaysFlatOverThousandsOfActions) {
    ASSERT_NO_FATAL_FAILURE(Record(kWarmUp));
    const Usage before;
    ASSERT_NO_FATAL_FAILURE(Record(kCalls));
    ExpectFlat(before);
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
    const Usage before;
    fail(1000);
    ExpectFlat(before);
}

TEST_F(HandleCount, StaysFlatOverAThousandObjects) {
    CreateObjects(50);
    const Usage before;
    CreateObjects(1000);
    ExpectFlat(before);
}

} // namespace tsl::test
