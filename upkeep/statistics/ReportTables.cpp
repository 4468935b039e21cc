#include "upkeep/statistics/ReportTables.h"

#include <filesystem>

#include "console/Text.h"
#include "upkeep/statistics/Calendar.h"
#include "upkeep/statistics/Charts.h"
#include "upkeep/statistics/Figures.h"
#include "upkeep/statistics/Html.h"

namespace tsl {

namespace {

constexpr size_t kMostShown = 12;
constexpr size_t kLongestName = 120; // bytes; longer ones are cut

constexpr char kNone[] = "\u2013";

// Names may be as long as one likes. None is cut within a character.
std::string Shortened(const std::string& name) {
    if (name.size() <= kLongestName) return name;
    size_t end = kLongestName;
    while ((static_cast<unsigned char>(name[end]) & 0xC0) == 0x80)
        --end;
    return name.substr(0, end) + "\u2026";
}

// Set apart, so that a name in a script from right to left turns nothing round it.
std::string NameCell(const std::string& kind, const std::string& name) {
    if (name.empty()) return "<i>none</i>";
    return (kind.empty() ? "" : kind + " ") + "<bdi>" + EscapeHtml(Shortened(name)) + "</bdi>";
}

std::string NumberCell(const std::optional<std::int64_t>& number) {
    return number ? Grouped(*number) : kNone;
}

std::string IdCell(const std::optional<std::int64_t>& id) {
    return id ? std::to_string(*id) : kNone;
}

// To be broken between the day and the time only.
std::string TimeCell(const std::optional<double>& time) {
    if (!time) return kNone;
    const std::string text = DayAndTime(*time);
    const size_t gap = text.find(' ');
    return "<span>" + text.substr(0, gap) + "</span> <span>" + text.substr(gap + 1) + "</span>";
}

// May be broken behind the prefix, where there is little room.
std::string TableCell(const std::string& name) {
    std::string cell = EscapeHtml(name);
    return cell.insert(cell.find('_') + 1, "<wbr/>");
}

std::string FileCell(const std::wstring& path) {
    return EscapeHtml(ToUtf8(std::filesystem::path(path).filename().wstring()));
}

} // namespace

std::string TopTable(const std::string& caption, const std::string& kind,
                     const std::vector<Tally>& tallies) {
    CHtmlTable table(caption, {{kind.empty() ? "Name" : kind}, {"Records", true}, {"Share", true}},
                     "top");
    const std::int64_t sum = Sum(tallies);
    const TopTallies top = Top(tallies, kMostShown);
    for (const Tally& tally : top.shown) {
        const std::string share = Share(tally.records, sum);
        table.Add({NameCell(kind, tally.name) +
                       ShareBar(tally.records, tallies.front().records, share + " of all records"),
                   Grouped(tally.records), EscapeHtml(share)});
    }
    if (top.others > 0) {
        table.Add(
            {"<i>" + Counted(static_cast<std::int64_t>(top.others), "other", "others") + "</i>",
             Grouped(top.otherRecords), EscapeHtml(Share(top.otherRecords, sum))});
    }
    return table.Html();
}

std::string RecordsTable(const StoreFigures& figures) {
    CHtmlTable table("Records and their ids",
                     {{"Table"}, {"Records", true}, {"First id", true}, {"Last id", true}});
    for (const TableFigures& each : figures.tables) {
        table.Add({TableCell(each.name), Grouped(each.records), IdCell(each.firstId),
                   IdCell(each.lastId)});
    }
    return table.Html();
}

std::string TimesTable(const StoreFigures& figures) {
    CHtmlTable table("Times (UTC)", {{"Table"}, {"First"}, {"Last"}, {"No date", true}});
    for (const TableFigures& each : figures.tables) {
        table.Add({TableCell(each.name), TimeCell(each.firstTime), TimeCell(each.lastTime),
                   Grouped(each.undated)});
    }
    return table.Html();
}

std::string FilesTable(const StoreFigures& figures) {
    CHtmlTable table("Files", {{"File"}, {"Size", true}, {"Pages", true}, {"Free pages", true}});
    for (const FileFigures& file : figures.files) {
        table.Add({FileCell(file.path), file.bytes ? FileSize(*file.bytes) : "missing",
                   NumberCell(file.pages), NumberCell(file.freePages)});
    }
    return table.Html();
}

std::string TimeTable(const TimeBins& bins) {
    const std::string className = UnitName(bins.unit);
    std::string unit = className;
    const std::string caption = "Records per " + unit + " (UTC)";
    unit.front() = static_cast<char>(unit.front() - 'a' + 'A');
    CHtmlTable table(caption, {{unit}, {"Records", true}, {"Up to then", true}}, className);
    for (const TimeBin& bin : bins.bins)
        table.Add({BinName(bins.unit, bin.firstDay), Grouped(bin.records), Grouped(bin.total)});
    return table.Html();
}

std::string HoursTable(const HoursOfWeek& hours) {
    std::vector<HtmlColumn> columns = {{"Hour"}};
    for (size_t day = 0; day < hours.size(); ++day)
        columns.push_back({std::string(ShortWeekdayName(day)), true});
    CHtmlTable table("Records by hour of the week (UTC)", std::move(columns));
    for (size_t hour = 0; hour < hours.front().size(); ++hour) {
        std::vector<std::string> cells = {HourName(hour)};
        for (const auto& day : hours)
            cells.push_back(Grouped(day[hour]));
        table.Add(cells);
    }
    return table.Html();
}

} // namespace tsl
