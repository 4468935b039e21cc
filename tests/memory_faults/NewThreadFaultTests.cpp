// Memory runs out on threads that never threw before: the C++ runtime has yet to make what it needs
// of such a thread, and must not end the host's process for want of it.
#include <thread>

#include "tests/memory_faults/MemoryFaultFixture.h"

namespace tsl::test {

class NewThreadFaults : public MemoryFaultTest {
protected:
    HRESULT AskOnNewThread(UINT64 code, IUnknown* parameters) {
        HRESULT result = E_UNEXPECTED;
        std::thread([&] { result = Ask(code, parameters); }).join();
        return result;
    }
};

TEST_F(NewThreadFaults, AreAnsweredAsOnAnyOther) {
    const ContainerBuilder request;
    FailEachAllocation({
        .name = "next record id on a new thread",
        .prepare = {},
        .run = [&] { return AskOnNewThread(kCommandNextRecordId, request); },
        .allowed = {},
        .check =
            [&](const Outcome& outcome) { EXPECT_EQ(FAILED(outcome.result), AnswerIsUntouched()); },
    });
}

} // namespace tsl::test
