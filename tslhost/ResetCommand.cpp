// tslhost reset
#include <algorithm>
#include <nlohmann/json.hpp>

#include "console/JsonOutput.h"
#include "console/Output.h"
#include "console/RecordOutput.h"
#include "console/RecordSelection.h"
#include "tslhost/Commands.h"

namespace tsl {

namespace {

constexpr wchar_t kResetAction[] = L"veSettingReset";

RecordSelection RecordsOf(const ResetOptions& options) {
    RecordSelection selection;
    selection.users = {options.user};
    selection.kind = options.kind;
    return selection;
}

HostAction ResetAction(const ResetOptions& options) {
    HostAction action;
    action.name = kResetAction;
    action.app = options.app;
    action.user = options.user;
    action.kind = options.kind;
    return action;
}

void PrintReset(size_t count, UINT32 id, bool json) {
    if (json) {
        PrintLine(ToJsonLine({{"records", count}, {"removed", true}, {"id", id}}));
    } else {
        PrintLine(CountOfRecords(count) + " removed, and the reset recorded as " +
                  std::to_string(id));
    }
}

} // namespace

ExitCode RunReset(const ResetOptions& options, const CommandContext& context) {
    if (options.user == 0) throw CFailure(ExitCode::Usage, "user 0 has no records to reset");
    CHostSession session(context.pluginPath);
    const std::vector<UINT32> before = SelectIds(session, RecordsOf(options));
    if (options.dryRun) {
        PrintRemoval(before.size(), /*removed=*/false, context.json);
        return ExitCode::Fine;
    }
    const UINT32 id = session.Record(ResetAction(options));
    // The component does not tell what became of the records.
    const std::vector<UINT32> after = SelectIds(session, RecordsOf(options));
    const auto left = std::ranges::count_if(
        before, [&](UINT32 kept) { return std::ranges::binary_search(after, kept); });
    PrintReset(before.size() - static_cast<size_t>(left), id, context.json);
    if (left == 0) return ExitCode::Fine;
    PrintError(CountOfRecords(static_cast<size_t>(left)) + " could not be removed");
    return ExitCode::PartlyDone;
}

} // namespace tsl
