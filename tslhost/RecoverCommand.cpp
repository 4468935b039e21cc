// tslhost recover
#include <algorithm>
#include <nlohmann/json.hpp>

#include "console/JsonOutput.h"
#include "console/Output.h"
#include "console/Text.h"
#include "tslhost/Commands.h"
#include "upkeep/StoreLock.h"
#include "upkeep/recovery/Recovery.h"

namespace tsl {

namespace {

using Json = nlohmann::ordered_json;

const char* OutcomeWord(const DatabaseReport& database, bool dryRun) {
    switch (database.outcome) {
    case Outcome::Missing:
        return "missing";
    case Outcome::Whole:
        return "whole";
    default:
        return dryRun ? "damaged" : "recovered";
    }
}

const char* CounterWord(CounterState state) {
    switch (state) {
    case CounterState::Missing:
        return "missing";
    case CounterState::Behind:
        return "behind";
    case CounterState::Spoiled:
        return "spoiled";
    default:
        return "fine";
    }
}

Json TableJson(const TableReport& table) {
    return {{"table", table.name},
            {"rowsSaved", table.rows.saved},
            {"rowsIncomplete", table.rows.incomplete},
            {"rowsUnreadable", table.unread.rows + table.rows.unbelievable},
            {"rowsSuperseded", table.rows.superseded},
            {"pagesUnreadable", table.unread.pages}};
}

Json DatabaseJson(const DatabaseReport& database, bool dryRun) {
    Json json = {{"file", ToUtf8(database.path)}, {"outcome", OutcomeWord(database, dryRun)}};
    if (database.outcome != Outcome::Recovered) return json;
    json["damage"] = OneLine(database.damage);
    json["tables"] = Json::array();
    for (const TableReport& table : database.tables)
        json["tables"].push_back(TableJson(table));
    json["rowsUnreadable"] = database.unread.rows;
    json["pagesUnreadable"] = database.unread.pages;
    json["pagesWithoutTable"] = database.orphanPages;
    json["pagesSkipped"] = database.skippedPages;
    if (!dryRun) json["keptAs"] = ToUtf8(database.keptAs);
    return json;
}

void PrintJson(const RecoverReport& report, bool dryRun) {
    Json json = {{"dryRun", dryRun}, {"databases", Json::array()}};
    for (const DatabaseReport& database : report.databases)
        json["databases"].push_back(DatabaseJson(database, dryRun));
    json["counter"] = {{"state", CounterWord(report.counter.state)},
                       {"found", report.counter.found}};
    if (report.counter.written) json["counter"]["written"] = *report.counter.written;
    PrintLine(ToJsonLine(json));
}

std::string Count(UINT64 count, const std::string& what) {
    return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

// "; not read: 2 pages, 1 row", or nothing.
std::string NotRead(UINT64 pages, UINT64 rows) {
    std::string text;
    if (pages > 0) text = "; not read: " + Count(pages, "page");
    if (rows > 0) text += (pages > 0 ? ", " : "; not read: ") + Count(rows, "row");
    return text;
}

void PrintTable(const TableReport& table) {
    std::string line = "  " + table.name + ": " + Count(table.rows.saved, "row") + " saved";
    if (table.rows.incomplete > 0)
        line += ", " + std::to_string(table.rows.incomplete) + " of them incomplete";
    if (table.rows.superseded > 0)
        line += "; " + Count(table.rows.superseded, "older row") + " of the same ids left out";
    line += NotRead(table.unread.pages, table.unread.rows + table.rows.unbelievable);
    PrintLine(line);
}

void PrintDatabase(const DatabaseReport& database, bool dryRun) {
    const std::string file = ToUtf8(database.path);
    if (database.outcome == Outcome::Missing) return PrintLine(file + ": is not there");
    if (database.outcome == Outcome::Whole) return PrintLine(file + ": is whole, left alone");
    PrintLine(file + ": " + (database.damage.empty() ? "whole, made anew" : database.damage));
    for (const TableReport& table : database.tables)
        PrintTable(table);
    const std::string rest = NotRead(database.unread.pages, database.unread.rows);
    if (!rest.empty()) PrintLine("  of no known table" + rest);
    if (database.skippedPages > 0)
        PrintLine("  " + Count(database.skippedPages, "page") + " skipped: of deleted rows");
    PrintLine(dryRun ? "  nothing was changed" : "  kept as " + ToUtf8(database.keptAs));
}

void PrintCounter(const CounterReport& counter, const StorePaths& store, bool dryRun) {
    const std::string file = ToUtf8(store.counter);
    if (!counter.written) return PrintLine(file + ": is fine, left alone");
    std::string found = std::string("is ") + CounterWord(counter.state);
    if (counter.state != CounterState::Missing)
        found += " (read as " + std::to_string(counter.found) + ")";
    PrintLine(file + ": " + found + (dryRun ? ", would be set to " : ", set to ") +
              std::to_string(*counter.written));
}

} // namespace

ExitCode RunRecover(const RecoverOptions& options, const CommandContext& context) {
    const StorePaths store = MachineStore();
    CProgress progress;
    RecoverOptions shown = options;
    shown.onProgress = [&](const std::string& what) { progress.Show(what); };
    const CStoreLocks locks;
    const RecoverReport report = RecoverStore(store, shown);
    progress.Clear();
    if (context.json) {
        PrintJson(report, options.dryRun);
    } else {
        for (const DatabaseReport& database : report.databases)
            PrintDatabase(database, options.dryRun);
        PrintCounter(report.counter, store, options.dryRun);
    }
    const bool isPartly = std::ranges::any_of(report.databases, &DatabaseReport::IsPartly);
    return isPartly ? ExitCode::PartlyDone : ExitCode::Fine;
}

} // namespace tsl
