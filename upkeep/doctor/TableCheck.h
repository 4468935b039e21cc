// The record ids in a table.
#pragma once

#include "upkeep/TableIds.h"
#include "upkeep/doctor/Finding.h"

namespace tsl {

// Throws CSqliteError.
TableIds CheckTable(const CConnection& connection, const std::string& table,
                    const std::string& subject, Findings& findings);

} // namespace tsl
