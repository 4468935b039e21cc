#include "component/CommandTable.h"

#include "base/ComPtr.h"
#include "component/host/CommandCodes.h"
#include "component/host/Identities.h"
#include "query/Deletions.h"
#include "query/RecordQueries.h"
#include "recording/ActionDispatch.h"
#include "recording/RecordIds.h"

namespace tsl {

namespace {

// An action without a container is none.
HRESULT RecordAction(const CActionLogStore& store, const Target& target,
                     ITslParamContainer* container, VARIANT* /*result*/) {
    return container ? DispatchAction(store, target, *container) : S_OK;
}

// Ids come from a file, and are those of all tables.
HRESULT IssueRecordId(const CActionLogStore& store, const Target& /*target*/,
                      ITslParamContainer* container, VARIANT* result) {
    return NextRecordId(store, container, result);
}

HRESULT DeleteStoredRecords(const CActionLogStore& store, const Target& target,
                            ITslParamContainer* container, VARIANT* /*result*/) {
    return DeleteRecords(store, target, container);
}

constexpr CommandMethod kNotify = CommandMethod::Notify;
constexpr CommandMethod kRequest = CommandMethod::Request;
constexpr CommandMethod kDelete = CommandMethod::Delete;

constexpr Command kCommands[] = {
    {kNotify, kCommandRecordAction, kActionLogTable, false, RecordAction},
    {kRequest, kCommandNextRecordId, kRecordIdTable, false, IssueRecordId},
    {kRequest, kCommandQueryIds, kActionLogTable, true, QueryRecordIds},
    {kRequest, kCommandQueryRecords, kActionLogTable, true, QueryRecords},
    {kRequest, kCommandQueryAllIds, kContentDeleteTable, true, QueryAllRecordIds},
    {kRequest, kCommandTakeRecord, kContentDeleteTable, true, TakeRecord},
    {kDelete, kCommandDeleteRecords, kActionLogTable, true, DeleteStoredRecords},
};

} // namespace

const Command* FindCommand(CommandMethod method, UINT64 code) noexcept {
    for (const Command& command : kCommands) {
        if (command.method == method && command.code == code) return &command;
    }
    return nullptr;
}

HRESULT RunCommand(const Command& command, const CActionLogStore& store, UINT32 logKind,
                   IUnknown* parameters, VARIANT* result) {
    const Target target{kActionLogFileName, command.tableName, logKind};
    if (command.parametersRequired && !parameters) return E_POINTER;
    const auto container = QueryFor<ITslParamContainer>(parameters, IID_ITslParamContainer);
    return command.operation(store, target, container.Get(), result);
}

} // namespace tsl
