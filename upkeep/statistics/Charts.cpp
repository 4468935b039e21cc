#include "upkeep/statistics/Charts.h"

#include <algorithm>
#include <cstdio>
#include <iterator>

#include "upkeep/statistics/Calendar.h"
#include "upkeep/statistics/Figures.h"
#include "upkeep/statistics/Html.h"

namespace tsl {

namespace {

constexpr int kColumnWidth = 10; // of a bin, in units of the drawing
constexpr int kHeight = 100;
constexpr int kField = 10; // side of a field of the week

// Two decimals at the most.
std::string Place(double place) {
    char text[32];
    std::snprintf(text, std::size(text), "%.2f", place);
    std::string shortened(text);
    shortened.erase(shortened.find_last_not_of('0') + 1);
    if (shortened.ends_with('.')) shortened.pop_back();
    return shortened;
}

std::string Rectangle(const std::string& className, double x, double y, double width, double height,
                      const std::string& title) {
    return "<rect class=\"" + className + "\" x=\"" + Place(x) + "\" y=\"" + Place(y) +
           "\" width=\"" + Place(width) + "\" height=\"" + Place(height) + "\"><title>" +
           EscapeHtml(title) + "</title></rect>\n";
}

// An image for whoever cannot see it, too.
std::string Drawing(const std::string& id, int width, int height, const std::string& title,
                    const std::string& description, const std::string& content) {
    return "<svg class=\"" + id + "\" viewBox=\"0 0 " + std::to_string(width) + " " +
           std::to_string(height) + "\" preserveAspectRatio=\"none\" role=\"img\" " +
           "aria-labelledby=\"" + id + "-title " + id + "-text\">\n<title id=\"" + id +
           "-title\">" + EscapeHtml(title) + "</title>\n<desc id=\"" + id + "-text\">" +
           EscapeHtml(description) + "</desc>\n" + content + "</svg>\n";
}

// The upper end of an axis, an even number so that its middle is whole.
std::int64_t EndOfAxis(std::int64_t most) {
    for (std::int64_t power = 1;; power *= 10) {
        for (const std::int64_t digit : {1, 2, 3, 4, 5, 6, 8}) {
            const std::int64_t end = digit * power;
            if (end >= most && end % 2 == 0) return end;
        }
    }
}

std::string GridLines(int width) {
    std::string lines;
    for (const int height : {0, kHeight / 2, kHeight}) {
        const std::string y = std::to_string(height);
        lines.append("<line class=\"grid\" x1=\"0\" y1=\"").append(y).append("\" x2=\"");
        lines.append(std::to_string(width)).append("\" y2=\"").append(y).append("\"/>\n");
    }
    return lines;
}

// Names below the first bin, the last one and two between.
std::string TimeLabels(const TimeBins& bins) {
    const size_t last = bins.bins.size() - 1;
    const size_t count = std::min<size_t>(last, 3);
    std::string labels;
    size_t before = bins.bins.size();
    for (size_t label = 0; label <= count; ++label) {
        const size_t bin = count == 0 ? 0 : label * last / count;
        if (bin == before) continue;
        before = bin;
        const double middle =
            100.0 * (static_cast<double>(bin) + 0.5) / static_cast<double>(bins.bins.size());
        labels += "<span style=\"left:" + Place(middle) + "%\">" +
                  ShortBinName(bins.unit, bins.bins[bin].firstDay) + "</span>";
    }
    return labels;
}

// The drawing between its axes.
std::string Plot(const TimeBins& bins, std::int64_t end, const std::string& drawing) {
    const std::string numbers =
        "<span>" + Grouped(end) + "</span><span>" + Grouped(end / 2) + "</span><span>0</span>";
    return "<div class=\"plot\">\n<div class=\"y\" aria-hidden=\"true\">" + numbers + "</div>\n" +
           drawing + "<div class=\"x\" aria-hidden=\"true\">" + TimeLabels(bins) +
           "</div>\n</div>\n";
}

std::string FromTo(const TimeBins& bins) {
    return "from " + BinName(bins.unit, bins.bins.front().firstDay) + " to " +
           BinName(bins.unit, bins.bins.back().firstDay);
}

const TimeBin& BinOfMost(const TimeBins& bins) {
    return *std::ranges::max_element(bins.bins, {}, &TimeBin::records);
}

double HeightOf(std::int64_t records, std::int64_t end) {
    return kHeight * static_cast<double>(records) / static_cast<double>(end);
}

constexpr int kSteps = 6;

// How many records one step of darkness stands for.
std::int64_t StepOf(std::int64_t busiest) {
    return std::max<std::int64_t>(1, (busiest + kSteps - 1) / kSteps);
}

std::string StepClass(std::int64_t records, std::int64_t step) {
    return std::string("h").append(std::to_string((records + step - 1) / step));
}

std::string Legend(std::int64_t busiest) {
    const std::int64_t step = StepOf(busiest);
    std::string legend;
    for (std::int64_t first = 0; first <= busiest; first += first == 0 ? 1 : step) {
        const std::int64_t last = first == 0 ? 0 : std::min(busiest, first + step - 1);
        legend += "<li><svg viewBox=\"0 0 10 10\" aria-hidden=\"true\"><rect class=\"" +
                  StepClass(first, step) + "\" width=\"10\" height=\"10\"/></svg>" +
                  Grouped(first) + (last > first ? "\u2013" + Grouped(last) : "") + "</li>\n";
    }
    return "<p class=\"key\" id=\"key\">Records in an hour of the week</p>\n"
           "<ul class=\"legend\" aria-labelledby=\"key\">\n" +
           legend + "</ul>\n";
}

std::string FullHour(size_t hour) {
    return HourName(hour) + ":00";
}

std::string Fields(const HoursOfWeek& hours) {
    const std::int64_t busiest = Busiest(hours);
    const std::int64_t step = StepOf(busiest);
    std::string fields;
    for (size_t day = 0; day < hours.size(); ++day) {
        for (size_t hour = 0; hour < hours[day].size(); ++hour) {
            const std::int64_t records = hours[day][hour];
            const std::string when = std::string(WeekdayName(day)) + " " + FullHour(hour);
            fields += Rectangle(StepClass(records, step), static_cast<double>(hour) * kField,
                                static_cast<double>(day) * kField, kField, kField,
                                when + ": " + Counted(records, "record", "records"));
        }
    }
    return fields;
}

} // namespace

std::string BusiestWords(const TimeBins& bins) {
    const TimeBin& most = BinOfMost(bins);
    return "Busiest " + UnitName(bins.unit) + ": " + BinName(bins.unit, most.firstDay) + " with " +
           Counted(most.records, "record", "records") + ".";
}

std::string BusiestWords(const HoursOfWeek& hours) {
    const std::int64_t busiest = Busiest(hours);
    std::string when;
    for (size_t day = 0; day < hours.size() && when.empty(); ++day) {
        const auto found = std::ranges::find(hours[day], busiest);
        if (found == hours[day].end()) continue;
        const auto hour = static_cast<size_t>(found - hours[day].begin());
        when = std::string(WeekdayName(day)) + " " + FullHour(hour) + " to " + FullHour(hour + 1);
    }
    return "Busiest hour: " + when + " with " + Counted(busiest, "record", "records") + ".";
}

std::string RecordsChart(const TimeBins& bins) {
    const std::int64_t end = EndOfAxis(BinOfMost(bins).records);
    const int width = kColumnWidth * static_cast<int>(bins.bins.size());
    const double columnWidth = std::min(kColumnWidth - 2.0, width / 14.0); // few are slim as well
    std::string columns = GridLines(width);
    double x = 0;
    for (const TimeBin& bin : bins.bins) {
        const double height = HeightOf(bin.records, end);
        // What is there is never too low to be seen.
        const double seen = bin.records > 0 ? std::max(height, 0.8) : 0;
        columns += Rectangle(
            "column", x + (kColumnWidth - columnWidth) / 2, kHeight - seen, columnWidth, seen,
            BinName(bins.unit, bin.firstDay) + ": " + Counted(bin.records, "record", "records"));
        x += kColumnWidth;
    }
    return Plot(bins, end,
                Drawing("records", width, kHeight, "Records per " + UnitName(bins.unit),
                        "Columns " + FromTo(bins) + ". " + BusiestWords(bins), columns));
}

std::string GrowthChart(const TimeBins& bins) {
    const std::int64_t total = bins.bins.back().total;
    const std::int64_t end = EndOfAxis(total);
    const int width = kColumnWidth * static_cast<int>(bins.bins.size());
    std::string line = "M0 " + std::to_string(kHeight);
    int x = 0;
    for (const TimeBin& bin : bins.bins) {
        line += " L" + std::to_string(x += kColumnWidth) + " " +
                Place(kHeight - HeightOf(bin.total, end));
    }
    const std::string content = GridLines(width) + "<path class=\"area\" d=\"" + line + " V" +
                                std::to_string(kHeight) + " Z\"/>\n<path class=\"line\" d=\"" +
                                line + "\"/>\n";
    return Plot(bins, end,
                Drawing("growth", width, kHeight, "Growth of the action log",
                        "A line that rises " + FromTo(bins) + ", from 0 to " +
                            Counted(total, "record", "records") + ".",
                        content));
}

std::string HoursChart(const HoursOfWeek& hours) {
    std::string days;
    for (size_t day = 0; day < hours.size(); ++day)
        days += Element("span", "", ShortWeekdayName(day));
    std::string names;
    for (size_t hour = 0; hour < 24; hour += 6)
        names += Element("span", "", FullHour(hour));
    const std::string drawing =
        Drawing("week", 24 * kField, 7 * kField, "Records by hour of the week",
                "Seven rows, Monday to Sunday, of 24 fields, one an hour. " + BusiestWords(hours),
                Fields(hours));
    return "<div class=\"plot\">\n<div class=\"days\" aria-hidden=\"true\">" + days + "</div>\n" +
           drawing + "<div class=\"hours\" aria-hidden=\"true\">" + names + "</div>\n</div>\n" +
           Legend(Busiest(hours));
}

std::string ShareBar(std::int64_t records, std::int64_t most, const std::string& title) {
    const double length =
        100.0 * static_cast<double>(records) / static_cast<double>(std::max<std::int64_t>(most, 1));
    return "<svg class=\"share\" viewBox=\"0 0 100 4\" preserveAspectRatio=\"none\" role=\"img\">"
           "<title>" +
           EscapeHtml(title) + "</title>" +
           "<rect class=\"rest\" width=\"100\" height=\"4\"/><rect class=\"column\" width=\"" +
           Place(std::max(length, 0.5)) + "\" height=\"4\"/></svg>";
}

} // namespace tsl
