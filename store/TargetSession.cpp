#include "store/TargetSession.h"

namespace tsl {

CTableSession::CTableSession(const CActionLogStore& store, const Target& target)
    : m_opened(store.Open(target.fileName, kTablePrefix, target.tableName, &m_database,
                          TableShape::Action, /*create=*/true, FileUse::Statements)) {}

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
    // one. Its waiting is done.
    m_transaction.RollBack();
    ExecuteStatement(m_database, L"PRAGMA busy_timeout = 0");
    m_begun = m_transaction.Begin();
}

} // namespace tsl
