#include "tests/engine_faults/LockWatch.h"

#include "tests/support/StoreChecks.h"

namespace tsl::test {

namespace {

CHandle CreateAutoResetEvent() {
    return CHandle(CreateEventW(nullptr, /*manualReset=*/FALSE, /*initialState=*/FALSE, nullptr));
}

bool CanBeTaken(const wchar_t* name) {
    const CHandle mutex(OpenMutexW(SYNCHRONIZE | MUTEX_MODIFY_STATE, /*inherit=*/FALSE, name));
    if (!mutex) return true;
    const DWORD waited = WaitForSingleObject(mutex.Get(), /*milliseconds=*/0);
    if (waited == WAIT_OBJECT_0) ReleaseMutex(mutex.Get());
    return waited == WAIT_OBJECT_0;
}

} // namespace

LockWatch::LockWatch()
    : m_asked(CreateAutoResetEvent()), m_answered(CreateAutoResetEvent()),
      m_thread([this] { Run(); }) {}

LockWatch::~LockWatch() {
    m_ends = true;
    SetEvent(m_asked.Get());
    m_thread.join();
}

bool LockWatch::LocksAreFree() {
    SignalObjectAndWait(m_asked.Get(), m_answered.Get(), INFINITE, /*alertable=*/FALSE);
    return m_free;
}

void LockWatch::Run() {
    while (WaitForSingleObject(m_asked.Get(), INFINITE) == WAIT_OBJECT_0 && !m_ends) {
        m_free = CanBeTaken(kSqliteAccessLock) && CanBeTaken(kLogIdLock);
        SetEvent(m_answered.Get());
    }
}

} // namespace tsl::test
