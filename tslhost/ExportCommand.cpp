// tslhost export
#include <algorithm>
#include <functional>
#include <iostream>
#include <nlohmann/json.hpp>

#include "console/ExportFormat.h"
#include "console/JsonOutput.h"
#include "console/Output.h"
#include "console/RecordOutput.h"
#include "console/RecordSelection.h"
#include "console/StorePlace.h"
#include "console/WholeFile.h"
#include "tslhost/Commands.h"
#include "upkeep/transfer/RecordOwners.h"

namespace tsl {

namespace {

bool IsCsv(const ExportOptions& options) {
    return options.format == "csv";
}

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
    const CsvTexts texts = options.raw ? CsvTexts::Raw : CsvTexts::Harmless;
    if (IsCsv(options)) output << ExportCsvTitles();
    return ForEachRecord(session, kinds, options, [&](const ExportedRecord& exported) {
        output << (IsCsv(options) ? ExportCsvLine(exported, texts) : ExportJson(exported) + '\n');
        if (!output) throw CFailure(ExitCode::Denied, "cannot write the records");
        ++written;
        if (!options.file.empty()) progress.Show(std::to_string(written) + " records");
    });
}

void PrintSummary(size_t count, bool json) {
    PrintLine(json ? ToJsonLine({{"records", count}}) : CountOfRecords(count) + " exported");
}

} // namespace

ExitCode RunExport(const ExportOptions& options, const CommandContext& context) {
    if (options.raw && !IsCsv(options))
        throw CFailure(ExitCode::Usage, "--raw is said of --format csv only");
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

} // namespace tsl
