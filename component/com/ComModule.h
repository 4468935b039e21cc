// The module's lock count: how many objects, factory references and server locks keep it loaded.
// Callable from any thread.
#pragma once

#include <windows.h>

#include <atomic>

namespace tsl {

class CComModule {
public:
    void Lock() noexcept { ++m_locks; }
    void Unlock() noexcept { --m_locks; }

    // True when nothing of this module is in use.
    bool CanUnload() const noexcept { return m_locks == 0; }

private:
    std::atomic<LONG> m_locks = 0;
};

inline constinit CComModule g_comModule;

} // namespace tsl
