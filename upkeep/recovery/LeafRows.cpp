#include "upkeep/recovery/LeafRows.h"

namespace tsl {

void ForEachRow(const CPageFile& file, const CBtreePage& page, CPageUse* overflow,
                bool isActionTable, const RowSink& onRow, Unread& unread) {
    const bool isLeaf = page.Kind() == PageKind::Leaf;
    // Cells do not overlap. One that is wrong may seem to be as long as the page.
    size_t bytesLeft = size_t{2} * file.Layout().pageSize;
    for (size_t index = 0; index < page.CellCount(); ++index) {
        std::optional<LeafCell> cell = page.Cell(index);
        if (cell && cell->localSize > bytesLeft) cell.reset();
        if (cell) bytesLeft -= cell->localSize;
        const std::optional<StoredRow> row =
            cell ? ReadRow(file, page, *cell, overflow, isActionTable) : std::nullopt;
        if (row && (isLeaf || (row->whole && LooksLikeRecord(*row)))) {
            onRow(*row);
        } else if (isLeaf) {
            ++unread.rows;
        }
    }
}

bool AddRows(const CPageFile& file, const CBtreePage& page, CPageUse& overflow, CFoundTable& table,
             Unread& unread) {
    bool isAny = false;
    ForEachRow(
        file, page, &overflow, /*isActionTable=*/true,
        [&](const StoredRow& row) {
            table.Add(row, RowSource::Page);
            isAny = true;
        },
        unread);
    return isAny;
}

} // namespace tsl
