// What the statistics need of the rows of a database, fetched into the memory in one pass. The lock
// of the databases is held for a portion at a time and not while anything is counted: a host never
// waits for long, however large the store. Used by one thread.
#pragma once

#include <initializer_list>
#include <optional>
#include <string_view>

#include "upkeep/Connection.h"
#include "upkeep/statistics/Statistics.h"

namespace tsl {

class CFetchedRows {
public:
    // Reads the tables of a file. Records that are written or deleted meanwhile may be among the
    // rows or not. False when there is no file. Throws CFailure.
    bool Fetch(const std::wstring& path, std::initializer_list<std::wstring_view> tables);

    // Of the file, once it is fetched.
    std::int64_t Pages() const noexcept { return m_pages; }
    std::int64_t FreePages() const noexcept { return m_freePages; }

    // The figures of one table; those of an empty one where there was none.
    TableFigures CountTable(std::wstring_view table) const;

    // By user, application, action name, day and hour.
    void CountRecords(std::wstring_view table, StoreFigures& figures) const;

private:
    const CConnection& Open(const std::wstring& path);

    std::optional<CConnection> m_connection; // none before the file is fetched
    std::int64_t m_pages = 0;
    std::int64_t m_freePages = 0;
};

} // namespace tsl
