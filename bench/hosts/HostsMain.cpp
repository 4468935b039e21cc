// hosts_bench [ACTIONS [MILLISECONDS]]: lets 1, 2, 4 and 8 host processes record so many actions
// each at once, and tells, as JSON, how many they record together, how long an action takes and how
// much of it is waiting for a lock. With milliseconds, the hosts' containers take so long for each
// value.
#include <algorithm>
#include <iostream>
#include <string>
#include <string_view>

#include <nlohmann/json.hpp>

#include "bench/hosts/Worker.h"
#include "bench/support/Failure.h"
#include "bench/support/Store.h"

namespace tsl::bench {

namespace {

constexpr UINT32 kSize = 1'000;
constexpr int kHosts[] = {1, 2, 4, 8};

std::vector<WorkerReport> RunWorkers(int hosts, int actions, int millisecondsAValue) {
    const CHandle start = MakeStartSignal();
    std::vector<CWorkerProcess> workers;
    for (int number = 0; number < hosts; ++number)
        workers.emplace_back(number, actions, millisecondsAValue);
    for (const CWorkerProcess& worker : workers)
        worker.WaitUntilReady();
    SetEvent(start.Get());
    std::vector<WorkerReport> reports;
    for (CWorkerProcess& worker : workers)
        reports.push_back(worker.Finish());
    return reports;
}

nlohmann::json Summarize(int hosts, const std::vector<WorkerReport>& reports) {
    WorkerReport all = reports.front();
    all.actions.clear();
    std::int64_t spent = 0;
    all.waited = 0;
    for (const WorkerReport& report : reports) {
        all.start = std::min(all.start, report.start);
        all.end = std::max(all.end, report.end);
        all.waited += report.waited;
        spent += report.end - report.start;
        all.actions.insert(all.actions.end(), report.actions.begin(), report.actions.end());
    }
    std::ranges::sort(all.actions);
    const auto quantile = [&](double share) {
        const auto last = static_cast<double>(all.actions.size() - 1);
        return static_cast<double>(all.actions[static_cast<size_t>(share * last)]) / 1e3;
    };
    const double seconds = static_cast<double>(all.end - all.start) / 1e6;
    return {{"hosts", hosts},
            {"actions", all.actions.size()},
            {"actions_per_second", static_cast<double>(all.actions.size()) / seconds},
            {"p50_ms", quantile(0.5)},
            {"p99_ms", quantile(0.99)},
            {"max_ms", quantile(1.0)},
            {"share_waiting", static_cast<double>(all.waited) / static_cast<double>(spent)}};
}

void Run(int actions, int millisecondsAValue) {
    const CEngine engine;
    CStores stores(engine);
    stores.Place(kSize);
    nlohmann::json results = nlohmann::json::array();
    for (const int hosts : kHosts) {
        results.push_back(Summarize(hosts, RunWorkers(hosts, actions, millisecondsAValue)));
        stores.Restore();
    }
    std::cout << results.dump(2) << std::endl;
}

} // namespace

} // namespace tsl::bench

int main(int count, char** arguments) {
    return tsl::bench::RunAndTellFailure("hosts_bench", [&] {
        if (count == 6 && std::string_view(arguments[1]) == "worker") {
            tsl::bench::RunWorker(arguments + 2);
        } else {
            tsl::bench::Run(count > 1 ? std::stoi(arguments[1]) : 500,
                            count > 2 ? std::stoi(arguments[2]) : 0);
        }
    });
}
