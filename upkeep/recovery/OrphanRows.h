// The rows of leaves that no table leads to any more, and which table each belongs to.
#pragma once

#include "upkeep/recovery/LeafRows.h"
#include "upkeep/recovery/OrphanPages.h"

namespace tsl {

// A table that its own pages have been read of.
struct TableRead {
    CFoundTable* rows = nullptr; // null where the database has no such table
    bool hasGaps = false;        // some of its pages are not where they should be
};

class COrphanRows {
public:
    // mayBeFree: there are no more of them than free pages that are listed nowhere.
    COrphanRows(const CPageFile& file, CPageUse& overflow, const TableRead& main,
                const TableRead& kept, bool mayBeFree)
        : m_file(file), m_overflow(overflow), m_main(main), m_kept(kept), m_mayBeFree(mayBeFree) {}

    // Adds the rows of the tree to the main table, or to that of the kept records. False when they
    // are taken for deleted ones: the main table lacks nothing, and the pages may be free.
    bool Add(const OrphanTree& tree);

    // What could not be read.
    const Unread& Unreadable() const noexcept { return m_unread; }

private:
    void ForEachRowOf(const OrphanTree& tree, CPageUse* overflow, const RowSink& onRow,
                      Unread& unread) const;
    bool BelongsToKept(const OrphanTree& tree) const;
    CFoundTable& TableOf(const StoredRow& row) const;

    const CPageFile& m_file;
    CPageUse& m_overflow; // pages of chains that rows have used
    TableRead m_main;
    TableRead m_kept;
    bool m_mayBeFree;
    Unread m_unread;
};

} // namespace tsl
