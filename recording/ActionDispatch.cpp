#include "recording/ActionDispatch.h"

#include "recording/RecordWriter.h"

namespace tsl {

namespace {

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

} // namespace

HRESULT DispatchAction(CActionLogStore& store, ITslParamContainer* container) {
    // The replay log tells whether the action was kept; the host is not told of the action log's.
    WriteActionRecord(store, container);
    const CReplayDatabaseSelection replay(store);
    const HRESULT selected = store.SelectTable(kTablePrefix, kReplayTable);
    return FAILED(selected) ? selected : WriteActionRecord(store, container);
}

} // namespace tsl
