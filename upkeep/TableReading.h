// Reads a table of a database that hosts may be writing meanwhile.
#pragma once

#include "console/Text.h"
#include "files/Paths.h"
#include "store/Schema.h"
#include "upkeep/StoreLock.h"
#include "upkeep/WholeDatabase.h"

namespace tsl {

inline bool HasTable(const CConnection& connection, const std::string& table) {
    CQuery query(connection, "SELECT 1 FROM sqlite_master WHERE type = 'table' AND name = ?");
    return query.Bind(table).Step();
}

// Calls read with a connection and the full name of the table; not at all where there is no such
// file or table. Holds the lock of the databases meanwhile. Opened for writing, as hosts do, so
// that a change that was interrupted is rolled back first. Throws CFailure.
template <class Read>
void ReadTable(const std::wstring& database, const wchar_t* name, Read read) {
    const CDatabaseLock lock;
    if (!FileExists(database)) return;
    try {
        const CConnection connection(database, Access::ReadWrite);
        const std::string table = ToUtf8(TableName(kTablePrefix, name));
        if (HasTable(connection, table)) read(connection, table);
    } catch (const CSqliteError& error) {
        throw FailureOf("cannot read", database, error);
    }
}

} // namespace tsl
