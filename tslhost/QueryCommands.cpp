// tslhost ids, show, list and all
#include <algorithm>
#include <memory>

#include "component/host/CommandCodes.h"
#include "component/host/ParamKeys.h"
#include "console/Numbers.h"
#include "console/Output.h"
#include "console/RecordOutput.h"
#include "console/RecordSelection.h"
#include "tslhost/Commands.h"

namespace tsl {

namespace {

ExitCode PrintSelectedIds(const RecordSelection& selection, const CommandContext& context) {
    CHostSession session(context.pluginPath);
    const std::vector<UINT32> ids = SelectIds(session, selection);
    PrintIds(std::vector<UINT64>(ids.begin(), ids.end()), context.json);
    return ids.empty() ? ExitCode::NothingFound : ExitCode::Fine;
}

ExitCode Show(const std::vector<UINT32>& ids, const CommandContext& context) {
    CHostSession session(context.pluginPath);
    const std::vector<StoredRecord> records = FetchRecords(session, ids);
    if (!records.empty()) PrintRecords(records, context.json);
    for (const UINT32 id : ids) {
        const bool found = std::ranges::find(records, id, &StoredRecord::id) != records.end();
        if (!found) PrintError("there is no record " + std::to_string(id));
    }
    if (records.empty()) return ExitCode::NothingFound;
    return records.size() < ids.size() ? ExitCode::PartlyDone : ExitCode::Fine;
}

struct ListOptions {
    RecordSelection selection;
    RecordFilter filter;
    size_t count = 20;
};

// Fetched from the newest id on, in portions, until there are enough.
ExitCode List(const ListOptions& options, const CommandContext& context) {
    constexpr size_t kPortion = 500;
    CHostSession session(context.pluginPath);
    std::vector<UINT32> ids = SelectIds(session, options.selection);
    std::ranges::reverse(ids);
    std::vector<StoredRecord> listed;
    std::span<const UINT32> rest(ids);
    while (!rest.empty() && listed.size() < options.count) {
        const size_t portion = std::min(kPortion, rest.size());
        for (StoredRecord& record : FetchRecords(session, rest.first(portion))) {
            if (listed.size() < options.count && options.filter.Matches(record)) {
                listed.push_back(std::move(record));
            }
        }
        rest = rest.subspan(portion);
    }
    if (listed.empty()) return ExitCode::NothingFound;
    PrintRecords(listed, context.json);
    return ExitCode::Fine;
}

ExitCode PrintAllIds(UINT32 kind, const CommandContext& context) {
    CHostSession session(context.pluginPath);
    session.SetLogKind(kind);
    std::vector<UINT64> ids;
    const CComPtr<CTslParamContainer> nothing = CTslParamContainer::Create();
    for (const auto& container : session.Query(kCommandQueryAllIds, *nothing)) {
        CVariant id;
        container->GetValue(kKeyItemId, id.Address());
        if (id.Type() == VT_UI8) ids.push_back(id.Get().ullVal);
    }
    PrintIds(ids, context.json);
    return ids.empty() ? ExitCode::NothingFound : ExitCode::Fine;
}

} // namespace

void AddIdsCommand(CLI::App& app, CommandContext& context) {
    CLI::App* const command = app.add_subcommand("ids", "Print the ids of a user's records");
    const auto selection = std::make_shared<RecordSelection>();
    AddSelectionOptions(*command, *selection);
    command->footer("Example: tslhost ids --user 1 --since 2026-11-20T18:00:00Z");
    command->callback(
        [&context, selection] { context.exitCode = PrintSelectedIds(*selection, context); });
}

void AddShowCommand(CLI::App& app, CommandContext& context) {
    CLI::App* const command = app.add_subcommand("show", "Show records by their ids");
    const auto ids = std::make_shared<std::vector<UINT32>>();
    command->add_option("ID", *ids, "Record ids")->required()->check(ANumber<UINT32>());
    command->footer("Example: tslhost show 17 18 --json");
    command->callback([&context, ids] { context.exitCode = Show(*ids, context); });
}

void AddListCommand(CLI::App& app, CommandContext& context) {
    CLI::App* const command = app.add_subcommand("list", "Show a user's records, newest first");
    const auto options = std::make_shared<ListOptions>();
    command->add_option("-n,--count", options->count, "How many at the most")
        ->check(ANumber<size_t>())
        ->capture_default_str();
    AddFilterOptions(*command, options->filter);
    AddSelectionOptions(*command, options->selection);
    command->footer("Example: tslhost list -n 5 --name playItem");
    command->callback([&context, options] { context.exitCode = List(*options, context); });
}

void AddAllCommand(CLI::App& app, CommandContext& context) {
    CLI::App* const command = app.add_subcommand(
        "all", "Print the ids of all deleted items that are kept for the current user");
    const auto kind = std::make_shared<UINT32>(1);
    command->add_option("--kind", *kind, "Log kind; 2 stands for the user of the system, else 1")
        ->check(ALogKind())
        ->capture_default_str();
    command->footer("Example: tslhost all --json");
    command->callback([&context, kind] { context.exitCode = PrintAllIds(*kind, context); });
}

} // namespace tsl
