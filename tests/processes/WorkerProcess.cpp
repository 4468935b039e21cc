#include "tests/processes/WorkerProcess.h"

#include <stdexcept>

#include "tests/support/StartedProgram.h"
#include "tests/support/StoreFixture.h"

namespace tsl::test {

namespace {

std::filesystem::path NextReport() {
    static int number = 0;
    return std::filesystem::temp_directory_path() /
           (L"worker_" + std::to_wstring(GetCurrentProcessId()) + L"_" + std::to_wstring(++number));
}

} // namespace

WorkerProcess::WorkerProcess(const std::wstring& mode, const std::wstring& amount, UINT32 number)
    : m_number(number), m_report(NextReport()) {
    std::filesystem::remove(m_report); // of an earlier process of the same number
    m_process = StartProgram(ProgramFolder() / L"process_worker.exe",
                             mode + L" " + amount + L" " + std::to_wstring(number) + L" \"" +
                                 m_report.wstring() + L"\"")
                    .process;
}

std::vector<WorkerCall> WorkerProcess::Wait(DWORD milliseconds) {
    DWORD exitCode = 99;
    const bool ended = WaitForSingleObject(m_process.Get(), milliseconds) == WAIT_OBJECT_0;
    EXPECT_TRUE(ended);
    if (!ended) return Kill();
    GetExitCodeProcess(m_process.Get(), &exitCode);
    EXPECT_EQ(0u, exitCode);
    return TakeReport();
}

void WorkerProcess::WaitForStart() const {
    for (int attempt = 0; attempt < 600 && ReadReport(m_report).empty(); ++attempt)
        Sleep(100);
    EXPECT_FALSE(ReadReport(m_report).empty());
    Sleep(1000);
}

std::vector<WorkerCall> WorkerProcess::Kill() {
    TerminateProcess(m_process.Get(), 99);
    WaitForSingleObject(m_process.Get(), INFINITE);
    return TakeReport();
}

std::vector<WorkerCall> WorkerProcess::TakeReport() {
    std::vector<WorkerCall> calls = ReadReport(m_report);
    std::error_code ignored; // a process that was killed early has none
    std::filesystem::remove(m_report, ignored);
    return calls;
}

} // namespace tsl::test
