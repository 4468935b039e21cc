#include "upkeep/statistics/ReportPage.h"

#include <cmath>
#include <filesystem>

#include "console/Text.h"
#include "upkeep/statistics/Calendar.h"
#include "upkeep/statistics/Charts.h"
#include "upkeep/statistics/Figures.h"
#include "upkeep/statistics/Html.h"
#include "upkeep/statistics/ReportStyle.h"
#include "upkeep/statistics/ReportTables.h"

namespace tsl {

namespace {

int DayOf(double time) {
    return static_cast<int>(std::floor(time));
}

std::int64_t Count(const std::vector<Tally>& tallies) {
    return static_cast<std::int64_t>(tallies.size());
}

// A paragraph below a heading says what is to be seen. Content is HTML.
std::string Section(const std::string& id, const std::string& heading, const std::string& words,
                    const std::string& content) {
    std::string section = "<section id=\"" + id + "\" aria-labelledby=\"" + id + "-heading\">\n" +
                          "<h2 id=\"" + id + "-heading\">" + heading + "</h2>\n";
    if (!words.empty()) section += Element("p", "words", words);
    return section + content + "</section>\n";
}

// Nothing is loaded, run or sent, whatever a name of the store should bring into the page. Styles
// stand in the page, some of them, places on an axis, with their elements.
constexpr char kPolicy[] =
    "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; "
    "style-src 'unsafe-inline'; base-uri 'none'; form-action 'none'\"/>\n";

std::string Head(const StoreFigures& figures) {
    return std::string("<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\"/>\n") +
           kPolicy +
           "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\"/>\n"
           "<meta name=\"color-scheme\" content=\"light dark\"/>\n<title>Action log, " +
           SpokenDay(DayOf(figures.taken)) + "</title>\n<style>\n" + kReportStyle +
           "</style>\n</head>\n<body>\n";
}

// "Records of 2 users in 5 applications, from 1 Nov 2026 to 20 Nov 2026."
std::string Summary(const StoreFigures& figures) {
    const TableFigures& log = figures.ActionLog();
    if (log.records == 0) return "There is no action in it.";
    std::string summary = "What " + Counted(Count(figures.users), "user", "users") + " did in " +
                          Counted(Count(figures.applications), "application", "applications");
    if (log.firstTime && log.lastTime) {
        const std::string first = SpokenDay(DayOf(*log.firstTime));
        const std::string last = SpokenDay(DayOf(*log.lastTime));
        summary += first == last ? " on " + first : " from " + first + " to " + last;
    }
    return summary + ".";
}

std::string Header(const StoreFigures& figures) {
    const auto folder = std::filesystem::path(figures.files[0].path).parent_path().wstring();
    return "<header>\n" + Element("h1", "", "Action log") +
           Element("p", "summary", Summary(figures)) +
           Element("p", "words",
                   "Counted on " + DayAndTime(figures.taken) + " in <bdi>" +
                       EscapeHtml(ToUtf8(folder)) + "</bdi>. All times are UTC.") +
           "</header>\n";
}

std::string Tile(const std::string& name, const std::string& figure) {
    return Element("div", "", Element("dt", "", name) + Element("dd", "", figure));
}

std::string Tiles(const StoreFigures& figures) {
    std::uint64_t bytes = 0;
    for (const FileFigures& file : figures.files)
        bytes += file.bytes.value_or(0);
    return Element("dl", "tiles",
                   Tile("Records", Grouped(figures.ActionLog().records)) +
                       Tile("Different actions", Grouped(Count(figures.actions))) +
                       Tile("Applications", Grouped(Count(figures.applications))) +
                       Tile("Users", Grouped(Count(figures.users))) +
                       Tile("On disk", FileSize(bytes)) +
                       Tile("Next record id", std::to_string(figures.nextId)));
}

std::string UndatedWords(const StoreFigures& figures) {
    const std::int64_t undated = figures.ActionLog().undated;
    if (undated == 0) return {};
    return std::string(" ").append(Counted(undated, "record has", "records have")) +
           " no date from 1900 to 9999 and " + (undated == 1 ? "is" : "are") + " not among them.";
}

// The charts over time, and their figures as tables.
std::string Times(const StoreFigures& figures, std::string& tables) {
    if (figures.days.empty()) {
        return Section("time", "Records over time", "No record has a date from 1900 to 9999.", "");
    }
    const TimeBins bins = MakeTimeBins(figures.days);
    tables = Section("numbers", "The charts in numbers", "",
                     Element("div", "pair", TimeTable(bins) + HoursTable(figures.hours)));
    return Section("time", std::string("Records per ").append(UnitName(bins.unit)),
                   BusiestWords(bins) + UndatedWords(figures), RecordsChart(bins)) +
           Section("week", "Hours of the week",
                   "All weeks put together. " + BusiestWords(figures.hours),
                   HoursChart(figures.hours)) +
           Section("rise", "Growth", "The records that are in the store now, added up.",
                   GrowthChart(bins));
}

std::string TopLists(const StoreFigures& figures) {
    return Section("actions", "Actions", "What was done most often.",
                   TopTable("Actions", "", figures.actions)) +
           Element("div", "pair",
                   Section("applications", "Applications", "Where it was done.",
                           TopTable("Applications", "Application", figures.applications)) +
                       Section("users", "Users", "Who did it, by the numbers of the user list.",
                               TopTable("Users", "User", figures.users)));
}

std::string Store(const StoreFigures& figures) {
    return Section("store", "The store", "Its tables, and its files on the disk.",
                   RecordsTable(figures) + TimesTable(figures) + FilesTable(figures));
}

} // namespace

std::string ReportPage(const StoreFigures& figures) {
    std::string page = Head(figures) + Header(figures) + "<main>\n";
    std::string tables;
    if (figures.ActionLog().records > 0) {
        page += Tiles(figures) + Times(figures, tables) + TopLists(figures);
    } else if (figures.IsEmpty()) {
        page += Element("p", "empty",
                        "This store is empty: no action has been recorded yet, or all records "
                        "have been deleted.");
    }
    return page + Store(figures) + tables + "</main>\n" +
           Element("footer", "", Element("p", "", "Made by <code>tslhost report</code>.")) +
           "</body>\n</html>\n";
}

} // namespace tsl
