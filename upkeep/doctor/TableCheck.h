// The record ids in a table.
#pragma once

#include "upkeep/Connection.h"
#include "upkeep/doctor/Finding.h"

namespace tsl {

struct TableFigures {
    INT64 rows = 0;
    UINT32 highestId = 0; // 0 when there is none
};

// Throws CSqliteError.
TableFigures CheckTable(const CConnection& connection, const std::string& table,
                        const std::string& subject, Findings& findings);

} // namespace tsl
