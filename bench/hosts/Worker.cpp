#include "bench/hosts/Worker.h"

#include <chrono>
#include <fstream>
#include <stdexcept>
#include <string>

#include "bench/support/Actions.h"
#include "bench/support/Host.h"
#include "component/host/CommandCodes.h"
#include "component/host/ParamKeys.h"
#include "console/StorePlace.h"
#include "tests/support/ForwardingContainer.h"
#include "tests/support/ImportHook.h"

namespace tsl::bench {

namespace {

constexpr wchar_t kStartSignal[] = L"Local\\TslBenchStart";
constexpr wchar_t kReadySignal[] = L"Local\\TslBenchReady";

using Clock = std::chrono::steady_clock;

std::int64_t Now() {
    return std::chrono::duration_cast<std::chrono::microseconds>(Clock::now().time_since_epoch())
        .count();
}

Clock::duration g_waited{};

// Stands in the component's import table.
DWORD WINAPI TimedWait(HANDLE handle, DWORD milliseconds) {
    const auto start = Clock::now();
    const DWORD result = WaitForSingleObject(handle, milliseconds);
    g_waited += Clock::now() - start;
    return result;
}

// A host that fetches its values from far away.
class CSlowContainer final : public test::ForwardingContainer {
public:
    CSlowContainer(CComPtr<CTslParamContainer> values, int millisecondsAValue)
        : ForwardingContainer(std::move(values)), m_milliseconds(millisecondsAValue) {}

    HRESULT STDMETHODCALLTYPE GetValue(UINT64 key, VARIANT* value) override {
        Sleep(static_cast<DWORD>(m_milliseconds));
        return ForwardingContainer::GetValue(key, value);
    }

private:
    int m_milliseconds;
};

CHandle Signal(const std::wstring& name) {
    CHandle signal(
        CreateEventW(nullptr, /*manualReset=*/TRUE, /*initialState=*/FALSE, name.c_str()));
    if (!signal) throw CHresultError(HresultFromLastError());
    return signal;
}

std::wstring ReadySignal(int number) {
    return kReadySignal + std::to_wstring(number);
}

UINT32 TakeId(const CHost& host, CTslParamContainer& none) {
    const CVariant answer = host.Ask(kCommandNextRecordId, none);
    const auto container =
        QueryFor<ITslParamContainer>(answer.Get().punkVal, IID_ITslParamContainer);
    CVariant id;
    Require(container->GetValue(kKeyRecordId, id.Address()));
    return id.Get().ulVal;
}

void Write(const std::filesystem::path& path, const WorkerReport& report) {
    std::ofstream file(path);
    file << report.start << ' ' << report.end << ' ' << report.waited << '\n';
    for (const std::int64_t action : report.actions)
        file << action << '\n';
    if (!file.flush()) throw std::runtime_error("cannot write " + path.string());
}

} // namespace

CHandle MakeStartSignal() {
    return Signal(kStartSignal);
}

CWorkerProcess::CWorkerProcess(int number, int actions, int millisecondsAValue)
    : m_report(std::filesystem::temp_directory_path() /
               ("tsl-bench-" + std::to_string(number) + ".txt")),
      m_ready(Signal(ReadySignal(number))) {
    const std::wstring program = ProgramFolder() + L"hosts_bench.exe";
    std::wstring line = L"hosts_bench worker " + std::to_wstring(number) + L" " +
                        std::to_wstring(actions) + L" " + std::to_wstring(millisecondsAValue) +
                        L" \"" + m_report.wstring() + L"\"";
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION made{};
    if (!CreateProcessW(program.c_str(), line.data(), nullptr, nullptr, /*inherit=*/FALSE, 0,
                        nullptr, nullptr, &startup, &made)) {
        throw std::runtime_error("cannot start a host process");
    }
    m_process = CHandle(made.hProcess);
    const CHandle thread(made.hThread);
}

void CWorkerProcess::WaitUntilReady() const {
    constexpr DWORD kMilliseconds = 60'000;
    if (WaitForSingleObject(m_ready.Get(), kMilliseconds) != WAIT_OBJECT_0) {
        throw std::runtime_error("a host process did not begin");
    }
}

WorkerReport CWorkerProcess::Finish() {
    WaitForSingleObject(m_process.Get(), INFINITE);
    DWORD code = 1;
    GetExitCodeProcess(m_process.Get(), &code);
    std::ifstream file(m_report);
    WorkerReport report;
    file >> report.start >> report.end >> report.waited;
    for (std::int64_t action = 0; file >> action;)
        report.actions.push_back(action);
    file.close();
    std::filesystem::remove(m_report);
    if (code != 0) throw std::runtime_error("a host process failed");
    return report;
}

void RunWorker(char** arguments) {
    const int number = std::stoi(arguments[0]);
    const int actions = std::stoi(arguments[1]);
    const int millisecondsAValue = std::stoi(arguments[2]);
    const CHost host;
    const test::ImportHook timing(GetModuleHandleW(L"TslIfDbActionLog.dll"), "WaitForSingleObject",
                                  TimedWait);
    Require(host.Plugin().SetRecordingEnabled(1));
    const CComPtr<CTslParamContainer> action = MakeAction(L"playItem");
    CSlowContainer slowAction(action, millisecondsAValue);
    ITslParamContainer* const given =
        millisecondsAValue > 0 ? static_cast<ITslParamContainer*>(&slowAction) : action.Get();
    const CComPtr<CTslParamContainer> none = CTslParamContainer::Create();
    const CHandle start = MakeStartSignal();
    SetEvent(Signal(ReadySignal(number)).Get());
    WaitForSingleObject(start.Get(), INFINITE);

    WorkerReport report;
    g_waited = {};
    report.start = Now();
    for (int call = 0; call < actions; ++call) {
        const std::int64_t begun = Now();
        SetRecordId(*action, TakeId(host, *none));
        Require(host.Plugin().Notify(kCommandRecordAction, given));
        report.actions.push_back(Now() - begun);
    }
    report.end = Now();
    report.waited = std::chrono::duration_cast<std::chrono::microseconds>(g_waited).count();
    Write(arguments[3], report);
}

} // namespace tsl::bench
