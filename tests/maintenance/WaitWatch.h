// Tells when the code under test begins to wait for one of the store's locks.
#pragma once

#include "base/Handle.h"
#include "store/StoreLocks.h"
#include "tests/support/ImportHook.h"

namespace tsl::test {

// Watches the waits of this program, told apart by their time-outs, while it lives. One at a time.
class WaitWatch {
public:
    WaitWatch() {
        ResetEvent(m_events.database.Get());
        ResetEvent(m_events.counter.Get());
    }

    // Whether a wait for the lock has begun, or begins within ten seconds.
    bool SeesWaitForDatabase() const { return Sees(m_events.database); }
    bool SeesWaitForCounter() const { return Sees(m_events.counter); }

private:
    struct Events {
        CHandle database{CreateEventW(nullptr, /*manualReset=*/TRUE, FALSE, nullptr)};
        CHandle counter{CreateEventW(nullptr, /*manualReset=*/TRUE, FALSE, nullptr)};
        decltype(&WaitForSingleObject) wait = &WaitForSingleObject;
    };
    static Events& Shared() {
        static Events events;
        return events;
    }
    static bool Sees(const CHandle& event) {
        // Just below the time-outs that are looked for.
        return Shared().wait(event.Get(), kLogIdTimeoutMilliseconds - 1) == WAIT_OBJECT_0;
    }
    static DWORD WINAPI Wait(HANDLE object, DWORD timeoutMilliseconds) {
        if (timeoutMilliseconds == kSqliteAccessTimeoutMilliseconds) {
            SetEvent(Shared().database.Get());
        } else if (timeoutMilliseconds == kLogIdTimeoutMilliseconds) {
            SetEvent(Shared().counter.Get());
        }
        return Shared().wait(object, timeoutMilliseconds);
    }

    // Before the hook: it keeps the system's own function.
    const Events& m_events = Shared();
    ImportHook m_hook{"WaitForSingleObject", &Wait};
};

} // namespace tsl::test
