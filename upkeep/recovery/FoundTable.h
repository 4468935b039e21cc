// Collects the rows of one table that are found in a damaged database, and writes those to keep
// into the table of a fresh one. They wait in a temporary table of the engine, not in memory. Used
// by one thread; every failure is a CSqliteError.
#pragma once

#include "upkeep/Connection.h"

namespace tsl {

// What a row takes up in a file at the least: a file of rows is not smaller than all of them.
UINT64 LeastStoredSize(const StoredRow& row) noexcept;

// Where a row was found; the engine is believed first.
enum class RowSource { Sql, Page };

struct SavedRows {
    UINT64 saved = 0;
    UINT64 incomplete = 0;   // of the saved ones
    UINT64 superseded = 0;   // of an id that has a later row
    UINT64 unbelievable = 0; // incomplete ones of an id that was never handed out
};

class CFoundTable {
public:
    // REQUIRES: the table is in the fresh database. Rows take up the room, which the caller keeps.
    CFoundTable(const CConnection& fresh, std::string table, UINT64& room);

    // Whether it is new and there is room for it: a row of the same row id and record id is one
    // that was found before.
    bool Add(const StoredRow& row, RowSource source);

    // Whether there is such a row, and whether there is any row of the record id.
    bool HasRow(const StoredRow& row);
    bool HasRecord(const StoredRow& row);

    // Writes one row a record id, the last one, in the order of the row ids. An incomplete row of
    // an id above all whole ones and above the highest that is known to have been handed out is
    // none. To be called once, at the end.
    SavedRows Write(UINT32 highestHandedOut);

private:
    UINT64 Execute(const std::string& statement) const;

    const CConnection& m_fresh;
    std::string m_table;
    std::string m_found; // the temporary table
    UINT64& m_room;
    CQuery m_insert;
    CQuery m_sameRow;
    CQuery m_sameRecord;
};

} // namespace tsl
