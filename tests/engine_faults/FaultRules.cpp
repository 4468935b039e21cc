#include "tests/engine_faults/FaultRules.h"

#include <cwchar>
#include <span>
#include <string>

namespace tsl::test {

namespace {

constexpr int kEngineError = 1;

// What failed calls make of one stage.
struct Verdict {
    int failure = 0; // what the stage reports
    bool done = true;
    bool prepared = true; // the stage's own statement was there
    bool textsRead = true;
};

bool Begins(const FaultHit& hit, const wchar_t* words) {
    return std::wcsncmp(hit.statement, words, std::wcslen(words)) == 0;
}

// Whether the engine did what the call asked for, although it reports a failure.
bool WasCarriedOut(const FaultHit& hit, const EngineFault& fault) {
    return hit.entry == EngineEntry::Finalize ||
           (hit.entry == EngineEntry::Step && fault.moment == FaultMoment::Afterwards);
}

// The last statement of a change: once it is carried out, the change is made.
bool MakesTheChange(const Stage& stage, const FaultHit& hit) {
    return (stage.kind == StageKind::Write && Begins(hit, L"COMMIT")) ||
           (stage.kind == StageKind::Delete && Begins(hit, L"DELETE"));
}

Verdict Judge(const Operation& operation, const Stage& stage, const EngineFault& fault,
              std::span<const FaultHit> hits) {
    Verdict verdict;
    bool tableIsMissing = false;
    for (const FaultHit& hit : hits) {
        const bool carriedOut = WasCarriedOut(hit, fault);
        if (hit.entry == EngineEntry::ColumnText16) {
            verdict.textsRead = false;
        } else if (hit.entry == EngineEntry::Close) {
            // Nobody looks at it.
        } else if (Begins(hit, L"PRAGMA busy_timeout")) {
            // Nor at this: it only makes the engine wait.
        } else if (Begins(hit, L"CREATE")) {
            // Nor at this, but where the table is wanted. A record begins anew without it.
            tableIsMissing =
                operation.makesTables && (!carriedOut || stage.kind == StageKind::Write);
        } else {
            verdict.failure = fault.code;
            verdict.done = carriedOut && MakesTheChange(stage, hit);
            verdict.prepared = hit.entry != EngineEntry::Open &&
                               hit.entry != EngineEntry::Prepare16V2 && !Begins(hit, L"PRAGMA");
            return verdict;
        }
    }
    if (tableIsMissing) return {.failure = kEngineError, .done = false};
    return verdict;
}

HRESULT ResultOf(Report report, int failure) {
    if (failure == 0 || report == Report::Nowhere) return S_OK;
    return report == Report::AsPointer ? E_POINTER : MappedResult(failure);
}

// Whether the stage that follows is left out.
bool KeepsFromNext(const Stage& stage, const Verdict& verdict) {
    if (verdict.failure == 0) return false;
    return stage.kind == StageKind::Count || (stage.kind == StageKind::Fetch && !verdict.prepared);
}

} // namespace

HRESULT MappedResult(int engineResult) {
    const bool known = engineResult >= 1 && engineResult <= 26;
    return known ? static_cast<HRESULT>(0x80041600u + static_cast<unsigned>(engineResult) - 1)
                 : E_FAIL;
}

Expectation ExpectationOf(const Operation& operation, const StandInState& seen) {
    Expectation expected;
    const std::span<const FaultHit> hits(seen.hits, static_cast<size_t>(seen.hitCount));
    int connection = 0;
    bool leftOut = false;
    for (const Stage& stage : operation.stages) {
        expected.done.push_back(!leftOut);
        if (std::exchange(leftOut, false)) continue;
        ++connection;
        std::vector<FaultHit> own;
        for (const FaultHit& hit : hits) {
            if (hit.connection == connection) own.push_back(hit);
        }
        const Verdict verdict = Judge(operation, stage, seen.fault, own);
        expected.done.back() = verdict.done;
        const HRESULT result = ResultOf(stage.report, verdict.failure);
        if (FAILED(result)) expected.result = result;
        if (FAILED(result)) expected.answered = false;
        if (stage.kind == StageKind::Fetch && !verdict.textsRead) expected.answered = false;
        leftOut = KeepsFromNext(stage, verdict);
    }
    return expected;
}

} // namespace tsl::test
