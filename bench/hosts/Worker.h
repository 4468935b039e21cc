// A host process among several: records actions as fast as it can and tells how long each took.
#pragma once

#include <filesystem>
#include <vector>

#include "base/Handle.h"

namespace tsl::bench {

// All times are in microseconds, of the one clock that the processes share.
struct WorkerReport {
    std::int64_t start = 0;
    std::int64_t end = 0;
    // Spent waiting for a lock, over all actions.
    std::int64_t waited = 0;
    // Of each action: its id and its report.
    std::vector<std::int64_t> actions;
};

// Starts this program anew as a worker and reads what it tells. Throws std::runtime_error.
class CWorkerProcess {
public:
    // Its containers take so many milliseconds for each value that is read.
    CWorkerProcess(int number, int actions, int millisecondsAValue);

    // Waits until it is ready to begin.
    void WaitUntilReady() const;
    WorkerReport Finish();

private:
    std::filesystem::path m_report;
    CHandle m_ready;
    CHandle m_process;
};

// What the workers wait for before their first action. To be held while they run.
CHandle MakeStartSignal();

// The worker's own part: "worker NUMBER ACTIONS MILLISECONDS REPORT".
void RunWorker(char** arguments);

} // namespace tsl::bench
