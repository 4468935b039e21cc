// The table in which a store of the older form keeps its last id, read without the engine.
#pragma once

#include "upkeep/FreshDatabase.h"
#include "upkeep/PageFile.h"

namespace tsl {

// Brings it into the fresh database; whether there was any.
bool CopyLastIds(const CPageFile& file, const DatabaseTables& tables, CFreshDatabase& fresh);

} // namespace tsl
