// Figures of a store: what its tables and files hold, counted. Nothing is created or changed.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "upkeep/StorePaths.h"

namespace tsl {

// Records that have something in common, for example the user.
struct Tally {
    std::string name; // valid UTF-8; the number of a user or an application; empty for none
    std::int64_t records = 0;
};

struct DayTally {
    int day = 0; // whole days since 30 December 1899, UTC
    std::int64_t records = 0;
};

// Monday to Sunday, by the hour, UTC.
using HoursOfWeek = std::array<std::array<std::int64_t, 24>, 7>;

// One table. No spans where there are no records; a time that is NULL, or none from 1900 to 9999,
// counts as no date.
struct TableFigures {
    std::string name;
    std::int64_t records = 0;
    std::int64_t undated = 0;
    std::optional<std::int64_t> firstId;
    std::optional<std::int64_t> lastId;
    std::optional<double> firstTime; // OLE automation dates, UTC
    std::optional<double> lastTime;
};

struct FileFigures {
    std::wstring path;
    std::optional<std::uint64_t> bytes; // nothing for a file that is missing
    std::optional<std::int64_t> pages;  // of a database
    std::optional<std::int64_t> freePages;
};

struct StoreFigures {
    double taken = 0; // when; OLE automation date, UTC
    std::uint32_t nextId = 1;
    std::array<TableFigures, 3> tables; // action log, kept records of deleted items, replay log
    std::array<FileFigures, 4> files;   // the two databases, the counter, the user id list

    // Of the action log, most records first.
    std::vector<Tally> users;
    std::vector<Tally> applications;
    std::vector<Tally> actions;
    // Of the records with a date: by the day, the earliest first, only days with records.
    std::vector<DayTally> days;
    HoursOfWeek hours{};

    const TableFigures& ActionLog() const noexcept { return tables[0]; }
    bool IsEmpty() const noexcept;
};

// Waits for the locks as the component does and holds them only for moments while rows are fetched.
// A missing file or table counts as empty. Throws CFailure: NothingFound
// where not one of the files is there, Locked, Damaged or Denied.
StoreFigures ReadStoreFigures(const StorePaths& store);

} // namespace tsl
