// The store of one plug-in object: the engine and the locks of the machine. Operations are
// functions that are given the store and what they work on (Target.h).
//
// Nothing in it changes after its construction but the content store, which guards itself: any
// number of threads may use it at once. The locks serialise them with each other, with other
// objects and with other processes; each operation takes them itself, and holds none while it calls
// the host. No connection outlives an operation.
#pragma once

#include <memory>
#include <string>

#include "store/Database.h"
#include "store/HostContentStore.h"
#include "store/Schema.h"
#include "store/StoreLocks.h"

namespace tsl {

class CActionLogStore {
public:
    // The module whose manifest names the engine. A missing engine leaves the store without one.
    explicit CActionLogStore(HMODULE module);
    CActionLogStore(const CActionLogStore&) = delete;
    CActionLogStore& operator=(const CActionLogStore&) = delete;

    // Opens a database of the db folder, making folder and file as needed, and creates the table
    // where create asks for it. REQUIRES: the SQLiteAccess lock is held or its wait has timed out.
    // S_OK; E_POINTER without an engine or a database; E_INVALIDARG for an empty file name; else
    // the mapped failure of the engine. A table that cannot be created does not fail the open. The
    // database may hold a connection after a failure too.
    HRESULT Open(const std::wstring& fileName, std::wstring_view prefix, std::wstring_view name,
                 CDatabase* database, TableShape shape, bool create,
                 FileUse use = FileUse::Write) const;

    // Null when the engine could not be loaded.
    const SqliteApi* Engine() const noexcept { return m_engine.get(); }

    const CNamedMutex& SqliteAccessLock() const noexcept { return m_sqliteAccessLock; }
    const CNamedMutex& LogIdLock() const noexcept { return m_logIdLock; }

    CHostContentStore& ContentStore() const noexcept { return m_contentStore; }

private:
    // Members go in reverse order: first the content store, then the locks, last the engine.
    std::unique_ptr<const SqliteApi> m_engine;
    CNamedMutex m_sqliteAccessLock{kSqliteAccessMutexName};
    CNamedMutex m_logIdLock{kLogIdMutexName};
    mutable CHostContentStore m_contentStore;
};

} // namespace tsl
