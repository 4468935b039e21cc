// tslhost export
#include <algorithm>
#include <functional>
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>

#include "console/ExportFormat.h"
#include "console/Output.h"
#include "console/RecordOutput.h"
#include "console/RecordSelection.h"
#include "console/StorePlace.h"
#include "console/WholeFile.h"
#include "tslhost/Commands.h"
#include "upkeep/transfer/RecordOwners.h"

namespace tsl {

namespace {

constexpr char kExportFooter[] =
    "Example: tslhost export --since 2026-11-01T00:00:00Z --format csv --output november.csv\n"
    "Each record stands on a line, by ascending id: id, time, user, app, kind, name, parameters "
    "(the raw text) and the value lists that are decoded from it: ullValues, usValues, "
    "intValues, boolValues, stringValues, floatValues. A list that cannot be read is left out. A "
    "line of jsonl is also one of import, which keeps the ids with --keep-ids. Numbers that are "
    "none of JSON's are the texts \"inf\", \"-inf\", \"nan\" and \"-nan\".\n"
    "\n"
    "csv has a line of names, CR LF and UTF-8 without a mark; a list is JSON text. Texts stand "
    "as they are: a spreadsheet takes one that begins with = + - or @ for a formula, so import "
    "such columns as text.";

struct ExportOptions {
    RecordSelection selection;
    RecordFilter filter;
    std::string format = "jsonl";
    std::string file;

    bool IsCsv() const { return format == "csv"; }
};

// Whether an option that can be given was not given, or names this one.
bool Selects(const std::vector<UINT32>& users, UINT32 user) {
    return users.empty() || std::ranges::find(users, user) != users.end();
}

// The log kind of each selected record, by the record's id: each kind is asked for its ids.
std::map<UINT32, UINT32> SelectKinds(CHostSession& session, const RecordSelection& selection,
                                     const RecordOwners& known) {
    std::map<UINT32, std::vector<UINT32>> usersOfKinds;
    for (const auto& [user, kind] : known.owners) {
        if (Selects(selection.users, user) && selection.kind.value_or(kind) == kind) {
            usersOfKinds[kind].push_back(user);
        }
    }
    std::map<UINT32, UINT32> kinds;
    for (const auto& [kind, users] : usersOfKinds) {
        RecordSelection ofKind = selection;
        ofKind.kind = kind;
        ofKind.users = users;
        for (const UINT32 id : SelectIds(session, ofKind))
            kinds[id] = kind;
    }
    // The record that is handed out is the latest of its id.
    for (const auto& [id, kind] : known.kindsOfRepeatedIds) {
        const auto found = kinds.find(id);
        if (found == kinds.end()) continue;
        found->second = kind;
        if (selection.kind.value_or(kind) != kind) kinds.erase(found);
    }
    return kinds;
}

// Calls write for each record, in portions, and tells how many there were.
size_t ForEachRecord(CHostSession& session, const std::map<UINT32, UINT32>& kinds,
                     const ExportOptions& options,
                     const std::function<void(const ExportedRecord&)>& write) {
    constexpr size_t kPortion = 500;
    size_t count = 0;
    std::vector<UINT32> ids;
    ids.reserve(kinds.size());
    for (const auto& [id, kind] : kinds)
        ids.push_back(id);
    for (std::span<const UINT32> rest(ids); !rest.empty();) {
        const size_t portion = std::min(kPortion, rest.size());
        for (StoredRecord& record : FetchRecords(session, rest.first(portion))) {
            if (!options.filter.Matches(record)) continue;
            if (!Selects(options.selection.users, record.user)) continue;
            const UINT32 kind = kinds.at(record.id);
            write({std::move(record), kind});
            ++count;
        }
        rest = rest.subspan(portion);
    }
    return count;
}

size_t WriteRecords(std::ostream& output, CHostSession& session,
                    const std::map<UINT32, UINT32>& kinds, const ExportOptions& options) {
    CProgress progress;
    size_t written = 0;
    if (options.IsCsv()) output << ExportCsvTitles();
    return ForEachRecord(session, kinds, options, [&](const ExportedRecord& exported) {
        output << (options.IsCsv() ? ExportCsvLine(exported) : ExportJson(exported) + '\n');
        if (!output) throw CFailure(ExitCode::Denied, "cannot write the records");
        ++written;
        if (!options.file.empty()) progress.Show(std::to_string(written) + " records");
    });
}

void PrintSummary(size_t count, bool json) {
    PrintLine(json ? nlohmann::ordered_json({{"records", count}}).dump()
                   : CountOfRecords(count) + " exported");
}

ExitCode Export(const ExportOptions& options, const CommandContext& context) {
    CHostSession session(context.pluginPath);
    const RecordOwners known = ReadRecordOwners(ActionLogPath());
    const auto kinds = SelectKinds(session, options.selection, known);
    size_t count = 0;
    if (options.file.empty()) {
        count = WriteRecords(std::cout, session, kinds, options);
        if (!std::cout.flush()) throw CFailure(ExitCode::Denied, "cannot write the records");
    } else {
        CWholeFile file(options.file);
        count = WriteRecords(file.Stream(), session, kinds, options);
        file.Commit();
        PrintSummary(count, context.json);
    }
    if (known.unreachable > 0) {
        PrintError(CountOfRecords(known.unreachable) +
                   " without an id, a user or a log kind that the component knows: left out");
        return ExitCode::PartlyDone;
    }
    return count == 0 ? ExitCode::NothingFound : ExitCode::Fine;
}

} // namespace

void AddExportCommand(CLI::App& app, CommandContext& context) {
    CLI::App* const command = app.add_subcommand(
        "export", "Write records, with their log kinds, as JSON Lines or CSV, oldest id first");
    const auto options = std::make_shared<ExportOptions>();
    options->selection.users.clear();
    AddSelectionOptions(*command, options->selection);
    command->get_option("--user")->default_str("")->description(
        "User id; may be given again and again; default: all");
    command->get_option("--kind")->description("Log kind; default: all");
    AddFilterOptions(*command, options->filter);
    command->add_option("--format", options->format, "jsonl or csv")
        ->check(CLI::IsMember({"jsonl", "csv"}))
        ->capture_default_str();
    command->add_option("--output", options->file,
                        "File to write, whole or not at all; default: the standard output");
    command->footer(kExportFooter);
    command->callback([&context, options] { context.exitCode = Export(*options, context); });
}

} // namespace tsl
