#include "upkeep/recovery/BtreePage.h"

#include <algorithm>

namespace tsl {

namespace {

constexpr size_t kLeafHeaderSize = 8;
constexpr size_t kInteriorHeaderSize = 12;
constexpr size_t kPointerSize = 4;

PageKind KindOf(unsigned char type) noexcept {
    if (type == 0x0D) return PageKind::Leaf;
    return type == 0x05 ? PageKind::Interior : PageKind::Other;
}

// How much of a payload the leaf itself holds.
UINT64 LocalSize(UINT64 payloadSize, UINT64 usable) noexcept {
    const UINT64 most = usable - 35;
    if (payloadSize <= most) return payloadSize;
    const UINT64 least = (usable - 12) * 32 / 255 - 23;
    const UINT64 wanted = least + (payloadSize - least) % (usable - kPointerSize);
    return wanted <= most ? wanted : least;
}

} // namespace

CBtreePage::CBtreePage(ByteView bytes, UINT32 number, const PageLayout& layout) noexcept
    : m_bytes(bytes.first(std::min<size_t>(bytes.size(), layout.usable))), m_layout(layout),
      m_start(number == 1 ? kFileHeaderSize : 0) {
    if (m_bytes.size() < m_start + kInteriorHeaderSize) return;
    m_kind = KindOf(m_bytes[m_start]);
    constexpr size_t kSmallestCell = 4;
    const size_t room = (m_bytes.size() - m_start - kLeafHeaderSize) / (2 + kSmallestCell);
    m_cellCount = std::min<size_t>(ReadBigEndian(m_bytes, m_start + 3, 2), room);
    // Where the count is wrong, what follows the pointers is mostly room that was never used.
    const size_t header = m_kind == PageKind::Interior ? kInteriorHeaderSize : kLeafHeaderSize;
    while (m_cellCount > 0 && IsUnused(m_start + header + 2 * (m_cellCount - 1)))
        --m_cellCount;
}

bool CBtreePage::IsUnused(size_t pointer) const {
    return pointer + 2 > m_bytes.size() || ReadBigEndian(m_bytes, pointer, 2) == 0;
}

std::optional<size_t> CBtreePage::CellPlace(size_t index, size_t headerSize) const {
    const size_t pointer = m_start + headerSize + 2 * index;
    if (index >= m_cellCount) return {};
    const size_t place = ReadBigEndian(m_bytes, pointer, 2);
    const bool isInside = place >= m_start + headerSize && place + kPointerSize <= m_bytes.size();
    return isInside ? std::optional(place) : std::nullopt;
}

std::optional<LeafCell> CBtreePage::Cell(size_t index) const {
    const std::optional<size_t> found = CellPlace(index, kLeafHeaderSize);
    if (!found) return {};
    LeafCell cell;
    size_t place = *found;
    UINT64 rowId = 0;
    if (!ReadVarint(m_bytes, place, cell.payloadSize) || !ReadVarint(m_bytes, place, rowId))
        return {};
    cell.rowId = static_cast<INT64>(rowId);
    cell.localPlace = place;
    return Resized(cell, cell.payloadSize);
}

LeafCell CBtreePage::Resized(LeafCell cell, UINT64 payloadSize) const {
    const UINT64 local = LocalSize(payloadSize, m_layout.usable);
    cell.payloadSize = payloadSize;
    cell.localSize = static_cast<size_t>(std::min<UINT64>(local, From(cell).size()));
    const size_t pointer = cell.localPlace + cell.localSize;
    const bool hasPointer = local < payloadSize && pointer + kPointerSize <= m_bytes.size();
    cell.overflowPage = hasPointer ? ReadBigEndian(m_bytes, pointer, kPointerSize) : 0;
    return cell;
}

std::vector<UINT32> CBtreePage::Children() const {
    std::vector<UINT32> children;
    if (m_kind != PageKind::Interior) return children;
    for (size_t index = 0; index < m_cellCount; ++index) {
        const std::optional<size_t> place = CellPlace(index, kInteriorHeaderSize);
        children.push_back(place ? ReadBigEndian(m_bytes, *place, kPointerSize) : 0);
    }
    children.push_back(ReadBigEndian(m_bytes, m_start + kLeafHeaderSize, kPointerSize));
    return children;
}

} // namespace tsl
