// Host processes that work on the store at the same time.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "base/Handle.h"
#include "tests/processes/WorkerReport.h"

namespace tsl::test {

class WorkerProcess {
public:
    // Throws std::runtime_error when it cannot be started.
    WorkerProcess(const std::wstring& mode, int count, UINT32 user);

    // What it did. Fails the test when it does not end well within ten minutes.
    std::vector<WorkerCall> Wait();

private:
    std::filesystem::path m_report;
    CHandle m_process;
};

// The calls of one operation, of all workers.
std::vector<WorkerCall> CallsOf(const std::vector<WorkerCall>& calls, const std::string& operation);

// "id: 8000 calls, p50 1.2 ms, p99 10.5 ms, max 20.1 ms".
std::string DescribeTimes(const std::vector<WorkerCall>& calls);

} // namespace tsl::test
