#include "upkeep/recovery/PageLayouts.h"

#include <algorithm>

#include "upkeep/recovery/LeafRows.h"

namespace tsl {

namespace {

size_t CountRecords(CPageFile& file, const PageLayout& layout) {
    constexpr UINT32 kMostPages = 500;
    file.SetLayout(layout);
    size_t records = 0;
    CPageUse overflow(file.PageCount());
    PageBytes bytes;
    Unread ignored;
    for (UINT32 page = 2; page <= std::min(file.PageCount(), kMostPages); ++page) {
        if (!file.Read(page, bytes)) continue;
        const CBtreePage leaf(bytes, page, layout);
        if (leaf.Kind() != PageKind::Leaf) continue;
        ForEachRow(
            file, leaf, &overflow, /*isActionTable=*/false,
            [&](const StoredRow& row) { records += row.whole ? 1 : 0; }, ignored);
    }
    return records;
}

} // namespace

void ChooseLayout(CPageFile& file) {
    const PageLayout& told = file.Header().layout;
    if (told == kStoreLayout) return;
    const size_t asTold = CountRecords(file, told);
    if (asTold >= CountRecords(file, kStoreLayout)) file.SetLayout(told);
}

} // namespace tsl
