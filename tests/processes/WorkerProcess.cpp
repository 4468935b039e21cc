#include "tests/processes/WorkerProcess.h"

#include <algorithm>
#include <cstdio>
#include <stdexcept>

#include "tests/support/StoreFixture.h"

namespace tsl::test {

namespace {

constexpr DWORD kTimeoutMilliseconds = 600000;

std::filesystem::path NextReport() {
    static int number = 0;
    return std::filesystem::temp_directory_path() /
           (L"worker_" + std::to_wstring(GetCurrentProcessId()) + L"_" + std::to_wstring(++number));
}

} // namespace

WorkerProcess::WorkerProcess(const std::wstring& mode, int count, UINT32 user)
    : m_report(NextReport()) {
    const std::wstring program = (ProgramFolder() / L"process_worker.exe").wstring();
    std::wstring command = L"\"" + program + L"\" " + mode + L" " + std::to_wstring(count) + L" " +
                           std::to_wstring(user) + L" \"" + m_report.wstring() + L"\"";
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION started{};
    if (!CreateProcessW(program.c_str(), command.data(), nullptr, nullptr, /*inheritHandles=*/FALSE,
                        0, nullptr, nullptr, &startup, &started)) {
        throw std::runtime_error("process_worker.exe cannot be started");
    }
    m_process = CHandle(started.hProcess);
    const CHandle thread(started.hThread);
}

std::vector<WorkerCall> WorkerProcess::Wait() {
    DWORD exitCode = 99;
    const bool ended = WaitForSingleObject(m_process.Get(), kTimeoutMilliseconds) == WAIT_OBJECT_0;
    if (!ended) TerminateProcess(m_process.Get(), 99);
    GetExitCodeProcess(m_process.Get(), &exitCode);
    EXPECT_TRUE(ended);
    EXPECT_EQ(0u, exitCode);
    if (exitCode != 0) return {};
    std::vector<WorkerCall> calls = ReadReport(m_report);
    std::filesystem::remove(m_report);
    return calls;
}

std::vector<WorkerCall> CallsOf(const std::vector<WorkerCall>& calls,
                                const std::string& operation) {
    std::vector<WorkerCall> chosen;
    std::ranges::copy_if(calls, std::back_inserter(chosen),
                         [&](const WorkerCall& call) { return call.operation == operation; });
    return chosen;
}

std::string DescribeTimes(const std::vector<WorkerCall>& calls) {
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

} // namespace tsl::test
