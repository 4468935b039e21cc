#include "upkeep/recovery/OlderLastIds.h"

#include "upkeep/recovery/RawRow.h"
#include "upkeep/recovery/TableRoots.h"

namespace tsl {

bool CopyLastIds(const CPageFile& file, const DatabaseTables& tables, CFreshDatabase& fresh) {
    CPageUse use(file.PageCount());
    const TableRoots roots = ReadTableRoots(file, use);
    const auto root = roots.roots.find(tables.older);
    if (tables.older.empty() || root == roots.roots.end()) return false;
    bool isAny = false;
    CPageUse overflow(file.PageCount());
    WalkTable(file, root->second, use, [&](const CBtreePage& page, UINT32) {
        for (size_t index = 0; index < page.CellCount(); ++index) {
            const std::optional<LeafCell> cell = page.Cell(index);
            bool isWhole = false;
            const auto values =
                cell ? ReadCell(file, page, *cell, &overflow, isWhole) : std::nullopt;
            if (!values || !isWhole || values->size() != kRecordIdColumns.size()) continue;
            const auto* const row = std::get_if<INT64>(&(*values)[0]);
            const auto* const lastId = std::get_if<INT64>(&(*values)[1]);
            if (!row || !lastId) continue;
            fresh.AddLastId(*row, *lastId);
            isAny = true;
        }
        return true;
    });
    return isAny;
}

} // namespace tsl
