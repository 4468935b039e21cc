// The machine-wide locks, taken by someone who looks after a store: unlike the component's own
// guard it tells how the lock was found, and gives back one that its owner had abandoned.
#pragma once

#include <windows.h>

#include "base/Handle.h"

namespace tsl {

// For the lock of the user id list, which the component waits for without end.
inline constexpr DWORD kUserIdListTimeoutMilliseconds = 3000;

enum class LockState {
    Free,
    Held,      // by another process for the whole wait
    Abandoned, // its owner ended without giving it back
    Unusable,  // it can be neither made nor opened
};

// Holds the lock for its own lifetime where it could be had. Used by one thread.
class CStoreLock {
public:
    CStoreLock(const wchar_t* name, DWORD timeoutMilliseconds);
    CStoreLock(const CStoreLock&) = delete;
    CStoreLock& operator=(const CStoreLock&) = delete;
    ~CStoreLock();

    LockState State() const noexcept { return m_state; }
    bool IsHeld() const noexcept {
        return m_state == LockState::Free || m_state == LockState::Abandoned;
    }
    ULONGLONG WaitedMilliseconds() const noexcept { return m_waited; }
    // Whether its maker has kept rights to himself: hosts of others may be unable to open it, and
    // go on without it then. What it takes to wait for it was left, unless it is unusable.
    bool IsRestricted() const noexcept { return m_isRestricted; }

private:
    CHandle m_mutex;
    LockState m_state = LockState::Unusable;
    ULONGLONG m_waited = 0;
    bool m_isRestricted = false;
};

// The lock of the databases alone: for whoever only reads or writes records. Waits as long as the
// component does, then throws CFailure (Locked).
class CDatabaseLock {
public:
    CDatabaseLock();

private:
    CStoreLock m_sqliteAccess;
};

// Both locks of the store in their order: no host reads, writes or takes an id meanwhile. Throws as
// above.
class CStoreLocks {
public:
    CStoreLocks();

private:
    CDatabaseLock m_databases;
    CStoreLock m_logId;
};

// The lock of the user id list. Whoever takes it beside the others takes it last.
class CUserIdListLock {
public:
    CUserIdListLock();

private:
    CStoreLock m_userIdList;
};

} // namespace tsl
