// tslhost delete
#include <algorithm>
#include <memory>

#include "component/host/ParamKeys.h"
#include "console/Numbers.h"
#include "console/Output.h"
#include "console/RecordOutput.h"
#include "console/RecordSelection.h"
#include "files/UserIdList.h"
#include "tslhost/Commands.h"

namespace tsl {

namespace {

constexpr UINT32 kKindOfSystemUsers = 2;
constexpr UINT32 kOtherwiseUser = 1;
constexpr UINT32 kDefaultKind = 1;

struct DeleteOptions {
    RecordSelection selection;
    std::optional<UINT32> id;
    bool dryRun = false;
    bool yes = false;
};

// A record is deleted by its id for one user only, whom the log kind determines.
UINT32 UserOfSingleDeletion(UINT32 kind) {
    if (kind != kKindOfSystemUsers) return kOtherwiseUser;
    UINT64 current = kOtherwiseUser;
    CurrentUserId(current);
    return static_cast<UINT32>(current);
}

size_t CountSingle(CHostSession& session, UINT32 id, const DeleteOptions& options) {
    const UINT32 kind = options.selection.kind.value_or(kDefaultKind);
    const UINT32 user = UserOfSingleDeletion(kind);
    if (options.selection.users[0] != user) {
        throw CFailure(ExitCode::Usage, "--id deletes records of user " + std::to_string(user) +
                                            " only under log kind " + std::to_string(kind));
    }
    const UINT32 ids[] = {id};
    const std::vector<StoredRecord> records = FetchRecords(session, ids);
    return !records.empty() && records[0].user == user ? 1 : 0;
}

size_t Count(CHostSession& session, const DeleteOptions& options) {
    return options.id ? CountSingle(session, *options.id, options)
                      : SelectIds(session, options.selection).size();
}

CComPtr<CTslParamContainer> Arguments(const DeleteOptions& options) {
    if (options.id) {
        CComPtr<CTslParamContainer> arguments = CTslParamContainer::Create();
        SetValue(*arguments, kKeyRecordToTake, CVariant::FromUi8(*options.id));
        return arguments;
    }
    const UINT32 user = options.selection.users[0];
    return options.selection.HasIds() ? IdRangeArguments(options.selection, user)
                                      : TimeRangeArguments(options.selection, user);
}

void CheckForm(const DeleteOptions& options) {
    const int forms = (options.id ? 1 : 0) + (options.selection.HasIds() ? 1 : 0) +
                      (options.selection.HasTimes() ? 1 : 0);
    if (forms != 1) {
        throw CFailure(ExitCode::Usage,
                       "name either --id, or --first and --last, or --since and --until");
    }
}

ExitCode Delete(DeleteOptions options, const CommandContext& context) {
    CheckForm(options);
    if (!options.selection.kind) options.selection.kind = kDefaultKind;
    CHostSession session(context.pluginPath);
    const size_t count = Count(session, options);
    if (options.dryRun || count == 0 || !options.yes) {
        PrintRemoval(count, /*removed=*/false, context.json);
        if (count == 0) return ExitCode::NothingFound;
        if (options.dryRun) return ExitCode::Fine;
        PrintError("nothing was removed; add --yes to remove them");
        return ExitCode::Usage;
    }
    session.SetLogKind(*options.selection.kind);
    session.Delete(*Arguments(options));
    // Others may write and delete meanwhile, so what is left is counted too.
    const size_t left = Count(session, options);
    PrintRemoval(count - std::min(count, left), /*removed=*/true, context.json);
    return ExitCode::Fine;
}

} // namespace

void AddDeleteCommand(CLI::App& app, CommandContext& context) {
    CLI::App* const command = app.add_subcommand("delete", "Remove records of a user and log kind");
    const auto options = std::make_shared<DeleteOptions>();
    command->add_option("--id", options->id, "One record")->check(ANumber<UINT32>());
    AddSelectionOptions(*command, options->selection);
    command->get_option("--user")->required()->expected(1)->default_str("")->description("User id");
    command->get_option("--kind")->description("Log kind; default: 1");
    command->add_flag("--dry-run", options->dryRun, "Only say how many records would be removed");
    command->add_flag("--yes", options->yes, "Remove them");
    command->footer("Example: tslhost delete --user 1 --until 2026-01-01T00:00:00Z --dry-run");
    command->callback([&context, options] { context.exitCode = Delete(*options, context); });
}

} // namespace tsl
