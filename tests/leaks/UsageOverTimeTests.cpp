// The measure itself: it sees what is lost for good, and nothing else.
#include "tests/support/UsageOverTime.h"

#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "base/Handle.h"

namespace tsl::test {

namespace {

constexpr int kCalls = 1000;
constexpr int kCallsPerLoss = 25;

// As an operation does: blocks of many sizes, most of them for a short time.
void Call(int number) {
    for (const size_t size : {8, 24, 40, 100, 300})
        LocalFree(LocalAlloc(LMEM_FIXED, size + static_cast<size_t>(number) % 64));
}

void CallOften() {
    for (int call = 0; call < kCalls; ++call)
        Call(call);
}

void ExpectFlatOverTime(const std::function<void()>& round) {
    UsageOverTime usage(SmallestLeak::OfBlocks(kCalls / kCallsPerLoss));
    usage.Repeat(round);
    usage.ExpectFlat();
}

} // namespace

TEST(UsageOverTime, IsFlatWhenEachBlockIsFreed) {
    ExpectFlatOverTime(CallOften);
}

TEST(UsageOverTime, IsFlatOnceACacheIsFull) {
    std::vector<HLOCAL> cache;
    ExpectFlatOverTime([&] {
        CallOften();
        for (int block = 0; block < 200 && cache.size() < 500; ++block)
            cache.push_back(LocalAlloc(LMEM_FIXED, 64));
    });
    EXPECT_EQ(500u, cache.size());
    for (const HLOCAL block : cache)
        LocalFree(block);
}

TEST(UsageOverTime, SeesABlockOfEightBytesThatOneCallInTwentyFiveLoses) {
    std::vector<HLOCAL> lost;
    lost.reserve(20 * kCalls / kCallsPerLoss);
    const auto loseSome = [&] {
        for (int call = 0; call < kCalls; ++call) {
            Call(call);
            if (call % kCallsPerLoss == 0) lost.push_back(LocalAlloc(LMEM_FIXED, 8));
        }
    };
    EXPECT_NONFATAL_FAILURE(ExpectFlatOverTime(loseSome), "leave something behind");
    for (const HLOCAL block : lost)
        LocalFree(block);
}

TEST(UsageOverTime, SeesABlockOfCppThatOneCallInTwentyFiveLoses) {
    std::vector<std::unique_ptr<int>> lost;
    lost.reserve(20 * kCalls / kCallsPerLoss);
    const auto loseSome = [&] {
        for (int call = 0; call < kCalls; ++call) {
            Call(call);
            if (call % kCallsPerLoss == 0) lost.push_back(std::make_unique<int>(call));
        }
    };
    EXPECT_NONFATAL_FAILURE(ExpectFlatOverTime(loseSome), "leave something behind");
}

TEST(UsageOverTime, SeesAHandleThatIsOpenedOnce) {
    CHandle event;
    const auto openEvent = [&] {
        if (!event) event = CHandle(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    };
    EXPECT_NONFATAL_FAILURE(ExpectFlatOverTime(openEvent), "handles are left open");
}

TEST(UsageOverTime, SeesAHandleThatEachRoundLosesWhereSomeAreTolerated) {
    std::vector<CHandle> events;
    UsageOverTime usage({.handles = 100});
    usage.Repeat([&] { events.emplace_back(CreateEventW(nullptr, TRUE, FALSE, nullptr)); });
    EXPECT_NONFATAL_FAILURE(usage.ExpectFlat(), "leave something behind");
}

} // namespace tsl::test
