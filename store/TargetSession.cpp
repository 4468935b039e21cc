#include "store/TargetSession.h"

namespace tsl {

CReadSession::CReadSession(const CActionLogStore& store, const Target& target)
    : m_opened(store.Open(target.fileName, kTablePrefix, target.tableName, &m_database,
                          TableShape::Action, /*create=*/true, FileUse::Read)) {}

CWriteSession::CWriteSession(const CActionLogStore& store, const Target& target)
    : m_opened(store.Open(target.fileName, kTablePrefix, target.tableName, &m_database,
                          TableShape::Action, /*create=*/false, FileUse::Write)) {
    if (!IsOpen()) return;
    m_begun = m_transaction.Begin();
    if (m_begun != kSqliteOk) return;
    if (SUCCEEDED(CreateActionTable(store.Engine(), m_database, kTablePrefix, target.tableName))) {
        return;
    }
    // With such a failure the engine may have ended the transaction, and what follows belongs into
    // one.
    m_transaction.RollBack();
    m_begun = m_transaction.Begin();
}

} // namespace tsl
