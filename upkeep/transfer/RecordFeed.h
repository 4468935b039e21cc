// Tells of new records as they come, without a share in anything that hosts wait for: between two
// looks nothing is open and no lock is held.
#pragma once

#include <windows.h>

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "console/ExportFormat.h"

namespace tsl {

class CConnection;

// What changes with every change of a database. Read from its file alone.
struct DatabaseMark {
    UINT64 fileIndex = 0;
    UINT64 size = 0;
    UINT32 changes = 0;

    bool operator==(const DatabaseMark&) const = default;
};

// All 0 where there is no file. Nothing where it cannot be read just now; throws CFailure where it
// may not be read at all.
std::optional<DatabaseMark> ReadDatabaseMark(const std::wstring& database);

// Used by one thread.
class CRecordFeed {
public:
    // Of the action log in the database, which need not be there yet. Begins behind the id; without
    // one, behind the highest that the first look finds.
    CRecordFeed(std::wstring database, std::optional<UINT32> after)
        : m_database(std::move(database)), m_highest(after) {}

    // The records that have come since the last look. Of those that are there at the first look,
    // the ones behind the id, in ascending order; later ones as they came, also those of lower ids,
    // which another host has taken earlier and recorded later. Each is told once. Takes the lock of
    // the databases only when something has changed; where others keep it, or the file is busy,
    // nothing comes and the next look tries again. Throws CFailure for a damaged database.
    std::vector<ExportedRecord> Look();

private:
    // Row numbers of the latest rows, with their ids. New rows are numbered above the highest row
    // that is there, so a number can come again, but not below a row that has stayed.
    using LatestRows = std::map<INT64, UINT32>;

    std::vector<ExportedRecord> LookInto(const CConnection& connection);
    std::vector<ExportedRecord> ReadNew(const CConnection& connection) const;
    void Remember(const DatabaseMark& mark, LatestRows latest, UINT32 highest);

    const std::wstring m_database;
    std::optional<DatabaseMark> m_mark;
    std::optional<LatestRows> m_latest; // none before the first look
    std::optional<UINT32> m_highest;    // id
};

} // namespace tsl
