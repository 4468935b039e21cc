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
    if (m_begun == kSqliteOk) {
        CreateActionTable(store.Engine(), m_database, kTablePrefix, target.tableName);
    }
}

} // namespace tsl
