// The list of pages that a database does not use at present. They may hold rows that were deleted.
#pragma once

#include <vector>

#include "upkeep/recovery/PageFile.h"

namespace tsl {

struct FreeList {
    std::vector<UINT32> pages; // as far as the list can be followed
    bool isWhole = true;       // as many as the file says, each of them once
};

FreeList ReadFreeList(const CPageFile& file);

} // namespace tsl
