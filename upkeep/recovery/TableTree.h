// Walks a table's tree from its root down to the leaves, around what is damaged.
#pragma once

#include <functional>

#include "upkeep/recovery/BtreePage.h"
#include "upkeep/recovery/PageUse.h"

namespace tsl {

// Gets a leaf and its number. A page that the tree names but that says it is something else is
// handed on too, as what it may be: its cells must be judged one by one. Tells whether the page was
// of any use.
using LeafSink = std::function<bool(const CBtreePage& page, UINT32 number)>;

struct TreeWalk {
    UINT32 unreadablePages = 0; // named by the tree, but not there, or nothing that belongs to it
    bool hasGaps = false;       // some of the tree cannot be reached
};

// Pages that are used already are not visited again, so that no damage makes it go round in
// circles.
TreeWalk WalkTable(const CPageFile& file, UINT32 root, CPageUse& use, const LeafSink& onLeaf);

} // namespace tsl
