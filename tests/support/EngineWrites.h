// Whether the lock of the databases is held while the component's engine writes.
#pragma once

#include "tests/support/ImportHook.h"
#include "tests/support/StoreChecks.h"

namespace tsl::test {

// Looks at each write of the loaded engine to a file while it lives: could another thread have the
// lock then? For one thread, one at a time.
class EngineWrites {
public:
    EngineWrites() { s_whileHeld = s_whileFree = 0; }
    EngineWrites(const EngineWrites&) = delete;
    EngineWrites& operator=(const EngineWrites&) = delete;

    // Whether there were writes, and the lock was held at each.
    bool WereUnderTheLock() const { return s_whileHeld > 0 && s_whileFree == 0; }

private:
    static BOOL WINAPI Note(HANDLE file, const void* bytes, DWORD size, DWORD* written,
                            OVERLAPPED* overlapped) {
        ++(MutexIsFree(kSqliteAccessLock) ? s_whileFree : s_whileHeld);
        return WriteFile(file, bytes, size, written, overlapped);
    }

    static inline int s_whileHeld = 0;
    static inline int s_whileFree = 0;

    ImportHook m_hook{GetModuleHandleW(L"SQLite3.dll"), "WriteFile", &Note};
};

} // namespace tsl::test
