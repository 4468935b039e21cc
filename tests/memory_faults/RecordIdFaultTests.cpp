// Memory runs out while a record id is handed out: the counter never goes back.
#include <cwchar>

#include "tests/memory_faults/CounterFile.h"
#include "tests/memory_faults/MemoryFaultFixture.h"

namespace tsl::test {

class RecordIdFaults : public MemoryFaultTest {
protected:
    static constexpr UINT64 kRecordId = 0x0200002200000013;

    UINT32 AnsweredId() {
        CVariant id;
        auto* const container = static_cast<ITslParamContainer*>(Answer().Get().punkVal);
        EXPECT_EQ(S_OK, container->GetValue(kRecordId, id.Address()));
        return id.Get().ulVal;
    }
};

// An id that was counted may be lost with the answer, but none is ever handed out twice.
TEST_F(RecordIdFaults, NeverTakeTheCounterBack) {
    const ContainerBuilder request;
    constexpr UINT32 kBefore = 41;
    FailEachAllocation({
        .name = "next record id",
        .prepare = [] { MakeCounterFile(L"00000041"); },
        .run = [&] { return Ask(kCommandNextRecordId, request); },
        .allowed = {},
        .check =
            [&](const Outcome& outcome) {
                const std::optional<UINT32> counter = StoredCounter();
                ASSERT_TRUE(counter) << "no counter is left in the file";
                if (FAILED(outcome.result)) {
                    EXPECT_TRUE(AnswerIsUntouched());
                    EXPECT_THAT(*counter, testing::AnyOf(kBefore, kBefore + 1));
                } else {
                    ASSERT_EQ(VT_UNKNOWN, Answer().Type());
                    EXPECT_EQ(kBefore + 1, AnsweredId());
                    EXPECT_EQ(kBefore + 1, *counter);
                }
            },
        .briefRuns = 16,
        .countHandles = true,
    });
}

TEST_F(RecordIdFaults, LeaveTheFirstIdToBeHandedOut) {
    const ContainerBuilder request;
    FailEachAllocation({
        .name = "first record id",
        .prepare = [] { std::filesystem::remove(CounterPath()); },
        .run = [&] { return Ask(kCommandNextRecordId, request); },
        .allowed = {},
        .check =
            [&](const Outcome& outcome) {
                if (FAILED(outcome.result)) {
                    EXPECT_TRUE(AnswerIsUntouched());
                } else {
                    ASSERT_EQ(VT_UNKNOWN, Answer().Type());
                    EXPECT_EQ(1u, AnsweredId());
                }
                const bool counted = std::filesystem::exists(CounterPath());
                if (counted || SUCCEEDED(outcome.result)) {
                    EXPECT_EQ(std::optional<UINT32>(1), StoredCounter());
                }
            },
        .briefRuns = 16,
    });
}

} // namespace tsl::test
