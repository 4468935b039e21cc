#include "upkeep/recovery/PageFile.h"

#include <algorithm>
#include <bit>
#include <string_view>

#include "upkeep/CheckedFiles.h"

namespace tsl {

namespace {

constexpr std::string_view kMagic("SQLite format 3\0", 16);

void ReadLayout(ByteView bytes, FileHeader& header) {
    constexpr UINT32 kSmallest = 512;
    constexpr UINT32 kLargest = 65536; // stands there as 1
    constexpr UINT32 kLeastUsable = 480;
    const UINT32 stored = ReadBigEndian(bytes, 16, 2);
    const UINT32 pageSize = stored == 1 ? kLargest : stored;
    const UINT32 reserved = bytes[20];
    if (pageSize < kSmallest || !std::has_single_bit(pageSize)) return;
    if (pageSize - reserved < kLeastUsable) return;
    header.layout = {pageSize, pageSize - reserved};
    header.hasLayout = true;
}

FileHeader ParseHeader(ByteView bytes) {
    FileHeader header;
    if (bytes.size() < kFileHeaderSize) return header;
    header.isDatabase = std::equal(kMagic.begin(), kMagic.end(), bytes.begin(),
                                   [](char expected, unsigned char byte) {
                                       return static_cast<unsigned char>(expected) == byte;
                                   });
    ReadLayout(bytes, header);
    header.isRollback = bytes[18] == 1 && bytes[19] == 1;
    header.isWal = bytes[18] == 2 && bytes[19] == 2;
    header.pageCount = ReadBigEndian(bytes, 28, 4);
    header.firstFreeTrunk = ReadBigEndian(bytes, 32, 4);
    header.freeCount = ReadBigEndian(bytes, 36, 4);
    header.encoding = ReadBigEndian(bytes, 56, 4);
    header.mark = ReadBigEndian(bytes, 60, 4);
    return header;
}

} // namespace

CPageFile::CPageFile(const std::wstring& path)
    : m_file(OpenStoreFile("cannot read", path, GENERIC_READ, kShareAll)) {
    LARGE_INTEGER size{};
    GetFileSizeEx(m_file.Get(), &size);
    m_size = static_cast<UINT64>(size.QuadPart);
    PageBytes first;
    if (ReadAt(0, kFileHeaderSize, first)) m_header = ParseHeader(first);
    SetLayout(m_header.layout);
}

void CPageFile::SetLayout(const PageLayout& layout) noexcept {
    constexpr UINT64 kMostPages = 0xFFFFFFFE;
    m_layout = layout;
    const UINT64 count = (m_size + layout.pageSize - 1) / layout.pageSize;
    m_pageCount = static_cast<UINT32>(std::min(count, kMostPages));
}

bool CPageFile::Read(UINT32 page, PageBytes& bytes) const {
    if (page == 0 || page > m_pageCount) return false;
    return ReadAt(UINT64{page - 1} * m_layout.pageSize, m_layout.pageSize, bytes);
}

bool CPageFile::ReadAt(UINT64 place, size_t size, PageBytes& bytes) const {
    if (place >= m_size) return false;
    bytes.resize(size);
    OVERLAPPED at{};
    at.Offset = static_cast<DWORD>(place);
    at.OffsetHigh = static_cast<DWORD>(place >> 32);
    DWORD read = 0;
    if (!ReadFile(m_file.Get(), bytes.data(), static_cast<DWORD>(size), &read, &at)) read = 0;
    bytes.resize(read);
    return read > 0;
}

} // namespace tsl
