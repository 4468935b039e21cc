#include "upkeep/recovery/Record.h"

#include <algorithm>
#include <bit>

namespace tsl {

namespace {

constexpr size_t kMostColumns = 64;

// Types of a value; from kFirstBlob on, even ones are blobs and odd ones texts of a length.
constexpr UINT64 kNull = 0;
constexpr UINT64 kReal = 7;
constexpr UINT64 kZero = 8;
constexpr UINT64 kOne = 9;
constexpr UINT64 kFirstBlob = 12;

UINT64 SizeOf(UINT64 type) noexcept {
    constexpr UINT64 kSizes[kFirstBlob] = {0, 1, 2, 3, 4, 6, 8, 8, 0, 0, 0, 0};
    return type < kFirstBlob ? kSizes[type] : (type - kFirstBlob) / 2;
}

// Two types are kept for later; and there is a limit of the engine's to the length of a value.
bool IsPossible(UINT64 type) noexcept {
    constexpr UINT64 kLargestValue = 1'000'000'000;
    return (type <= kOne || type >= kFirstBlob) && SizeOf(type) <= kLargestValue;
}

INT64 ReadSigned(ByteView bytes) noexcept {
    UINT64 number = bytes[0] & 0x80 ? ~UINT64{0} : 0;
    for (const unsigned char byte : bytes)
        number = number << 8 | byte;
    return static_cast<INT64>(number);
}

// REQUIRES: the bytes are all there.
StoredValue ReadNumber(UINT64 type, ByteView bytes) noexcept {
    if (type == kZero) return INT64{0};
    if (type == kOne) return INT64{1};
    if (type == kReal) return std::bit_cast<double>(ReadSigned(bytes));
    return ReadSigned(bytes);
}

StoredValue ReadBytes(UINT64 type, ByteView bytes) {
    std::string copy(bytes.begin(), bytes.end());
    if (type % 2 == 0) return BlobValue{std::move(copy)};
    return copy;
}

} // namespace

bool ReadVarint(ByteView bytes, size_t& place, UINT64& value) noexcept {
    constexpr size_t kLongest = 9;
    value = 0;
    for (size_t count = 1; count <= kLongest; ++count) {
        if (place >= bytes.size()) return false;
        const unsigned char byte = bytes[place++];
        if (count == kLongest) {
            value = value << 8 | byte;
            return true;
        }
        value = value << 7 | (byte & 0x7Fu);
        if (byte < 0x80) return true;
    }
    return false;
}

UINT32 ReadBigEndian(ByteView bytes, size_t place, size_t count) noexcept {
    UINT32 number = 0;
    for (const unsigned char byte : bytes.subspan(place, count))
        number = number << 8 | byte;
    return number;
}

std::optional<RecordHeader> ReadRecordHeader(ByteView payload) {
    RecordHeader header;
    size_t place = 0;
    UINT64 size = 0;
    if (!ReadVarint(payload, place, size) || size > payload.size() || size < place) return {};
    header.size = static_cast<size_t>(size);
    const ByteView types = payload.first(header.size);
    while (place < types.size() && header.isSound) {
        UINT64 type = 0;
        header.isSound = ReadVarint(types, place, type) && IsPossible(type);
        if (!header.isSound) break;
        if (header.types.size() == kMostColumns) return {};
        header.types.push_back(type);
        header.bodySize += SizeOf(type);
    }
    return header;
}

std::vector<StoredValue> ReadRecordValues(const RecordHeader& header, ByteView payload,
                                          bool& isWhole) {
    isWhole = true;
    std::vector<StoredValue> values;
    ByteView rest = payload.subspan(std::min(header.size, payload.size()));
    for (const UINT64 type : header.types) {
        const auto size = static_cast<size_t>(SizeOf(type));
        const ByteView bytes = rest.first(std::min(size, rest.size()));
        const bool isThere = bytes.size() == size;
        isWhole = isWhole && isThere;
        if (type == kNull || (!isThere && (type < kFirstBlob || bytes.empty()))) {
            values.emplace_back();
        } else {
            values.push_back(type < kFirstBlob ? ReadNumber(type, bytes) : ReadBytes(type, bytes));
        }
        rest = rest.subspan(bytes.size());
    }
    return values;
}

} // namespace tsl
