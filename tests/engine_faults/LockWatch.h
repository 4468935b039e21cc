// Tells whether the store's two locks are free, from a thread of its own that lasts: a thread for
// each question would leave its marks among the handles that are counted meanwhile.
#pragma once

#include <thread>

#include "base/Handle.h"

namespace tsl::test {

class LockWatch {
public:
    LockWatch();
    LockWatch(const LockWatch&) = delete;
    LockWatch& operator=(const LockWatch&) = delete;
    ~LockWatch();

    // Whether the thread could have both at once. A lock that nobody has open is free.
    bool LocksAreFree();

private:
    void Run();

    CHandle m_asked;
    CHandle m_answered;
    bool m_ends = false;
    bool m_free = false;
    std::thread m_thread;
};

} // namespace tsl::test
