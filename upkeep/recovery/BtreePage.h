// A page of a table's tree: a leaf with rows, or an interior page with the numbers of the pages
// below it. Whatever the bytes are, nothing beyond them is read.
#pragma once

#include <optional>
#include <vector>

#include "upkeep/recovery/PageFile.h"

namespace tsl {

enum class PageKind { Leaf, Interior, Other };

// A row's place in a leaf: its first bytes lie in the page, the rest in a chain of other pages.
struct LeafCell {
    INT64 rowId = 0;
    UINT64 payloadSize = 0;
    size_t localPlace = 0;
    size_t localSize = 0;
    UINT32 overflowPage = 0; // 0: there is none
};

class CBtreePage {
public:
    // Keeps no copy of the bytes.
    CBtreePage(ByteView bytes, UINT32 number, const PageLayout& layout) noexcept;

    PageKind Kind() const noexcept { return m_kind; }
    // As the page says, but no more than have room in it.
    size_t CellCount() const noexcept { return m_cellCount; }

    // Nothing when the cell does not lie in the page. For a page that is no leaf too, whose first
    // byte may be all that is wrong with it.
    std::optional<LeafCell> Cell(size_t index) const;

    // The same cell for a payload of another size.
    LeafCell Resized(LeafCell cell, UINT64 payloadSize) const;

    // From the start of a cell's payload to the end of the page.
    ByteView From(const LeafCell& cell) const { return m_bytes.subspan(cell.localPlace); }

    // The pages below an interior page, from left to right; 0 for a cell that does not lie in the
    // page.
    std::vector<UINT32> Children() const;

private:
    bool IsUnused(size_t pointer) const;
    std::optional<size_t> CellPlace(size_t index, size_t headerSize) const;

    ByteView m_bytes;
    PageLayout m_layout;
    size_t m_start;
    PageKind m_kind = PageKind::Other;
    size_t m_cellCount = 0;
};

} // namespace tsl
