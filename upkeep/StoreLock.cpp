#include "upkeep/StoreLock.h"

#include <string>

#include "base/NamedMutex.h"
#include "console/Failure.h"
#include "console/Output.h"
#include "console/Text.h"
#include "files/UserIdList.h"
#include "store/StoreLocks.h"

namespace tsl {

namespace {

LockState StateAfter(DWORD waitResult) noexcept {
    switch (waitResult) {
    case WAIT_OBJECT_0:
        return LockState::Free;
    case WAIT_ABANDONED:
        return LockState::Abandoned;
    case WAIT_TIMEOUT:
        return LockState::Held;
    default:
        return LockState::Unusable;
    }
}

void RequireHeld(const CStoreLock& lock, const wchar_t* name) {
    static bool isTold = false;
    if (lock.IsHeld() && lock.IsRestricted() && !isTold) {
        isTold = true;
        PrintError(ToUtf8(name) + " was made with restricted rights: hosts that may not open it go "
                                  "on without it");
    }
    if (lock.IsHeld()) return;
    const bool held = lock.State() == LockState::Held;
    throw CFailure(held ? ExitCode::Locked : ExitCode::Denied,
                   std::string("cannot lock ") + ToUtf8(name) +
                       (held ? ": another process has held it for " +
                                   std::to_string(lock.WaitedMilliseconds()) + " ms"
                        : lock.IsRestricted() ? ": it was made with restricted rights"
                                              : ": it can be neither made nor opened"));
}

} // namespace

CStoreLock::CStoreLock(const wchar_t* name, DWORD timeoutMilliseconds)
    : m_mutex(OpenSharedMutex(name)) {
    if (!m_mutex && GetLastError() == ERROR_ACCESS_DENIED) {
        m_isRestricted = true;
        // Enough to wait for it, and to give it back.
        m_mutex = CHandle(OpenMutexW(SYNCHRONIZE, /*inherit=*/FALSE, name));
    }
    if (!m_mutex) return;
    const ULONGLONG start = GetTickCount64();
    m_state = StateAfter(WaitForSingleObject(m_mutex.Get(), timeoutMilliseconds));
    m_waited = GetTickCount64() - start;
}

CStoreLock::~CStoreLock() {
    if (IsHeld()) ReleaseMutex(m_mutex.Get());
}

CDatabaseLock::CDatabaseLock()
    : m_sqliteAccess(kSqliteAccessMutexName, kSqliteAccessTimeoutMilliseconds) {
    RequireHeld(m_sqliteAccess, kSqliteAccessMutexName);
}

CStoreLocks::CStoreLocks() : m_logId(kLogIdMutexName, kLogIdTimeoutMilliseconds) {
    RequireHeld(m_logId, kLogIdMutexName);
}

CUserIdListLock::CUserIdListLock()
    : m_userIdList(kLoginInfoMutexName, kUserIdListTimeoutMilliseconds) {
    RequireHeld(m_userIdList, kLoginInfoMutexName);
}

} // namespace tsl
