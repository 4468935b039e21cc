#include "upkeep/recovery/OrphanRows.h"

#include "recording/ActionFilters.h"

namespace tsl {

namespace {

// Only of those are there kept records.
bool IsOfDeletion(const StoredRow& row) {
    const auto* const name = std::get_if<std::string>(&row.values[kActionNameIndex]);
    return name && IsDeleteAction(std::wstring(name->begin(), name->end()));
}

} // namespace

void COrphanRows::ForEachRowOf(const OrphanTree& tree, CPageUse* overflow, const RowSink& onRow,
                               Unread& unread) const {
    PageBytes bytes;
    for (const UINT32 leaf : tree.leaves) {
        if (!m_file.Read(leaf, bytes)) continue;
        ForEachRow(m_file, CBtreePage(bytes, leaf, m_file.Layout()), overflow,
                   /*isActionTable=*/false, onRow, unread);
    }
}

// A kept record is one of the main table too. So a tree whose records are in the main table already
// is that of the kept ones: when they are all of deletions, when it is a tree of its own, or when
// the main table lacks nothing and the kept ones do.
bool COrphanRows::BelongsToKept(const OrphanTree& tree) const {
    if (!m_kept.rows || (m_main.hasGaps && !m_kept.hasGaps)) return false;
    UINT64 rows = 0;
    UINT64 known = 0;
    UINT64 deletions = 0;
    Unread ignored;
    // Ids and names lie in the leaves.
    ForEachRowOf(
        tree, /*overflow=*/nullptr,
        [&](const StoredRow& row) {
            ++rows;
            known += m_main.rows->HasRecord(row) ? 1 : 0;
            deletions += IsOfDeletion(row) ? 1 : 0;
        },
        ignored);
    if (!m_main.hasGaps && m_kept.hasGaps) return known > 0 || deletions == rows;
    return known * 2 > rows && (tree.IsTree() || deletions == rows);
}

CFoundTable& COrphanRows::TableOf(const StoredRow& row) const {
    const bool isKept = m_kept.rows && IsOfDeletion(row) && m_main.rows->HasRecord(row) &&
                        !m_main.rows->HasRow(row);
    return isKept ? *m_kept.rows : *m_main.rows;
}

bool COrphanRows::Add(const OrphanTree& tree) {
    CFoundTable* const known = BelongsToKept(tree) ? m_kept.rows : nullptr;
    if (m_mayBeFree && !m_main.hasGaps && !(known && m_kept.hasGaps)) return false;
    ForEachRowOf(
        tree, &m_overflow,
        [&](const StoredRow& row) {
            if (!LooksLikeRecord(row)) {
                ++m_unread.rows;
            } else {
                (known ? *known : TableOf(row)).Add(row, RowSource::Page);
            }
        },
        m_unread);
    return true;
}

} // namespace tsl
