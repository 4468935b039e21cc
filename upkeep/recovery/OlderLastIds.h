// The table in which a store of the older form keeps its last id, read without the engine.
#pragma once

#include "upkeep/recovery/FreshDatabase.h"
#include "upkeep/recovery/PageFile.h"

namespace tsl {

// Brings it into the fresh database; whether there was any.
bool CopyLastIds(const CPageFile& file, const DatabaseTables& tables, CFreshDatabase& fresh);

} // namespace tsl
