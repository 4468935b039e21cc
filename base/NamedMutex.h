// A machine-wide named mutex that every user may open, and the guard that takes it.
//
// The mutex object belongs to one object of the component and is used by one thread at a time; it
// is the named mutex behind it that serialises threads and processes.
#pragma once

#include "base/Handle.h"

namespace tsl {

class CNamedMutex {
public:
    // Creates or opens the mutex. A failure leaves no handle: every operation then runs unlocked.
    explicit CNamedMutex(const wchar_t* name) noexcept;
    CNamedMutex(const CNamedMutex&) = delete;
    CNamedMutex& operator=(const CNamedMutex&) = delete;
    ~CNamedMutex() { Release(); }

    // Waits unless this object holds the mutex already. A time-out and an abandoned mutex both
    // leave it not held; the operation goes on all the same. An abandoned mutex stays with the
    // thread and is not given back, so others wait out their time-outs until that thread ends.
    void Acquire(DWORD timeoutMilliseconds) noexcept;

    // Gives the mutex back if this object holds it.
    void Release() noexcept;

    bool IsHeld() const noexcept { return m_held; }

private:
    CHandle m_handle;
    bool m_held = false;
};

// Creates or opens a mutex without any access list, so that services and every logged-on user share
// it. No handle when that fails.
CHandle OpenSharedMutex(const wchar_t* name) noexcept;

// Takes a mutex for its own lifetime. Whatever released the mutex meanwhile, nothing is released
// twice.
class CMutexGuard {
public:
    CMutexGuard(CNamedMutex& mutex, DWORD timeoutMilliseconds) noexcept : m_mutex(mutex) {
        m_mutex.Acquire(timeoutMilliseconds);
    }
    CMutexGuard(const CMutexGuard&) = delete;
    CMutexGuard& operator=(const CMutexGuard&) = delete;
    ~CMutexGuard() { m_mutex.Release(); }

private:
    CNamedMutex& m_mutex;
};

} // namespace tsl
