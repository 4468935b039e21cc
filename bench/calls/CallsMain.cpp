// call_counts: calls each operation of the component once and tells, as JSON, which functions the
// component called meanwhile, which of them of the engine, and which the engine called itself.
#include <iostream>
#include <string_view>

#include <nlohmann/json.hpp>

#include "bench/Operations.h"
#include "bench/calls/ModuleCalls.h"
#include "bench/support/Failure.h"
#include "console/StorePlace.h"

namespace tsl::bench {

namespace {

constexpr UINT32 kSize = 1'000;

CModuleCalls* g_component = nullptr;

// Stands in the component's import table: what it finds in the engine is counted too.
FARPROC WINAPI FindCounted(HMODULE module, const char* name) {
    const FARPROC found = GetProcAddress(module, name);
    if (!found || !std::string_view(name).starts_with("sqlite3_")) return found;
    return reinterpret_cast<FARPROC>(g_component->Count(name, reinterpret_cast<void*>(found)));
}

nlohmann::json CountCalls() {
    // Loaded by the operations once more: they must meet what counts.
    const CPluginLibrary component(ProgramFolder() + L"TslIfDbActionLog.dll");
    const CEngine engine;
    CModuleCalls componentCalls(GetModuleHandleW(L"TslIfDbActionLog.dll"));
    CModuleCalls engineCalls(engine.Module());
    g_component = &componentCalls;
    const test::ImportHook lookUps(GetModuleHandleW(L"TslIfDbActionLog.dll"), "GetProcAddress",
                                   FindCounted);
    COperations operations;
    nlohmann::json counts;
    for (const Operation& operation : operations.All()) {
        if (operation.size != kSize) continue;
        operations.Stores().Place(operation.size);
        if (operation.prepare) operation.prepare(/*calls=*/3);
        operation.component();
        componentCalls.Take();
        engineCalls.Take();
        operation.component();
        counts[operation.name] = {{"component", componentCalls.Take()},
                                  {"engine", engineCalls.Take()}};
        if (operation.floor) {
            operation.floor(operations.Floor());
            counts[operation.name]["engine of the floor"] = engineCalls.Take();
        }
        operations.Stores().Restore();
    }
    return counts;
}

} // namespace

} // namespace tsl::bench

int main() {
    return tsl::bench::RunAndTellFailure(
        "call_counts", [] { std::cout << tsl::bench::CountCalls().dump(2) << std::endl; });
}
