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
CComPtr<ITslParamContainer> RecordDeleteAction(const CActionLogStore& store, const Target& target,
                                               ITslParamContainer& action) {
    AtBoundary(
        [&] { return WriteActionRecord(store, target.WithTable(kContentDeleteTable), &action); });
    CComPtr<ITslParamContainer> copy;
    AtBoundary([&] {
        const HRESULT copied = CopyDeleteAction(action, copy);
        return FAILED(copied) ? copied : WriteActionRecord(store, target, copy.Get());
    });
    return copy;
}

} // namespace

HRESULT DispatchAction(const CActionLogStore& store, const Target& target,
                       ITslParamContainer& action) {
    const ActionName name = ReadActionName(action);
    if (IsSettingReset(name.changed)) {
        AtBoundary([&] { return ResetUserRecords(store, target, &action); });
    }
    CComPtr<ITslParamContainer> copy;
    if (IsDeleteAction(name.text) && target.logKind == kLogKindOfKeptRecords) {
        copy = RecordDeleteAction(store, target, action);
    } else if (IsContentMove(name.changed)) {
        AtBoundary([&] { return MoveContent(store.ContentStore(), action); });
    } else if (!IsExcludedFromActionLog(name.text, target.logKind)) {
        AtBoundary([&] { return WriteActionRecord(store, target, &action); });
    }
    return WriteReplayRecord(store, target.logKind, action, copy ? *copy : action);
}

} // namespace tsl
