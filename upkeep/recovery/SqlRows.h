// The rows of a damaged table as far as the engine gets at them: from both ends, and beyond the
// gaps between.
#pragma once

#include "upkeep/Connection.h"

namespace tsl {

// False ends the reading.
using RowReader = std::function<bool(const StoredRow& row)>;

// Hands on every row that can be had, each once, those from the lower end first. A table that is
// not there or has other columns has none. Throws CFailure (Locked) when someone else is in the
// file; other failures of the engine only end the reading.
void ReadRowsBySql(const CConnection& damaged, const std::string& table, const RowReader& onRow);

} // namespace tsl
