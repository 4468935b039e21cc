// Base of the tests in which memory runs out inside the real DLL: runs an operation over and over,
// each time with another of its allocations failing, alone or with all that follow.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "component/host/CommandCodes.h"
#include "component/host/Identities.h"
#include "console/ComInitialization.h"
#include "console/PluginLibrary.h"
#include "tests/memory_faults/AllocationFaults.h"
#include "tests/memory_faults/ThreadWatch.h"
#include "tests/support/Containers.h"
#include "tests/support/HostContainers.h"
#include "tests/support/StoreChecks.h"
#include "tests/support/StoreFixture.h"

namespace tsl::test {

// How a run of an operation ended.
struct Outcome {
    HRESULT result = S_OK;
    Extent extent = Extent::One;
    // Which function the first failing allocation was asked of; empty when none failed.
    std::string failed;

    bool NothingFailed() const { return failed.empty(); }
    bool FailedIn(const char* function) const { return failed == function; }
};

// A result that is right after memory ran out, beside E_OUTOFMEMORY and the result of a run that
// did without what failed: only where this function was the first to fail; empty for any.
struct AllowedResult {
    HRESULT result;
    const char* function;
    const char* reason;
};

struct Operation {
    const char* name;
    // What must be there before each run.
    std::function<void()> prepare;
    std::function<HRESULT()> run;
    // What it returns when nothing fails. The check tells whether a run that failed somewhere may
    // return it too.
    HRESULT expected = S_OK;
    std::vector<AllowedResult> allowed;
    // What must hold after each run, beside what always must.
    std::function<void(const Outcome&)> check;
    // About how many of its allocations the short form lets fail, beside the first and the last of
    // each function; the full form takes each.
    int briefRuns = 8;
    // Whether the short form counts the handles too, which takes long.
    bool countHandles = false;
};

class MemoryFaultTest : public StoreTest {
protected:
    MemoryFaultTest() : m_registration(CLSID_TslParamContainer, &m_containers) {}
    // A store of today's form, recording with log kind 1.
    void SetUp() override;
    // Everything was given back, and the module is unloaded.
    void TearDown() override;

    ITslPluginDb2& Plugin() { return *m_plugin; }
    CPluginLibrary& Library() { return *m_library; }
    AllocationFaults& Faults() { return *m_faults; }
    HostContainers& Containers() { return m_containers; }
    void ReleasePlugin() { m_plugin.Reset(); }
    // Another plug-in object, recording with the log kind.
    void RenewPlugin(UINT32 logKind);

    // From now on it is the engine's allocations that fail. The plug-in object must stay.
    void AimAtTheEngine();

    // Calls Request with an answer that holds the number 42 beforehand.
    HRESULT Ask(UINT64 code, IUnknown* parameters);
    CVariant& Answer() { return m_answer; }
    bool AnswerIsUntouched() const { return m_answer.Type() == VT_UI4; }

    // Tells how many allocations were made to fail.
    void FailEachAllocation(const Operation& operation);

private:
    Outcome Run(const Operation& operation, int number, Extent extent);
    std::vector<int> NumbersToFail(const Operation& operation) const;
    void RunAll(const Operation& operation, const std::vector<int>& numbers, bool checked);
    void Check(const Operation& operation, const Outcome& outcome);
    void ExpectNothingIsKept(const Operation& operation, const std::vector<int>& numbers);

    ThreadWatch m_watch;
    CComInitialization m_com;
    HostContainers m_containers;
    ClassRegistration m_registration;
    std::optional<CPluginLibrary> m_library;
    std::optional<AllocationFaults> m_faults;
    CComPtr<ITslPluginDb2> m_plugin;
    CVariant m_answer;
    int m_runs = 0;
    int m_injected = 0;
};

} // namespace tsl::test
