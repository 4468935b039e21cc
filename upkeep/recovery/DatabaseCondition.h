// Whether a database of the store is whole: the engine finds nothing wrong with it, and it has
// exactly the tables that the component makes.
#pragma once

#include <windows.h>

#include <string>

#include "upkeep/recovery/StoreTables.h"

namespace tsl {

struct DatabaseCondition {
    std::string damage; // what is wrong, in words; empty when it is whole
    UINT32 highestId = 0;
    bool isOlderForm = false; // there is the table of the last id
};

// Throws CFailure (Locked) when someone else is in the file.
DatabaseCondition ExamineDatabase(const std::wstring& path, const DatabaseTables& tables);

} // namespace tsl
