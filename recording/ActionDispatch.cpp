#include "recording/ActionDispatch.h"

#include "recording/ActionCopy.h"
#include "recording/ActionFilters.h"
#include "recording/ContentMove.h"
#include "recording/RecordWriter.h"
#include "recording/ReplayLog.h"
#include "recording/UserReset.h"
#include "store/LogKinds.h"

namespace tsl {

namespace {

// Keeps the action for whoever takes it later and records a copy of it. Returns the copy; null when
// it could not be made.
CComPtr<ITslParamContainer> RecordDeleteAction(CActionLogStore& store, ITslParamContainer& action) {
    if (SUCCEEDED(store.SelectTable(kTablePrefix, kContentDeleteTable))) {
        WriteActionRecord(store, &action);
    }
    const HRESULT selected = store.SelectTable(kTablePrefix, kActionLogTable);
    CComPtr<ITslParamContainer> copy;
    const HRESULT copied = CopyDeleteAction(action, copy);
    if (SUCCEEDED(selected) && SUCCEEDED(copied)) WriteActionRecord(store, copy.Get());
    return copy;
}

} // namespace

HRESULT DispatchAction(CActionLogStore& store, ITslParamContainer& action) {
    const ActionName name = ReadActionName(action);
    const UINT32 logKind = store.LogKind();
    if (IsSettingReset(name.changed)) ResetUserRecords(store, &action);

    CComPtr<ITslParamContainer> copy;
    if (IsDeleteAction(name.text) && logKind == kLogKindOfKeptRecords) {
        copy = RecordDeleteAction(store, action);
    } else if (IsContentMove(name.changed)) {
        MoveContent(store, action);
    } else if (!IsExcludedFromActionLog(name.text, logKind)) {
        WriteActionRecord(store, &action);
    }
    return WriteReplayRecord(store, action, copy ? *copy : action);
}

} // namespace tsl
