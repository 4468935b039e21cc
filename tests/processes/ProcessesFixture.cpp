#include "tests/processes/ProcessesFixture.h"

#include <algorithm>
#include <cstdio>
#include <numeric>

namespace tsl::test {

namespace {

WorkerCalls Chosen(const WorkerCalls& calls, const auto& wanted) {
    WorkerCalls chosen;
    std::ranges::copy_if(calls, std::back_inserter(chosen), wanted);
    return chosen;
}

} // namespace

WorkerCalls CallsOf(const WorkerCalls& calls, const std::string& operation) {
    return Chosen(calls, [&](const WorkerCall& call) { return call.operation == operation; });
}

WorkerCalls SuccessesOf(const WorkerCalls& calls, const std::string& operation) {
    return Chosen(calls, [&](const WorkerCall& call) {
        return call.operation == operation && call.result == S_OK;
    });
}

std::vector<UINT32> IdsOf(const WorkerCalls& calls) {
    std::vector<UINT32> ids;
    for (const WorkerCall& call : calls)
        ids.push_back(call.recordId);
    std::ranges::sort(ids);
    return ids;
}

std::vector<UINT32> IdsUpTo(UINT32 count) {
    std::vector<UINT32> ids(count);
    std::iota(ids.begin(), ids.end(), 1u);
    return ids;
}

std::string DescribeFailures(const WorkerCalls& calls) {
    std::map<HRESULT, int> failures;
    for (const WorkerCall& call : calls) {
        if (call.result != S_OK) ++failures[call.result];
    }
    if (failures.empty()) return "none";
    std::string text;
    for (const auto& [result, count] : failures) {
        char part[40];
        std::snprintf(part, sizeof part, "%s%d x 0x%08lX", text.empty() ? "" : ", ", count,
                      static_cast<unsigned long>(result));
        text += part;
    }
    return text;
}

std::string DescribeTimes(const WorkerCalls& calls) {
    if (calls.empty()) return "no calls";
    std::vector<std::int64_t> times;
    for (const WorkerCall& call : calls)
        times.push_back(call.microseconds);
    std::ranges::sort(times);
    const auto milliseconds = [&](size_t index) {
        return static_cast<double>(times[index]) / 1000;
    };
    char text[160];
    std::snprintf(text, sizeof text, "%s: %zu calls, p50 %.1f ms, p99 %.1f ms, max %.1f ms",
                  calls.front().operation.c_str(), times.size(), milliseconds(times.size() / 2),
                  milliseconds(times.size() * 99 / 100), milliseconds(times.size() - 1));
    return text;
}

WorkerCalls ProcessesTest::RunAll(const std::vector<Job>& jobs) {
    std::vector<WorkerProcess> processes;
    for (const Job& job : jobs)
        processes.emplace_back(job.mode, job.amount, job.number);
    WorkerCalls calls;
    for (WorkerProcess& process : processes) {
        const WorkerCalls made = process.Wait(/*milliseconds=*/1'200'000);
        calls.insert(calls.end(), made.begin(), made.end());
    }
    return calls;
}

void ProcessesTest::Report(const WorkerCalls& calls) {
    std::vector<std::string> operations;
    for (const WorkerCall& call : calls) {
        if (call.operation != "start" &&
            std::ranges::find(operations, call.operation) == operations.end()) {
            operations.push_back(call.operation);
        }
    }
    for (const std::string& operation : operations) {
        const WorkerCalls chosen = CallsOf(calls, operation);
        Measured(DescribeTimes(chosen) + ", failures: " + DescribeFailures(chosen));
    }
}

std::vector<UINT32> ProcessesTest::StoredIds(const std::filesystem::path& path,
                                             const std::string& table, const std::string& where) {
    std::vector<UINT32> ids;
    for (const Row& row : FileDatabase(path).Query("SELECT ActionLogId FROM " + table + " WHERE " +
                                                   where + " ORDER BY ActionLogId")) {
        ids.push_back(static_cast<UINT32>(std::stoul(row[0].value_or("0"))));
    }
    return ids;
}

void ProcessesTest::ExpectWholeDatabases() {
    EXPECT_EQ("ok", FileDatabase(ActionLogPath()).Value("PRAGMA integrity_check"));
    EXPECT_EQ("ok", FileDatabase(ReplayPath()).Value("PRAGMA integrity_check"));
}

} // namespace tsl::test
