#include "upkeep/recovery/FreshDatabase.h"

#include <algorithm>

namespace tsl {

namespace {

// Begins the one transaction that fills the file, with its first table.
CConnection& Begin(CConnection& connection, const std::string& table) {
    // Nobody uses the file before it is whole, and one that does not become so is deleted.
    connection.Execute("PRAGMA page_size = 2048; PRAGMA main.journal_mode = OFF; "
                       "PRAGMA temp.journal_mode = OFF; PRAGMA temp.cache_size = -65536; BEGIN");
    connection.Execute(CreateStatement(table));
    return connection;
}

} // namespace

CFreshDatabase::CFreshDatabase(const std::wstring& path, const DatabaseTables& tables,
                               UINT64 mostBytes)
    : m_connection(path, Access::ReadWrite), m_tables(tables), m_room(mostBytes),
      m_main(Begin(m_connection, m_tables.main), m_tables.main, m_room) {
    if (m_tables.kept.empty()) return;
    m_connection.Execute(CreateStatement(m_tables.kept));
    m_kept.emplace(m_connection, m_tables.kept, m_room);
}

void CFreshDatabase::AddLastId(INT64 currentRecordId, INT64 lastId) {
    m_connection.Execute(CreateOlderStatement(m_tables.older));
    CQuery insert(m_connection, "INSERT INTO " + m_tables.older + " VALUES (?,?)");
    insert.Bind(currentRecordId).Bind(lastId).Step();
}

UINT32 CFreshDatabase::HighestIdOf(const std::string& table) const {
    return static_cast<UINT32>(m_connection.Number(
        "SELECT max(ActionLogId) FROM " + table +
        " WHERE typeof(ActionLogId) = 'integer' AND ActionLogId BETWEEN 1 AND 4294967295"));
}

void CFreshDatabase::Write(UINT32 highestHandedOut) {
    m_savedInMain = m_main.Write(highestHandedOut);
    if (m_kept) m_savedInKept = m_kept->Write(highestHandedOut);
    const UINT32 mark = HighestIdOf(m_tables.main);
    m_highestId = m_kept ? std::max(mark, HighestIdOf(m_tables.kept)) : mark;
    // The header holds 32 bits, which are read as signed.
    m_connection.Execute("PRAGMA user_version = " + std::to_string(static_cast<INT32>(mark)) +
                         "; COMMIT");
}

} // namespace tsl
