// The pages of a database file as they lie on the disk, however damaged it is: without the engine.
// Used by one thread.
#pragma once

#include <string>
#include <vector>

#include "base/Handle.h"
#include "upkeep/recovery/Record.h"

namespace tsl {

// How the file is divided. Usable is what of each page holds data.
struct PageLayout {
    UINT32 pageSize;
    UINT32 usable;
    bool operator==(const PageLayout&) const = default;
};

// That of the component's own files.
inline constexpr PageLayout kStoreLayout{2048, 2048};

// The file's first 100 bytes. Numbers are as they lie there; nothing is believed.
inline constexpr size_t kFileHeaderSize = 100;
struct FileHeader {
    bool isDatabase = false; // it begins as every database does
    PageLayout layout = kStoreLayout;
    bool hasLayout = false;  // the page size is one that exists
    bool isRollback = false; // it is written by way of a rollback journal
    bool isWal = false;      // or of a write-ahead log, which only other programs ask for
    UINT32 pageCount = 0;
    UINT32 firstFreeTrunk = 0;
    UINT32 freeCount = 0;
    UINT32 mark = 0;     // the user version
    UINT32 encoding = 0; // of its texts: 1 is UTF-8
};

using PageBytes = std::vector<unsigned char>;

class CPageFile {
public:
    // Divides it as its header says. Throws CFailure when the file cannot be opened.
    explicit CPageFile(const std::wstring& path);

    const FileHeader& Header() const noexcept { return m_header; }
    const PageLayout& Layout() const noexcept { return m_layout; }
    void SetLayout(const PageLayout& layout) noexcept;

    UINT64 Size() const noexcept { return m_size; }

    // Pages are numbered from 1; the last one may be cut short.
    UINT32 PageCount() const noexcept { return m_pageCount; }

    // The page, shorter than a page where the file ends in it. False when there is no such page or
    // the disk does not give it.
    bool Read(UINT32 page, PageBytes& bytes) const;

private:
    bool ReadAt(UINT64 place, size_t size, PageBytes& bytes) const;

    CHandle m_file;
    UINT64 m_size = 0;
    FileHeader m_header;
    PageLayout m_layout = kStoreLayout;
    UINT32 m_pageCount = 0;
};

} // namespace tsl
