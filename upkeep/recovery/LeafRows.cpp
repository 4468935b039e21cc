#include "upkeep/recovery/LeafRows.h"

namespace tsl {

void ForEachRow(const CPageFile& file, const CBtreePage& page, bool isActionTable,
                const RowSink& onRow, Unread& unread) {
    const bool isLeaf = page.Kind() == PageKind::Leaf;
    for (size_t index = 0; index < page.CellCount(); ++index) {
        const std::optional<LeafCell> cell = page.Cell(index);
        const std::optional<StoredRow> row =
            cell ? ReadRow(file, page, *cell, isActionTable) : std::nullopt;
        if (row && (isLeaf || (row->whole && LooksLikeRecord(*row)))) {
            onRow(*row);
        } else if (isLeaf) {
            ++unread.rows;
        }
    }
}

bool AddRows(const CPageFile& file, const CBtreePage& page, CFoundTable& table, Unread& unread) {
    bool isAny = false;
    ForEachRow(
        file, page, /*isActionTable=*/true,
        [&](const StoredRow& row) {
            table.Add(row, RowSource::Page);
            isAny = true;
        },
        unread);
    return isAny;
}

} // namespace tsl
