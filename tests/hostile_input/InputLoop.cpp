#include "tests/hostile_input/InputLoop.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>

#include "tests/support/FullForm.h"
#include "tests/support/UsageOverTime.h"

namespace tsl::test {

namespace {

constexpr UINT64 kDefaultSeed = 20240607;

// Whoever hangs is told by the time limit of the test; this tells who is merely far too slow.
constexpr ULONGLONG kLongestInputMilliseconds = 60'000;

// Over all inputs. The allocator's stock of blocks may grow with each input that is larger than
// those before it.
constexpr size_t kToleratedHeapBytes = 512 * 1024;
constexpr size_t kToleratedCommittedBytes = 16 * 1024 * 1024;

struct {
    const char* name = nullptr;
    size_t input = 0;
} g_current;

void PrintCurrentInput(const char* what) {
    if (!g_current.name) return;
    std::fprintf(stderr, "%s at input %zu of %s: TSL_TEST_SEED=%llu TSL_TEST_INPUT=%zu\n", what,
                 g_current.input, g_current.name, TestSeed(), g_current.input);
    std::fflush(stderr);
}

LONG WINAPI OnFault(EXCEPTION_POINTERS* fault) {
    char what[64];
    std::snprintf(what, sizeof what, "fault 0x%08lx at %p", fault->ExceptionRecord->ExceptionCode,
                  fault->ExceptionRecord->ExceptionAddress);
    PrintCurrentInput(what);
    return EXCEPTION_CONTINUE_SEARCH;
}

void OnAbort(int) {
    PrintCurrentInput("the program was aborted");
}

class FailurePrinter final : public ::testing::EmptyTestEventListener {
public:
    void OnTestPartResult(const ::testing::TestPartResult& result) override {
        if (result.failed()) PrintCurrentInput("failed");
    }
};

void WatchFailures() {
    static const bool once = [] {
        SetUnhandledExceptionFilter(OnFault);
        std::signal(SIGABRT, OnAbort);
        ::testing::UnitTest::GetInstance()->listeners().Append(new FailurePrinter);
        return true;
    }();
    static_cast<void>(once);
}

// Lets go of freed texts at once, as far as the system can be told to: it keeps them for a while,
// which looks like a leak.
void SwitchTextCacheOff() {
    const auto set = GetProcAddress(GetModuleHandleW(L"oleaut32.dll"), "SetOaNoCache");
    if (set) reinterpret_cast<void(WINAPI*)()>(reinterpret_cast<void*>(set))();
}

// A number of its own for every input, spread over all bits.
UINT64 InputSeed(size_t input) {
    UINT64 mixed = TestSeed() + (input + 1) * 0x9E3779B97F4A7C15;
    mixed = (mixed ^ (mixed >> 31)) * 0xBF58476D1CE4E5B9;
    return mixed ^ (mixed >> 29);
}

} // namespace

UINT64 TestSeed() {
    static const char* const chosen = std::getenv("TSL_TEST_SEED");
    static const UINT64 seed = chosen ? std::strtoull(chosen, nullptr, 10) : kDefaultSeed;
    return seed;
}

void TryInputs(const std::string& name, size_t count,
               const std::function<void(Chance& chance, size_t input)>& tryInput) {
    WatchFailures();
    SwitchTextCacheOff();
    ULONGLONG slowest = 0;
    size_t tried = 0;
    const auto tryThese = [&](size_t first, size_t end) {
        for (size_t input = first; input < end && !::testing::Test::HasFailure(); ++input) {
            g_current = {name.c_str(), input};
            const ULONGLONG start = GetTickCount64();
            Chance chance(InputSeed(input));
            try {
                tryInput(chance, input);
            } catch (const std::exception& error) {
                ADD_FAILURE() << error.what();
            }
            slowest = std::max(slowest, GetTickCount64() - start);
            ++tried;
        }
        g_current = {};
    };

    if (const char* const chosen = std::getenv("TSL_TEST_INPUT")) {
        const size_t input = std::strtoull(chosen, nullptr, 10);
        return tryThese(input, input + 1);
    }
    const ULONGLONG start = GetTickCount64();
    constexpr size_t kParts = 10;
    tryThese(0, count / kParts);
    const MemoryUsage before = MemoryUsage::Now();
    tryThese(count / kParts, count);
    const MemoryUsage after = MemoryUsage::Now();
    EXPECT_LT(after.heapBytes, before.heapBytes + kToleratedHeapBytes);
    EXPECT_LT(after.committedBytes, before.committedBytes + kToleratedCommittedBytes);
    // What the first inputs lose, they lose each time. A handle or two are made once, when two
    // threads first meet.
    UsageOverTime usage({.handles = 3});
    usage.Repeat([&] { tryThese(0, count / kParts); });
    const ULONGLONG milliseconds = GetTickCount64() - start;
    const std::string inUse = before.Text() + " after a tenth; " + usage.ExpectFlat();
    EXPECT_LT(slowest, kLongestInputMilliseconds);
    if (::testing::Test::HasFailure()) return;
    char figures[400];
    std::snprintf(figures, sizeof figures,
                  "hostile_input %s: %zu inputs tried, 0 crashes, %.1f s (slowest input %llu ms), "
                  "%s, seed %llu",
                  name.c_str(), tried, static_cast<double>(milliseconds) / 1000.0, slowest,
                  inUse.c_str(), TestSeed());
    Measured(figures);
}

} // namespace tsl::test
