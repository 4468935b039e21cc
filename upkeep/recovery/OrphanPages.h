// Leaves of a damaged database that no table leads to any more.
#pragma once

#include <vector>

#include "upkeep/recovery/PageFile.h"
#include "upkeep/recovery/PageUse.h"

namespace tsl {

// What is left of one tree. Those of a tree whose root is lost are each by themselves.
struct OrphanTree {
    UINT32 root = 0;
    std::vector<UINT32> leaves; // in the order of their numbers

    bool IsTree() const noexcept { return leaves.size() > 1 || leaves.front() != root; }
};

// The largest first: a table of which all is there is found before its remainders.
std::vector<OrphanTree> FindOrphans(const CPageFile& file, const CPageUse& use);

} // namespace tsl
