// Rows out of the bytes of a page, without the engine.
#pragma once

#include "upkeep/recovery/BtreePage.h"
#include "upkeep/recovery/PageUse.h"

namespace tsl {

// The payload of a cell as far as its pages can be followed: a page belongs to one row, so a chain
// ends at one that is in use, be it by itself. Without a use only what the leaf holds.
PageBytes ReadPayload(const CPageFile& file, const CBtreePage& page, const LeafCell& cell,
                      CPageUse* overflow);

// The values of a cell that is a record at all. isWhole: all of them are there, and the cell says
// nothing that contradicts itself.
std::optional<std::vector<StoredValue>> ReadCell(const CPageFile& file, const CBtreePage& page,
                                                 const LeafCell& cell, CPageUse* overflow,
                                                 bool& isWhole);

// A cell as a row of an action table. Where something is wrong with it, it counts while it has an
// id that can be one; values that cannot be those of their columns become NULL then. Unless it is
// known that the page is of an action table, all columns must be there.
std::optional<StoredRow> ReadRow(const CPageFile& file, const CBtreePage& page,
                                 const LeafCell& cell, CPageUse* overflow, bool isActionTable);

// Whether all values can be those of a record.
bool LooksLikeRecord(const StoredRow& row);

// The record id of a row; 0 when it is none.
UINT32 RecordIdOf(const StoredRow& row);

} // namespace tsl
