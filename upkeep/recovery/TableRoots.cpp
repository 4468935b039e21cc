#include "upkeep/recovery/TableRoots.h"

#include "upkeep/recovery/RawRow.h"

namespace tsl {

namespace {

constexpr UINT32 kSchemaPage = 1;

// type, name, name of the table, root page, text
bool AddRoot(const std::vector<StoredValue>& values, std::map<std::string, UINT32>& roots) {
    constexpr size_t kSchemaColumns = 5;
    if (values.size() != kSchemaColumns) return false;
    const auto* const name = std::get_if<std::string>(&values[1]);
    const auto* const root = std::get_if<INT64>(&values[3]);
    if (!name || !root || *root < 0 || *root > 0xFFFFFFFF) return false;
    // A view has none.
    if (values[0] == StoredValue(std::string("table")) && *root > kSchemaPage)
        roots.emplace(*name, static_cast<UINT32>(*root));
    return true;
}

} // namespace

TableRoots ReadTableRoots(const CPageFile& file, CPageUse& use) {
    TableRoots tables;
    CPageUse overflow(file.PageCount());
    const TreeWalk walk = WalkTable(file, kSchemaPage, use, [&](const CBtreePage& page, UINT32) {
        for (size_t index = 0; index < page.CellCount(); ++index) {
            bool isWhole = false;
            const std::optional<LeafCell> cell = page.Cell(index);
            const auto values =
                cell ? ReadCell(file, page, *cell, &overflow, isWhole) : std::nullopt;
            if (!values || !AddRoot(*values, tables.roots)) tables.isWhole = false;
        }
        return !tables.roots.empty();
    });
    tables.isWhole = tables.isWhole && !walk.hasGaps;
    tables.unreadablePages = walk.unreadablePages;
    return tables;
}

} // namespace tsl
