// A connection to the table that an operation works on; file and table are made where they are
// missing. A table that cannot be made is no failure of the opening.
//
// Sessions live on one thread, for one operation, under the SQLiteAccess lock of their user where
// that takes the lock. The host is not called while one lives.
#pragma once

#include "store/ActionLogStore.h"
#include "store/Target.h"

namespace tsl {

// For one statement that reads or deletes: by itself it is whole or not at all.
class CTableSession {
public:
    CTableSession(const CActionLogStore& store, const Target& target);

    // Whether there is a connection; the database is not to be used without.
    bool IsOpen() const noexcept { return SUCCEEDED(m_opened) && m_database; }
    // S_OK; E_POINTER without an engine; else the mapped failure of the opening.
    HRESULT Opened() const noexcept { return m_opened; }
    const CDatabase& Database() const noexcept { return m_database; }

protected:
    CTableSession(const CActionLogStore& store, const Target& target, FileUse use, bool create);

private:
    CDatabase m_database;
    HRESULT m_opened;
};

// For a record, inside one transaction, the making of the table among it: what is written comes
// whole or not at all. The file's write lock is taken at once, so that a busy file is told before
// anything is done.
class CWriteSession : public CTableSession {
public:
    CWriteSession(const CActionLogStore& store, const Target& target);

    // The engine's result of beginning the transaction, to be looked at before anything is written.
    int Begun() const noexcept { return m_begun; }

    // Commits what was written after SQLITE_OK, else leaves the file as it was. Returns the first
    // failure of the engine, the result of the writing among them.
    int End(int result) { return result == kSqliteOk ? m_transaction.Commit() : result; }

private:
    CTransaction m_transaction{Database()};
    int m_begun = kSqliteError;
};

} // namespace tsl
