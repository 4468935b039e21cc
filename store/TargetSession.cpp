#include "store/TargetSession.h"

namespace tsl {

CTableSession::CTableSession(const CActionLogStore& store, const Target& target)
    : CTableSession(store, target, FileUse::Statements, /*create=*/true) {}

CTableSession::CTableSession(const CActionLogStore& store, const Target& target, FileUse use,
                             bool create)
    : m_opened(store.Open(target.fileName, kTablePrefix, target.tableName, &m_database,
                          TableShape::Action, create, use)) {}

CWriteSession::CWriteSession(const CActionLogStore& store, const Target& target)
    : CTableSession(store, target, FileUse::Write, /*create=*/false) {
    if (!IsOpen()) return;
    m_begun = m_transaction.Begin();
    if (m_begun != kSqliteOk) return;
    if (SUCCEEDED(CreateActionTable(store.Engine(), Database(), kTablePrefix, target.tableName))) {
        return;
    }
    // With such a failure the engine may have ended the transaction, and what follows belongs into
    // one. Its waiting is done.
    m_transaction.RollBack();
    ExecuteStatement(Database(), L"PRAGMA busy_timeout = 0");
    m_begun = m_transaction.Begin();
}

} // namespace tsl
