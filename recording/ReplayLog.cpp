#include "recording/ReplayLog.h"

#include "query/ContainerValues.h"
#include "query/RecordIdQuery.h"
#include "recording/RecordWriter.h"
#include "recording/UserReset.h"

namespace tsl {

namespace {

constexpr UINT32 kIdsBetweenTrims = 100;
constexpr size_t kMostRecords = 999;

bool IsTrimDue(ITslParamContainer& action) {
    CVariant recordId;
    ReadValue(action, kKeyRecordId, recordId);
    return recordId.Type() == VT_UI4 && recordId.Get().ulVal % kIdsBetweenTrims == 0;
}

// Whoever reads the file meanwhile keeps others from writing, so the lock is held also where the
// query itself does without.
size_t CountUserRecords(const CActionLogStore& store, const Target& target,
                        ITslParamContainer& action) {
    const RecordIdQuery query = ReadRecordIdQuery(action);
    std::vector<UINT32> ids;
    const CMutexGuard lock(store.SqliteAccessLock(), kSqliteAccessTimeoutMilliseconds);
    return FAILED(FindRecordIds(store, target, query, ids)) ? 0 : ids.size();
}

HRESULT TrimReplayLog(const CActionLogStore& store, const Target& target,
                      ITslParamContainer& action) {
    if (!IsTrimDue(action) || CountUserRecords(store, target, action) <= kMostRecords) return S_OK;
    return ResetUserRecords(store, target, &action);
}

} // namespace

HRESULT WriteReplayRecord(const CActionLogStore& store, UINT32 logKind, ITslParamContainer& action,
                          ITslParamContainer& record) {
    const Target target{kReplayFileName, kReplayTable, logKind};
    AtBoundary([&] { return TrimReplayLog(store, target, action); });
    return WriteActionRecord(store, target, &record);
}

} // namespace tsl
