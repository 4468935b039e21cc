// What the record ids of a table tell of it.
#pragma once

#include <windows.h>

#include <string>

#include "upkeep/Connection.h"

namespace tsl {

struct TableIds {
    INT64 rows = 0;
    INT64 withId = 0;   // rows with an id that the component can have written
    INT64 distinct = 0; // different ids of those
    UINT32 lowest = 0;  // 0 when there is none
    UINT32 highest = 0;

    // Every row has an id of its own.
    bool AreWhole() const noexcept { return distinct == rows; }
};

// Throws CSqliteError.
TableIds ReadTableIds(const CConnection& connection, const std::string& table);

// Whether the value of a column or expression is a record id, as a condition of SQL.
std::string IsRecordId(const std::string& column);

} // namespace tsl
