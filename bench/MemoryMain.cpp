// memory_bench: fetches 10,000 records at once and tells, as JSON, how much memory the process has
// in use at most meanwhile, beside what the answer takes. The host's container class looks at the
// heaps each time it has made another 1,000 containers, and as the last one is made.
#include <algorithm>
#include <iostream>
#include <numeric>

#include <nlohmann/json.hpp>

#include "bench/support/Failure.h"
#include "bench/support/Host.h"
#include "bench/support/Store.h"
#include "component/host/CommandCodes.h"
#include "component/host/ParamKeys.h"
#include "console/Arrays.h"
#include "tests/support/ProcessMeasures.h"

namespace tsl::bench {

namespace {

constexpr UINT32 kSize = 100'000;
constexpr UINT32 kRecords = 10'000;
constexpr UINT32 kBetweenLooks = 1'000;

UINT32 g_made = 0;
size_t g_most = 0;

HRESULT CreateAndLook(REFIID iid, void** result) {
    if (++g_made % kBetweenLooks == 0)
        g_most = std::max(g_most, test::MemoryUsage::Now().heapBytes);
    return CreateParamContainer(iid, result);
}

void Run() {
    const CEngine engine;
    CStores stores(engine);
    stores.Place(kSize);
    const CHost host(CreateAndLook);
    Require(host.Plugin().SetRecordingEnabled(1));
    std::vector<ULONG> ids(kRecords);
    std::iota(ids.begin(), ids.end(), kSize - kRecords + 1);
    const CComPtr<CTslParamContainer> arguments = CTslParamContainer::Create();
    SetValue(*arguments, kKeyRecordIds, MakeArray<ULONG>(ids));

    // The first time leaves behind what stays for good.
    host.Ask(kCommandQueryRecords, *arguments);
    g_made = 0;
    g_most = 0;
    const size_t before = test::MemoryUsage::Now().heapBytes;
    const CVariant answer = host.Ask(kCommandQueryRecords, *arguments);
    const size_t after = test::MemoryUsage::Now().heapBytes;
    std::cout << nlohmann::json{{"records", g_made},
                                {"answer_bytes", after - before},
                                {"most_bytes", std::max(g_most, after) - before}}
                     .dump(2)
              << std::endl;
}

} // namespace

} // namespace tsl::bench

int main() {
    return tsl::bench::RunAndTellFailure("memory_bench", tsl::bench::Run);
}
