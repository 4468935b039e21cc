#include "tests/memory_faults/MemoryFaultFixture.h"

#include <algorithm>
#include <map>
#include <set>
#include <sstream>

#include "files/UserIdList.h"
#include "tests/support/FullForm.h"
#include "tests/support/UsageOverTime.h"

namespace tsl::test {

namespace {

constexpr wchar_t kComponent[] = L"TslIfDbActionLog.dll";
constexpr Extent kExtents[] = {Extent::One, Extent::AllFromThenOn};

std::string Hex(HRESULT result) {
    std::ostringstream text;
    text << "0x" << std::hex << static_cast<unsigned long>(result);
    return text.str();
}

bool IsAllowed(const Operation& operation, const Outcome& outcome) {
    if (outcome.result == operation.expected) return true;
    if (outcome.NothingFailed()) return false;
    if (outcome.result == E_OUTOFMEMORY) return true;
    return std::ranges::any_of(operation.allowed, [&](const AllowedResult& allowed) {
        return outcome.result == allowed.result &&
               (!*allowed.function || outcome.FailedIn(allowed.function));
    });
}

} // namespace

void MemoryFaultTest::SetUp() {
    ASSERT_NO_FATAL_FAILURE(StoreTest::SetUp());
    MakeCounterFile();
    m_library.emplace((ProgramFolder() / kComponent).wstring());
    m_faults.emplace(GetModuleHandleW(kComponent));
    RenewPlugin(1);
}

void MemoryFaultTest::RenewPlugin(UINT32 logKind) {
    m_plugin.Reset();
    m_plugin = m_library->CreatePlugin();
    ASSERT_EQ(S_OK, Plugin().SetRecordingEnabled(logKind));
}

void MemoryFaultTest::TearDown() {
    m_answer = CVariant();
    EXPECT_EQ(0, m_containers.live) << "a reference to a container was not given back";
    m_faults.reset();
    m_plugin.Reset();
    if (m_library) {
        EXPECT_TRUE(m_library->CanUnload()) << "something of the component is still in use";
    }
    m_library.reset();
    EXPECT_EQ(nullptr, GetModuleHandleW(kComponent)) << "the module is still loaded";
    StoreTest::TearDown();
}

void MemoryFaultTest::AimAtTheEngine() {
    m_faults.reset();
    m_faults.emplace(GetModuleHandleW(L"SQLite3.dll"));
}

HRESULT MemoryFaultTest::Ask(UINT64 code, IUnknown* parameters) {
    m_answer = CVariant::FromUi4(42);
    return Plugin().Request(code, parameters, /*unused=*/nullptr, m_answer.Address());
}

Outcome MemoryFaultTest::Run(const Operation& operation, int number, Extent extent) {
    if (operation.prepare) operation.prepare();
    m_containers.Restart();
    Faults().Arm(number, extent);
    Outcome outcome{.result = operation.run(), .extent = extent, .failed = {}};
    Faults().Disarm();
    outcome.failed = Faults().FirstFailed();
    return outcome;
}

void MemoryFaultTest::Check(const Operation& operation, const Outcome& outcome) {
    EXPECT_TRUE(IsAllowed(operation, outcome)) << Hex(outcome.result);
    if (operation.check) operation.check(outcome);
    m_answer = CVariant();
    EXPECT_EQ(0, m_containers.live) << "containers that nobody holds";
    EXPECT_TRUE(MutexIsFree(kSqliteAccessLock));
    EXPECT_TRUE(MutexIsFree(kLogIdLock));
    EXPECT_FALSE(MutexExists(kLoginInfoMutexName)) << "the mutex of the user id list is still open";
}

// REQUIRES: what the operation asks for has been noted.
std::vector<int> MemoryFaultTest::NumbersToFail(const Operation& operation) const {
    const std::vector<const char*>& functions = m_faults->Noted();
    const int asked = static_cast<int>(functions.size());
    const int step = InForm(std::max(1, asked / operation.briefRuns), 1);
    std::set<int> numbers;
    std::map<std::string, int> last;
    for (int number = 1; number <= asked; ++number) {
        const std::string function = functions[static_cast<size_t>(number - 1)];
        const bool isFirst = !last.contains(function);
        last[function] = number;
        if (isFirst || number % step == 0) numbers.insert(number);
    }
    for (const auto& [function, number] : last)
        numbers.insert(number);
    return {numbers.begin(), numbers.end()};
}

// Some runs ask for a little more than others: goes on behind the numbers until nothing fails.
void MemoryFaultTest::RunAll(const Operation& operation, const std::vector<int>& numbers,
                             bool checked) {
    for (const Extent extent : kExtents) {
        bool failed = true;
        int number = 0;
        for (size_t run = 0; failed; ++run) {
            number = run < numbers.size() ? numbers[run] : number + 1;
            const Outcome outcome = Run(operation, number, extent);
            failed = !outcome.NothingFailed();
            m_injected += Faults().Injected();
            ++m_runs;
            SCOPED_TRACE(std::string(operation.name) + ", allocation " + std::to_string(number) +
                         (extent == Extent::One ? " fails in " : " and all after it fail, in ") +
                         outcome.failed);
            if (checked) Check(operation, outcome);
            if (HasFatalFailure()) return;
            m_answer = CVariant();
        }
    }
}

void MemoryFaultTest::ExpectNothingIsKept(const Operation& operation,
                                          const std::vector<int>& numbers) {
    if (numbers.empty()) return; // it allocates nothing
    const auto prepare = [&] {   // also takes away what the last run made
        if (operation.prepare) operation.prepare();
    };
    prepare();
    UsageOverTime usage({.committedBytes = 1}, operation.countHandles || IsFullForm());
    usage.Repeat([&] {
        RunAll(operation, numbers, /*checked=*/false);
        prepare();
    });
    SCOPED_TRACE(operation.name);
    usage.ExpectFlat();
}

void MemoryFaultTest::FailEachAllocation(const Operation& operation) {
    // The first run finds what later ones do not, such as files without access rights.
    for (int run = 0; run < 2; ++run) {
        if (operation.prepare) operation.prepare();
        Faults().ArmNoting();
        const HRESULT result = operation.run();
        Faults().Disarm();
        Check(operation, {.result = result, .extent = Extent::One, .failed = {}});
        if (HasFatalFailure()) return;
    }
    const std::vector<int> numbers = NumbersToFail(operation);

    m_runs = 0;
    m_injected = 0;
    RunAll(operation, numbers, /*checked=*/true);
    if (!HasFatalFailure()) ExpectNothingIsKept(operation, numbers);
    Measured(std::string(operation.name) + ": " + std::to_string(Faults().Noted().size()) +
             " allocations; " + std::to_string(m_injected) + " made to fail in " +
             std::to_string(m_runs) + " runs");
}

} // namespace tsl::test
