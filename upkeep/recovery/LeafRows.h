// The rows of one leaf, read without the engine.
#pragma once

#include "upkeep/recovery/FoundTable.h"
#include "upkeep/recovery/RawRow.h"

namespace tsl {

// What could not be read.
struct Unread {
    UINT64 pages = 0; // named by a table but not to be read
    UINT64 rows = 0;  // of pages that could be read
};

// Hands on the rows of the page and counts those that are none any more. Of a page that does not
// say that it is a leaf only what is without doubt a record. Rows follow their chains into pages
// that no other has used; without a use of pages they do not.
void ForEachRow(const CPageFile& file, const CBtreePage& page, CPageUse* overflow,
                bool isActionTable, const RowSink& onRow, Unread& unread);

// Adds the rows of a page of the table to it; whether there was any.
bool AddRows(const CPageFile& file, const CBtreePage& page, CPageUse& overflow, CFoundTable& table,
             Unread& unread);

} // namespace tsl
