// The record format of SQLite's tables: a header of types, and the values. Whatever the bytes are,
// nothing beyond them is read.
#pragma once

#include <optional>
#include <span>
#include <vector>

#include "upkeep/StoredValue.h"

namespace tsl {

using ByteView = std::span<const unsigned char>;

// Reads a number of 1 to 9 bytes and moves the place behind it; false where it does not end.
bool ReadVarint(ByteView bytes, size_t& place, UINT64& value) noexcept;

// Reads up to 4 bytes, the highest first. REQUIRES: they are there.
UINT32 ReadBigEndian(ByteView bytes, size_t place, size_t count) noexcept;

// What the values of a record are and how long, which its beginning tells.
struct RecordHeader {
    std::vector<UINT64> types;
    size_t size = 0;
    UINT64 bodySize = 0;
    bool isSound = true; // else only the columns before the first whose type cannot be
};

// Nothing for what is no header: of a length that does not fit, or with more columns than any table
// of ours has.
std::optional<RecordHeader> ReadRecordHeader(ByteView payload);

// The values, as far as the payload goes. A text that is cut stays as far as it is there; other
// values that are not there become NULL. isWhole tells whether anything was missing.
std::vector<StoredValue> ReadRecordValues(const RecordHeader& header, ByteView payload,
                                          bool& isWhole);

} // namespace tsl
