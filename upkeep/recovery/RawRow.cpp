#include "upkeep/recovery/RawRow.h"

#include <algorithm>

namespace tsl {

namespace {

// Longer ones are none of ours; the engine may read them still.
constexpr UINT64 kLargestPayload = 64 << 20;

bool FitsColumn(const StoredValue& value, const Column& column) {
    if (std::holds_alternative<std::monostate>(value)) return true;
    const bool isText = std::holds_alternative<std::string>(value);
    const bool isBlob = std::holds_alternative<BlobValue>(value);
    return column.sqlType == L"TEXT" ? isText : !isText && !isBlob;
}

} // namespace

PageBytes ReadPayload(const CPageFile& file, const CBtreePage& page, const LeafCell& cell,
                      CPageUse* overflow) {
    const ByteView local = page.From(cell).first(cell.localSize);
    PageBytes payload(local.begin(), local.end());
    const UINT64 size = std::min(cell.payloadSize, kLargestPayload);
    if (!overflow) return payload;
    PageBytes bytes;
    UINT32 next = cell.overflowPage;
    while (payload.size() < size && file.Read(next, bytes) && !overflow->IsUsed(next)) {
        overflow->Use(next);
        if (bytes.size() <= sizeof next) break;
        const size_t end = std::min<size_t>(bytes.size(), file.Layout().usable);
        const size_t count = std::min<size_t>(end - sizeof next, size - payload.size());
        const auto first = bytes.begin() + sizeof next;
        payload.insert(payload.end(), first, first + static_cast<std::ptrdiff_t>(count));
        next = ReadBigEndian(bytes, 0, sizeof next);
    }
    return payload;
}

std::optional<std::vector<StoredValue>> ReadCell(const CPageFile& file, const CBtreePage& page,
                                                 const LeafCell& cell, CPageUse* overflow,
                                                 bool& isWhole) {
    const ByteView room = page.From(cell);
    const std::optional<RecordHeader> header = ReadRecordHeader(room);
    if (!header) return {};
    // Where the two sizes differ, one is wrong; the values themselves tell theirs if they fit.
    const UINT64 size = header->size + header->bodySize;
    const bool isSound = size == cell.payloadSize;
    const LeafCell fitted = isSound || size > room.size() ? cell : page.Resized(cell, size);
    std::vector<StoredValue> values =
        ReadRecordValues(*header, ReadPayload(file, page, fitted, overflow), isWhole);
    isWhole = isWhole && isSound && header->isSound;
    return values;
}

std::optional<StoredRow> ReadRow(const CPageFile& file, const CBtreePage& page,
                                 const LeafCell& cell, CPageUse* overflow, bool isActionTable) {
    StoredRow row;
    row.rowId = cell.rowId;
    std::optional<std::vector<StoredValue>> values =
        ReadCell(file, page, cell, overflow, row.whole);
    if (!values) return {};
    const bool isWide = values->size() == row.values.size();
    if (!isWide && !isActionTable) return {};
    row.whole = row.whole && isWide;
    values->resize(row.values.size());
    std::ranges::move(*values, row.values.begin());
    if (row.whole) return row;
    for (size_t index = 0; index < row.values.size(); ++index) {
        if (!FitsColumn(row.values[index], kActionColumns[index])) row.values[index] = {};
    }
    return RecordIdOf(row) != 0 ? std::optional(std::move(row)) : std::nullopt;
}

bool LooksLikeRecord(const StoredRow& row) {
    return RecordIdOf(row) != 0 && std::ranges::equal(row.values, kActionColumns, FitsColumn);
}

UINT32 RecordIdOf(const StoredRow& row) {
    constexpr INT64 kHighest = 0xFFFFFFFF;
    const INT64* const id = std::get_if<INT64>(&row.values[kActionLogIdIndex]);
    return id && *id > 0 && *id <= kHighest ? static_cast<UINT32>(*id) : 0;
}

} // namespace tsl
