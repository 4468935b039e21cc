#include <algorithm>
#include <filesystem>

#include "console/Table.h"
#include "console/Text.h"
#include "upkeep/statistics/Calendar.h"
#include "upkeep/statistics/Figures.h"
#include "upkeep/statistics/StatisticsOutput.h"

namespace tsl {

namespace {

using Lines = std::vector<std::string>;

constexpr char kNothing[] = "-";

std::string NumberOrNone(const std::optional<std::int64_t>& number) {
    return number ? Grouped(*number) : kNothing;
}

// Ids are names rather than amounts.
std::string IdOrNone(const std::optional<std::int64_t>& id) {
    return id ? std::to_string(*id) : kNothing;
}

std::string TimeOrNone(const std::optional<double>& time) {
    return time ? DayAndTime(*time) : kNothing;
}

void AddSection(Lines& lines, const std::string& title, const CTable& table, size_t width) {
    lines.push_back("");
    lines.push_back(title);
    std::ranges::move(table.Lines(width), std::back_inserter(lines));
}

CTable FilesText(const StoreFigures& figures) {
    CTable table({{"file"}, {"size", true}, {"bytes", true}, {"pages", true}, {"free", true}});
    for (const FileFigures& file : figures.files) {
        table.Add({ToUtf8(std::filesystem::path(file.path).filename().wstring()),
                   file.bytes ? FileSize(*file.bytes) : "missing",
                   file.bytes ? Grouped(static_cast<std::int64_t>(*file.bytes)) : kNothing,
                   NumberOrNone(file.pages), NumberOrNone(file.freePages)});
    }
    return table;
}

CTable RecordsText(const StoreFigures& figures) {
    CTable table({{"table"}, {"records", true}, {"first id", true}, {"last id", true}});
    for (const TableFigures& each : figures.tables) {
        table.Add(
            {each.name, Grouped(each.records), IdOrNone(each.firstId), IdOrNone(each.lastId)});
    }
    return table;
}

CTable TimesText(const StoreFigures& figures) {
    CTable table({{"table"}, {"first"}, {"last"}, {"no date", true}});
    for (const TableFigures& each : figures.tables) {
        table.Add({each.name, TimeOrNone(each.firstTime), TimeOrNone(each.lastTime),
                   Grouped(each.undated)});
    }
    return table;
}

// What they have in common comes last, for it may have to be cut.
CTable TopTable(const std::string& what, std::span<const Tally> tallies, size_t count) {
    CTable table({{"records", true}, {"share", true}, {what}});
    const std::int64_t sum = Sum(tallies);
    const TopTallies top = Top(tallies, count);
    for (const Tally& tally : top.shown) {
        table.Add({Grouped(tally.records), Share(tally.records, sum),
                   tally.name.empty() ? "(none)" : tally.name});
    }
    if (top.others > 0) {
        table.Add({Grouped(top.otherRecords), Share(top.otherRecords, sum),
                   Grouped(static_cast<std::int64_t>(top.others)) + " others"});
    }
    return table;
}

std::vector<Tally> BusiestDays(const StoreFigures& figures) {
    std::vector<Tally> days;
    days.reserve(figures.days.size());
    for (const DayTally& day : figures.days) {
        days.push_back({IsoDay(day.day) + " " + std::string(ShortWeekdayName(WeekdayOf(day.day))),
                        day.records});
    }
    std::ranges::stable_sort(days, std::ranges::greater(), &Tally::records);
    return days;
}

// A digit an hour: ninths of the busiest one, rounded up; a dot for an hour without records.
void AddHours(Lines& lines, const HoursOfWeek& hours) {
    const std::int64_t busiest = Busiest(hours);
    lines.push_back("");
    lines.push_back("Hours of the week (UTC; 9 is up to " + Counted(busiest, "record", "records") +
                    ")");
    std::string head = "    ";
    for (int hour = 0; hour < 24; hour += 3)
        head += HourName(static_cast<size_t>(hour)) + "    ";
    lines.push_back(head + "    records");
    for (size_t day = 0; day < hours.size(); ++day) {
        std::string line(ShortWeekdayName(day));
        std::int64_t sum = 0;
        for (const std::int64_t records : hours[day]) {
            sum += records;
            line += ' ';
            line += records == 0 ? '.' : static_cast<char>('0' + (records * 9 - 1) / busiest + 1);
        }
        const std::string total = Grouped(sum);
        line.append(12 - std::min<size_t>(total.size(), 12), ' ').append(total);
        lines.push_back(std::move(line));
    }
}

std::string WithCount(const std::string& what, size_t count) {
    return what + " (" + Grouped(static_cast<std::int64_t>(count)) + ")";
}

} // namespace

Lines StatisticsLines(const StoreFigures& figures, size_t top, size_t width) {
    Lines lines;
    const std::filesystem::path folder = std::filesystem::path(figures.files[0].path).parent_path();
    lines.push_back("Action log in " + ToUtf8(folder.wstring()));
    lines.push_back("Next record id " + std::to_string(figures.nextId));
    AddSection(lines, "Files", FilesText(figures), width);
    AddSection(lines, "Tables", RecordsText(figures), width);
    AddSection(lines, "Times (UTC)", TimesText(figures), width);
    if (figures.ActionLog().records == 0) return lines;
    AddSection(lines, WithCount("Users", figures.users.size()),
               TopTable("user", figures.users, top), width);
    AddSection(lines, WithCount("Applications", figures.applications.size()),
               TopTable("application", figures.applications, top), width);
    AddSection(lines, WithCount("Actions", figures.actions.size()),
               TopTable("action", figures.actions, top), width);
    if (figures.days.empty()) return lines;
    AddSection(lines, WithCount("Busiest days (UTC)", figures.days.size()),
               TopTable("day", BusiestDays(figures), top), width);
    AddHours(lines, figures.hours);
    return lines;
}

} // namespace tsl
