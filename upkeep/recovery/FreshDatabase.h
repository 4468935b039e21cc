// A new database of the exact schema, beside a damaged one, and the rows that are saved into it.
// Used by one thread; every failure is a CSqliteError.
#pragma once

#include "upkeep/recovery/FoundTable.h"
#include "upkeep/recovery/StoreTables.h"

namespace tsl {

class CFreshDatabase {
public:
    // Fills the file, which must be empty. It takes no more rows than fit into so many bytes.
    CFreshDatabase(const std::wstring& path, const DatabaseTables& tables, UINT64 mostBytes);

    CFoundTable& Main() { return m_main; }
    // Null where the database has no such table.
    CFoundTable* Kept() { return m_kept ? &*m_kept : nullptr; }

    // Also makes the table of the last id, of the older form.
    void AddLastId(INT64 currentRecordId, INT64 lastId);

    // Writes the rows that were found, and the mark. To be called once, at the end.
    void Write(UINT32 highestHandedOut);

    const SavedRows& SavedInMain() const noexcept { return m_savedInMain; }
    const SavedRows& SavedInKept() const noexcept { return m_savedInKept; }
    UINT32 HighestId() const noexcept { return m_highestId; }

private:
    UINT32 HighestIdOf(const std::string& table) const;

    CConnection m_connection;
    DatabaseTables m_tables;
    UINT64 m_room;
    CFoundTable m_main;
    std::optional<CFoundTable> m_kept;
    SavedRows m_savedInMain;
    SavedRows m_savedInKept;
    UINT32 m_highestId = 0;
};

} // namespace tsl
