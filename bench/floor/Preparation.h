// What each operation has to do around its work, as bare calls of the system: wait for a lock, find
// the data folder, see that it is there and open to everyone. Used by one thread.
#pragma once

#include <windows.h>

#include <string>

#include "base/Handle.h"

namespace tsl::bench {

class CPreparation {
public:
    CPreparation();

    HANDLE SqliteAccessLock() const noexcept { return m_sqliteAccessLock.Get(); }
    HANDLE LogIdLock() const noexcept { return m_logIdLock.Get(); }

    // Asks the shell for the data folder.
    std::wstring FindFolder() const;
    // Throws CHresultError unless the folder is there.
    void LookForFolder(const std::wstring& folder) const;
    // Throws CHresultError unless Everyone is named in the access list of a folder or file.
    void RequireEveryone(const std::wstring& path) const;

    // The three together.
    void PrepareFolder() const;

private:
    CHandle m_sqliteAccessLock;
    CHandle m_logIdLock;
};

// Does the preparation at its start, and gives a lock back at its end. Without a preparation,
// nothing.
class CPreparedWork {
public:
    // A null lock is none. REQUIRES: the preparation, if there is one, lives longer.
    CPreparedWork(const CPreparation* preparation, HANDLE (CPreparation::*lock)() const noexcept);
    CPreparedWork(const CPreparedWork&) = delete;
    CPreparedWork& operator=(const CPreparedWork&) = delete;
    ~CPreparedWork() {
        if (m_lock) ReleaseMutex(m_lock);
    }

private:
    HANDLE m_lock = nullptr;
};

} // namespace tsl::bench
