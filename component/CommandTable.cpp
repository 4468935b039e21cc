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
HRESULT RecordAction(CActionLogStore& store, ITslParamContainer* container, VARIANT* /*result*/) {
    return container ? DispatchAction(store, *container) : S_OK;
}

HRESULT DeleteStoredRecords(CActionLogStore& store, ITslParamContainer* container,
                            VARIANT* /*result*/) {
    return DeleteRecords(store, container);
}

constexpr CommandMethod kNotify = CommandMethod::Notify;
constexpr CommandMethod kRequest = CommandMethod::Request;
constexpr CommandMethod kDelete = CommandMethod::Delete;

constexpr Command kCommands[] = {
    {kNotify, kCommandRecordAction, kActionLogTable, false, RecordAction},
    {kRequest, kCommandNextRecordId, kRecordIdTable, false, NextRecordId},
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

HRESULT RunCommand(const Command& command, CActionLogStore& store, IUnknown* parameters,
                   VARIANT* result) {
    store.SelectTable(kTablePrefix, command.tableName);
    if (command.parametersRequired && !parameters) return E_POINTER;
    const auto container = QueryFor<ITslParamContainer>(parameters, IID_ITslParamContainer);
    return command.operation(store, container.Get(), result);
}

} // namespace tsl
