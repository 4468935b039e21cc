// Gives back the room that deleted records left in the databases.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

#include "upkeep/Progress.h"
#include "upkeep/StorePaths.h"

namespace tsl {

struct CompactedFile {
    std::wstring path;
    UINT64 sizeBefore = 0;
    UINT64 sizeAfter = 0;
};

// Rewrites the databases that are there without their free pages, under the lock of the databases;
// records, their order, the tables' texts and the header's mark stay. Throws CFailure, and the
// database it names is as it was then; nothing is begun when one of them is damaged.
std::vector<CompactedFile> CompactStore(const StorePaths& store, const Progress& progress);

} // namespace tsl
