#include "component/CommandTable.h"

#include "base/ComPtr.h"
#include "component/host/CommandCodes.h"
#include "component/host/Identities.h"
#include "recording/ActionDispatch.h"
#include "recording/RecordIds.h"

namespace tsl {

namespace {

// An action without a container is none.
HRESULT RecordAction(CActionLogStore& store, ITslParamContainer* container, VARIANT* /*result*/) {
    return container ? DispatchAction(store, container) : S_OK;
}

constexpr CommandMethod kNotify = CommandMethod::Notify;
constexpr CommandMethod kRequest = CommandMethod::Request;
constexpr CommandMethod kDelete = CommandMethod::Delete;

constexpr Command kCommands[] = {
    {kNotify, kCommandRecordAction, kActionLogTable, false, RecordAction},
    {kRequest, kCommandNextRecordId, kRecordIdTable, false, NextRecordId},
    {kRequest, kCommandQueryIds, kActionLogTable, true, nullptr},
    {kRequest, kCommandQueryRecords, kActionLogTable, true, nullptr},
    {kRequest, kCommandQueryAllIds, kContentDeleteTable, true, nullptr},
    {kRequest, kCommandTakeRecord, kContentDeleteTable, true, nullptr},
    {kDelete, kCommandDeleteRecords, kActionLogTable, true, nullptr},
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
    if (!command.operation) return E_NOTIMPL;
    const auto container = QueryFor<ITslParamContainer>(parameters, IID_ITslParamContainer);
    return command.operation(store, container.Get(), result);
}

} // namespace tsl
