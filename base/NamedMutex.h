// A machine-wide named mutex that every user may open, and the guard that takes it.
//
// The mutex object only names the mutex; it never changes, and any thread may use it. Who holds the
// mutex is known to the guard that took it, and to nobody else.
#pragma once

#include "base/Handle.h"

namespace tsl {

class CNamedMutex {
public:
    // Creates or opens the mutex. A failure leaves no handle: every operation then runs unlocked.
    explicit CNamedMutex(const wchar_t* name) noexcept;
    CNamedMutex(const CNamedMutex&) = delete;
    CNamedMutex& operator=(const CNamedMutex&) = delete;

    // Null when the mutex could not be created.
    HANDLE Handle() const noexcept { return m_handle.Get(); }

private:
    CHandle m_handle;
};

// Creates or opens a mutex without any access list, so that services and every logged-on user share
// it. No handle when that fails.
CHandle OpenSharedMutex(const wchar_t* name) noexcept;

// Takes a mutex for its own lifetime, and gives back what it took itself. Belongs to the thread
// that made it. A thread that has the mutex already does not wait for it again.
//
// A time-out and an abandoned mutex both leave it not held; the operation goes on all the same. An
// abandoned mutex stays with the thread and is not given back, so others wait out their time-outs
// until that thread ends.
class CMutexGuard {
public:
    CMutexGuard(const CNamedMutex& mutex, DWORD timeoutMilliseconds) noexcept;
    CMutexGuard(const CMutexGuard&) = delete;
    CMutexGuard& operator=(const CMutexGuard&) = delete;
    ~CMutexGuard() { Release(); }

    // Gives the mutex back before the guard goes, if it is held.
    void Release() noexcept;

    bool IsHeld() const noexcept { return m_held != nullptr; }

private:
    HANDLE m_held = nullptr;
};

} // namespace tsl
