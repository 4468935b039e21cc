// Another process that holds a named mutex.
#pragma once

#include <string>

#include "base/Handle.h"

namespace tsl::test {

// Starts hold_mutex.exe and waits until it owns the mutex. The process ends, giving the mutex back,
// when this goes, and when the test program ends without that.
class MutexHolder {
public:
    // Throws std::runtime_error.
    explicit MutexHolder(const std::wstring& mutexName);
    MutexHolder(const MutexHolder&) = delete;
    MutexHolder& operator=(const MutexHolder&) = delete;
    ~MutexHolder();

    // Ends the process without giving the mutex back: whoever waits finds it abandoned.
    void Kill();

private:
    void WaitForEnd();

    CHandle m_process;
    CHandle m_release;
};

} // namespace tsl::test
