// operations_bench: times each operation as "name/records/component", "name/records/floor" and
// "name/records/prepared floor", and as "name/0/cost" what the locks and the folder cost by
// themselves. Options are those of the benchmark library.
#include <benchmark/benchmark.h>

#include "bench/Operations.h"
#include "bench/support/Failure.h"

namespace tsl::bench {

namespace {

void Measure(benchmark::State& state, COperations& operations, const Operation& operation,
             const std::function<void()>& call) {
    CStores& stores = operations.Stores();
    stores.Place(operation.size);
    const int calls = operation.calls + 2;
    if (operation.prepare) operation.prepare(calls);
    // Counting takes longer than most operations at the larger sizes.
    constexpr UINT32 kCountedSize = 10'000;
    const bool counted = operation.size <= kCountedSize;
    const StoreCounts before = counted ? stores.Count() : StoreCounts();
    // The component opens folder and files to everyone; and the files have just been changed.
    operation.component();
    call();
    for (auto _ : state)
        call();
    const StoreCounts expected = {before.actionLog + calls * operation.change.actionLog,
                                  before.kept + calls * operation.change.kept};
    if (counted && stores.Count() != expected) state.SkipWithError("did not do its work");
    stores.Restore();
}

void Register(COperations& operations, const Operation& operation) {
    const std::string name = operation.name + "/" + std::to_string(operation.size);
    const auto add = [&](const char* variant, std::function<void()> call) {
        benchmark::RegisterBenchmark((name + "/" + variant).c_str(),
                                     [&operations, &operation, call](benchmark::State& state) {
                                         Measure(state, operations, operation, call);
                                     })
            ->Iterations(operation.calls)
            ->UseRealTime()
            ->Unit(benchmark::kMicrosecond);
    };
    add("component", operation.component);
    if (!operation.floor) return;
    add("floor", [&] { operation.floor(operations.Floor()); });
    add("prepared floor", [&] { operation.floor(operations.PreparedFloor()); });
}

void RegisterCost(const char* name, std::function<void()> call) {
    constexpr int kCalls = 200;
    benchmark::RegisterBenchmark((std::string(name) + "/0/cost").c_str(),
                                 [call](benchmark::State& state) {
                                     for (auto _ : state)
                                         call();
                                 })
        ->Iterations(kCalls)
        ->UseRealTime()
        ->Unit(benchmark::kMicrosecond);
}

void RegisterCosts(const CPreparation& preparation) {
    RegisterCost("wait for a lock and release it", [&preparation] {
        WaitForSingleObject(preparation.SqliteAccessLock(), INFINITE);
        ReleaseMutex(preparation.SqliteAccessLock());
    });
    RegisterCost("ask the shell for the folder", [&preparation] { preparation.FindFolder(); });
    const std::wstring folder = preparation.FindFolder();
    RegisterCost("look whether the folder is there",
                 [=, &preparation] { preparation.LookForFolder(folder); });
    RegisterCost("read who may use it", [=, &preparation] { preparation.RequireEveryone(folder); });
}

void Run() {
    COperations operations;
    for (const Operation& operation : operations.All())
        Register(operations, operation);
    RegisterCosts(operations.Preparation());
    benchmark::RunSpecifiedBenchmarks();
}

} // namespace

} // namespace tsl::bench

int main(int count, char** arguments) {
    benchmark::Initialize(&count, arguments);
    if (benchmark::ReportUnrecognizedArguments(count, arguments)) return 2;
    return tsl::bench::RunAndTellFailure("operations_bench", tsl::bench::Run);
}
