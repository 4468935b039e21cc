// The store of one plug-in object: which file and table it works on, its locks, the engine, and
// what the host told it. Operations are functions that are given the store.
//
// An object is used by one thread at a time. The locks serialise it with other objects, threads and
// processes; each operation takes them itself. No connection outlives an operation.
#pragma once

#include <memory>
#include <string>

#include "base/ComPtr.h"
#include "component/host/ITslContentStore.h"
#include "store/Database.h"
#include "store/Schema.h"
#include "store/StoreLocks.h"

namespace tsl {

class CActionLogStore {
public:
    // The module whose manifest names the engine. A missing engine leaves the store without one.
    explicit CActionLogStore(HMODULE module);
    CActionLogStore(const CActionLogStore&) = delete;
    CActionLogStore& operator=(const CActionLogStore&) = delete;

    // Chooses the table that the next operations work on. Always S_OK.
    HRESULT SelectTable(std::wstring_view prefix, std::wstring_view name);
    const std::wstring& Prefix() const noexcept { return m_prefix; }
    const std::wstring& Name() const noexcept { return m_name; }
    const std::wstring& SelectedTable() const noexcept { return m_table; }

    // Chooses the database file; an empty name stands for the action log.
    void SelectDatabase(std::wstring_view fileName) { m_databaseName = fileName; }
    void SelectActionLogDatabase() noexcept { m_databaseName.clear(); }
    std::wstring DatabaseName() const;

    // Opens a database of the db folder, making folder and file as needed, and creates the table
    // where create asks for it. REQUIRES: the SQLiteAccess lock is held or its wait has timed out.
    // S_OK; E_POINTER without an engine or a database; E_INVALIDARG for an empty file name; else
    // the mapped failure of the engine. A table that cannot be created does not fail the open. The
    // database may hold a connection after a failure too.
    HRESULT Open(const std::wstring& fileName, std::wstring_view prefix, std::wstring_view name,
                 CDatabase* database, TableShape shape, bool create) const;

    // Opens the chosen database with the chosen action table, creating both.
    HRESULT OpenSelected(CDatabase* database) const;

    // Null when the engine could not be loaded.
    const SqliteApi* Engine() const noexcept { return m_engine.get(); }

    CNamedMutex& SqliteAccessLock() noexcept { return m_sqliteAccessLock; }
    CNamedMutex& LogIdLock() noexcept { return m_logIdLock; }

    // The record id that this object issued or read last.
    UINT32& RecordIdCounter() noexcept { return m_recordIdCounter; }

    // The flag that the host passed to this object's SetRecordingEnabled last; 0 before that.
    UINT32 LogKind() const noexcept { return m_logKind; }
    void SetLogKind(UINT32 logKind) noexcept { m_logKind = logKind; }

    // The host's content store, null until a content move has created it.
    CComPtr<ITslContentStore>& ContentStore() noexcept { return m_contentStore; }

private:
    // Members go in reverse order: first the content store, then the locks, last the engine.
    std::unique_ptr<SqliteApi> m_engine;
    std::wstring m_databaseName = kActionLogFileName;
    std::wstring m_prefix;
    std::wstring m_name;
    std::wstring m_table;
    UINT32 m_recordIdCounter = 0;
    UINT32 m_logKind = 0;
    CNamedMutex m_sqliteAccessLock{kSqliteAccessMutexName};
    CNamedMutex m_logIdLock{kLogIdMutexName};
    CComPtr<ITslContentStore> m_contentStore;
};

} // namespace tsl
