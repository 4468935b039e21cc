// Which locks the code under test waits for, and for how long it would.
#pragma once

#include <windows.h>

#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/ImportHook.h"

namespace tsl::test {

inline constexpr wchar_t kComponentLibrary[] = L"TslIfDbActionLog.dll";

// What becomes of a wait for a lock that somebody else holds.
enum class HeldLocks {
    AreGivenUpAtOnce, // the system is asked with a time-out of 0; a wait without end lasts
    AreWaitedFor,
};

// Notes the waits of one module for named mutexes while it lives. A try, with a time-out of 0, is
// no wait. Each wait is the system's own: a lock that is free is really taken. One at a time.
class LockWaits {
public:
    // In this program unless another loaded module is named. Throws std::runtime_error when there
    // is none that waits, std::logic_error when another watch lives.
    explicit LockWaits(HeldLocks held, const wchar_t* module = nullptr);
    LockWaits(const LockWaits&) = delete;
    LockWaits& operator=(const LockWaits&) = delete;
    // REQUIRES: no other thread of the module waits for a lock.
    ~LockWaits();

    // The time-outs in milliseconds of the waits for a lock so far, in their order. A wait for no
    // object at all counts as one for L"".
    std::vector<DWORD> TimeOuts(const std::wstring& lock) const;

    // Whether a wait for the lock has begun, or begins within ten seconds.
    bool SeesWaitFor(const wchar_t* lock) const;

private:
    static DWORD WINAPI Wait(HANDLE object, DWORD timeoutMilliseconds);

    static LockWaits* s_living;

    HeldLocks m_held;
    decltype(&WaitForSingleObject) m_wait = nullptr; // the system's
    mutable std::mutex m_mutex;
    std::vector<std::pair<std::wstring, DWORD>> m_seen; // name and time-out, below m_mutex
    std::optional<ImportHook> m_hook;
};

} // namespace tsl::test
