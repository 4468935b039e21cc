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
    // Starts process_worker.exe, whose modes are told in Worker.cpp: an amount is a number of calls
    // ("50") or a time ("600s"); the number is the user, or the first id. Throws
    // std::runtime_error when it cannot be started.
    WorkerProcess(const std::wstring& mode, const std::wstring& amount, UINT32 number);

    // What it did. Fails the test when it does not end well within the time.
    std::vector<WorkerCall> Wait(DWORD milliseconds = 600000);

    // Ends it wherever it is. What it did until then.
    std::vector<WorkerCall> Kill();

    // Waits until it begins with its first call, and a little longer. Fails the test after a
    // minute.
    void WaitForStart() const;

    bool HasEnded() const { return WaitForSingleObject(m_process.Get(), 0) == WAIT_OBJECT_0; }

    UINT32 Number() const noexcept { return m_number; }

private:
    std::vector<WorkerCall> TakeReport();

    UINT32 m_number;
    std::filesystem::path m_report;
    CHandle m_process;
};

} // namespace tsl::test
