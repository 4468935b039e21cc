#include "tests/support/MutexHolder.h"

#include <stdexcept>

#include "tests/support/StartedProgram.h"
#include "tests/support/StoreFixture.h"

namespace tsl::test {

namespace {

constexpr DWORD kStartTimeoutMilliseconds = 20000;

CHandle CreateNamedEvent(const std::wstring& name) {
    return CHandle(
        CreateEventW(nullptr, /*manualReset=*/TRUE, /*initialState=*/FALSE, name.c_str()));
}

} // namespace

MutexHolder::MutexHolder(const std::wstring& mutexName) {
    static unsigned serial = 0;
    const std::wstring tag =
        std::to_wstring(GetCurrentProcessId()) + L"_" + std::to_wstring(++serial);
    const CHandle ready = CreateNamedEvent(L"hold_mutex_ready_" + tag);
    m_release = CreateNamedEvent(L"hold_mutex_release_" + tag);

    m_process = StartProgram(ProgramFolder() / L"hold_mutex.exe",
                             L"\"" + mutexName + L"\" " + tag + L" " +
                                 std::to_wstring(GetCurrentProcessId()))
                    .process;
    if (WaitForSingleObject(ready.Get(), kStartTimeoutMilliseconds) != WAIT_OBJECT_0) {
        Kill();
        throw std::runtime_error("hold_mutex.exe did not take the mutex");
    }
}

MutexHolder::~MutexHolder() {
    SetEvent(m_release.Get());
    WaitForEnd();
}

void MutexHolder::Kill() {
    TerminateProcess(m_process.Get(), 1);
    WaitForEnd();
}

void MutexHolder::WaitForEnd() {
    WaitForSingleObject(m_process.Get(), kStartTimeoutMilliseconds);
}

} // namespace tsl::test
