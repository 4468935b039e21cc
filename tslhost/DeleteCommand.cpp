// tslhost delete
#include <algorithm>

#include "component/host/ParamKeys.h"
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

} // namespace

ExitCode RunDelete(DeleteOptions options, const CommandContext& context) {
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

} // namespace tsl
