// The rows of a damaged database as they lie in its pages, without the engine.
#pragma once

#include "upkeep/recovery/FreshDatabase.h"
#include "upkeep/recovery/LeafRows.h"

namespace tsl {

struct PageRowsResult {
    Unread main;
    Unread kept;
    Unread orphans; // of the schema, and of pages that nothing leads to: their table is not known
    UINT64 orphanPages = 0;
    UINT64 skippedPages = 0; // that are free as far as can be told
};

// Called now and then with the number of pages that have been read.
using PageProgress = std::function<void(UINT64 pages)>;

// Adds the rows of all leaves: those that the tables lead to, then those that nothing leads to any
// more, unless they are free.
PageRowsResult ReadRowsOfPages(const CPageFile& file, const DatabaseTables& tables,
                               CFreshDatabase& fresh, const PageProgress& onProgress);

} // namespace tsl
