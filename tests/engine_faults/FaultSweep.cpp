#include "tests/engine_faults/FaultSweep.h"

#include <algorithm>
#include <vector>

#include "tests/support/FullForm.h"

namespace tsl::test {

namespace {

// A way for a function of the engine to fail.
struct FaultKind {
    EngineEntry entry;
    FaultMoment moment;
};

constexpr FaultKind kKinds[] = {
    {EngineEntry::Open, FaultMoment::Instead},
    {EngineEntry::Open, FaultMoment::Afterwards},
    {EngineEntry::Prepare16V2, FaultMoment::Instead},
    {EngineEntry::BindInt64, FaultMoment::Instead},
    {EngineEntry::BindText16, FaultMoment::Instead},
    {EngineEntry::BindDouble, FaultMoment::Instead},
    {EngineEntry::Step, FaultMoment::Instead},
    {EngineEntry::Step, FaultMoment::Afterwards},
    {EngineEntry::Step, FaultMoment::RollingBack},
    {EngineEntry::Finalize, FaultMoment::Afterwards},
    {EngineEntry::Close, FaultMoment::Afterwards},
};

constexpr int kBusy = 5;
constexpr int kDiskFault = 10;

std::vector<int> CodesFor(FaultMoment moment) {
    // Out of memory, a failing disk and a full one: what the engine rolls a transaction back for.
    if (moment == FaultMoment::RollingBack) return {7, kDiskFault, 13};
    return {1, kBusy, 7, kDiskFault, 11, 13, 14, 21, 26, 27, 266};
}

constexpr int kMany = 100;
constexpr int kAtEachEnd = 15;

// The short form leaves none of so few calls out.
constexpr int kFew = 12;

// What to try of all calls of a function.
struct CallChoice {
    int count; // how many there are when nothing fails
    bool allOfMany = false;
    int stride = 1;

    int After(int call) const {
        const bool skips = !allOfMany && count > kMany;
        const int next = call + stride;
        return skips && call <= kAtEachEnd && next > kAtEachEnd ? count - kAtEachEnd : next;
    }
};

// The codes take turns.
void TryCalls(EngineFault fault, const CallChoice& choice, const std::vector<int>& codes,
              const TryFault& tryFault) {
    size_t turn = 0;
    for (fault.call = 1;; fault.call = choice.After(fault.call)) {
        fault.code = codes[turn++ % codes.size()];
        if (!tryFault(fault)) return;
    }
}

void TryCodes(const FaultKind& kind, bool lasting, CallChoice choice, const TryFault& tryFault) {
    const EngineFault fault{.entry = kind.entry, .moment = kind.moment, .lasting = lasting};
    std::vector<int> codes = CodesFor(kind.moment);
    if (lasting) std::erase(codes, kBusy);
    if (!IsFullForm()) {
        TryCalls(fault, choice, {codes.back(), lasting ? codes.back() : codes[1]}, tryFault);
        return;
    }
    for (const int code : codes) {
        choice.allOfMany = !lasting && code == kDiskFault && kind.moment == FaultMoment::Instead;
        TryCalls(fault, choice, {code}, tryFault);
    }
}

} // namespace

int BriefStride(int stride) {
#ifdef _GLIBCXX_ASSERTIONS
    stride *= 2;
#endif
    return InForm(stride, 1);
}

void TryEachCall(const CallCount& calls, const TryFault& tryFault, int briefStride) {
    for (const FaultKind& kind : kKinds) {
        const int count = calls(kind.entry);
        const int stride = count > kFew ? BriefStride(briefStride) : 1;
        TryCodes(kind, /*lasting=*/false, {.count = count, .stride = stride}, tryFault);
    }
    constexpr EngineEntry text = EngineEntry::ColumnText16;
    TryCalls({.entry = text}, {.count = calls(text)}, {0}, tryFault);
}

void TryEachCallAndThoseAfter(const CallCount& calls, const TryFault& tryFault, int briefStride) {
    const int stride = BriefStride(briefStride);
    for (const FaultKind& kind : kKinds) {
        TryCodes(kind, /*lasting=*/true, {.count = calls(kind.entry), .stride = stride}, tryFault);
    }
    constexpr EngineEntry text = EngineEntry::ColumnText16;
    TryCalls({.entry = text, .lasting = true}, {.count = calls(text)}, {0}, tryFault);
}

} // namespace tsl::test
