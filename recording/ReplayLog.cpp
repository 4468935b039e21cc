#include "recording/ReplayLog.h"

#include "base/ArrayView.h"
#include "query/ContainerValues.h"
#include "query/RecordQueries.h"
#include "recording/RecordWriter.h"
#include "recording/UserReset.h"

namespace tsl {

namespace {

constexpr UINT32 kIdsBetweenTrims = 100;
constexpr size_t kMostRecords = 999;

// Selects the replay log's database while it lives.
class CReplayDatabaseSelection {
public:
    explicit CReplayDatabaseSelection(CActionLogStore& store) : m_store(store) {
        m_store.SelectDatabase(kReplayFileName);
    }
    CReplayDatabaseSelection(const CReplayDatabaseSelection&) = delete;
    CReplayDatabaseSelection& operator=(const CReplayDatabaseSelection&) = delete;
    ~CReplayDatabaseSelection() { m_store.SelectActionLogDatabase(); }

private:
    CActionLogStore& m_store;
};

bool IsTrimDue(ITslParamContainer& action) {
    CVariant recordId;
    ReadValue(action, kKeyRecordId, recordId);
    return recordId.Type() == VT_UI4 && recordId.Get().ulVal % kIdsBetweenTrims == 0;
}

// The query takes no lock of its own, and whoever reads the file meanwhile keeps others from
// writing.
size_t CountUserRecords(CActionLogStore& store, ITslParamContainer& action) {
    const CMutexGuard lock(store.SqliteAccessLock(), kSqliteAccessTimeoutMilliseconds);
    CVariant records;
    CValueView<IUnknown*> view;
    if (FAILED(QueryRecordIds(store, &action, records.Address()))) return 0;
    return SUCCEEDED(view.Open(*records.Address())) ? view.Values().size() : 0;
}

} // namespace

HRESULT WriteReplayRecord(CActionLogStore& store, ITslParamContainer& action,
                          ITslParamContainer& record) {
    const CReplayDatabaseSelection replay(store);
    const HRESULT selected = store.SelectTable(kTablePrefix, kReplayTable);
    if (FAILED(selected)) return selected;
    if (IsTrimDue(action) && CountUserRecords(store, action) > kMostRecords) {
        ResetUserRecords(store, &action);
    }
    return WriteActionRecord(store, &record);
}

} // namespace tsl
