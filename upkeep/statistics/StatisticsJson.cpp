#include <charconv>
#include <nlohmann/json.hpp>

#include "console/IsoTime.h"
#include "console/Text.h"
#include "upkeep/statistics/Calendar.h"
#include "upkeep/statistics/StatisticsOutput.h"

namespace tsl {

namespace {

using Json = nlohmann::ordered_json;

template <class Value>
Json OrNull(const std::optional<Value>& value) {
    return value ? Json(*value) : Json(nullptr);
}

Json TimeOrNull(const std::optional<double>& time) {
    return time ? Json(FormatIsoTime(*time)) : Json(nullptr);
}

// The number of a user or an application.
Json NumberOf(const std::string& name) {
    if (name.empty()) return nullptr;
    std::int64_t number = 0;
    const char* const end = name.data() + name.size();
    const auto [stopped, error] = std::from_chars(name.data(), end, number);
    return error == std::errc() && stopped == end ? Json(number) : Json(name);
}

Json TableJson(const TableFigures& table) {
    return {{"name", table.name},
            {"records", table.records},
            {"firstId", OrNull(table.firstId)},
            {"lastId", OrNull(table.lastId)},
            {"firstTime", TimeOrNull(table.firstTime)},
            {"lastTime", TimeOrNull(table.lastTime)},
            {"undated", table.undated}};
}

Json FileJson(const FileFigures& file) {
    return {{"path", ToUtf8(file.path)},
            {"bytes", OrNull(file.bytes)},
            {"pages", OrNull(file.pages)},
            {"freePages", OrNull(file.freePages)}};
}

Json NumberedJson(const std::vector<Tally>& tallies, const char* what) {
    Json list = Json::array();
    for (const Tally& tally : tallies)
        list.push_back({{what, NumberOf(tally.name)}, {"records", tally.records}});
    return list;
}

Json NamedJson(const std::vector<Tally>& tallies) {
    Json list = Json::array();
    for (const Tally& tally : tallies)
        list.push_back({{"name", tally.name}, {"records", tally.records}});
    return list;
}

} // namespace

Json StatisticsJson(const StoreFigures& figures) {
    Json object = {{"time", FormatIsoTime(figures.taken)}, {"nextId", figures.nextId}};
    for (const FileFigures& file : figures.files)
        object["files"].push_back(FileJson(file));
    for (const TableFigures& table : figures.tables)
        object["tables"].push_back(TableJson(table));
    object["users"] = NumberedJson(figures.users, "user");
    object["applications"] = NumberedJson(figures.applications, "application");
    object["actions"] = NamedJson(figures.actions);
    object["days"] = Json::array();
    for (const DayTally& day : figures.days)
        object["days"].push_back({{"day", IsoDay(day.day)}, {"records", day.records}});
    object["hoursOfWeek"] = figures.hours;
    return object;
}

} // namespace tsl
