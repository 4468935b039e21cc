// Fails the process when the test's thread ends before its test does: so the emulator ends a thread
// whose stack has overflowed, and the process then looks as if all had gone well.
#pragma once

#include <windows.h>

#include <cstdio>
#include <thread>

#include "base/Handle.h"

namespace tsl::test {

// Watches the thread that made it.
class ThreadWatch {
public:
    ThreadWatch()
        : m_watched(OpenThread(SYNCHRONIZE, /*inheritHandle=*/FALSE, GetCurrentThreadId())),
          m_over(CreateEventW(nullptr, /*manualReset=*/TRUE, /*initialState=*/FALSE, nullptr)),
          m_watcher([this] { Watch(); }) {}
    ThreadWatch(const ThreadWatch&) = delete;
    ThreadWatch& operator=(const ThreadWatch&) = delete;
    ~ThreadWatch() {
        SetEvent(m_over.Get());
        m_watcher.join();
    }

private:
    void Watch() const {
        const HANDLE ends[] = {m_over.Get(), m_watched.Get()};
        if (WaitForMultipleObjects(2, ends, /*all=*/FALSE, INFINITE) == WAIT_OBJECT_0) return;
        std::fputs("the thread of the test was ended\n", stderr);
        std::fflush(stderr);
        TerminateProcess(GetCurrentProcess(), 1);
    }

    CHandle m_watched;
    CHandle m_over;
    std::thread m_watcher;
};

} // namespace tsl::test
