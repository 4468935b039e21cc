#include "store/Database.h"

#include <utility>

#include "store/Utf8.h"

namespace tsl {

namespace {

// Queries that take no lock are in a file while others write it, and an operation whose wait for
// the lock has timed out meets everyone. The engine then waits for its turn, this long each time.
// Engines older than 3.7.15 do not know the statement and answer "busy" at once.
CSqlText BusyTimeoutText(FileUse use) noexcept {
    switch (use) {
    case FileUse::Statements:
        return L"PRAGMA busy_timeout = 700";
    case FileUse::Write:
        return L"PRAGMA busy_timeout = 900";
    default:
        return L"PRAGMA busy_timeout = 350";
    }
}

} // namespace

int CDatabase::Open(const SqliteApi& engine, const std::wstring& path, FileUse use) {
    Close();
    m_engine = &engine;
    const int result = engine.Open(CUtf8Text(path).Get(), &m_connection);
    if (result == kSqliteOk) ExecuteStatement(*this, BusyTimeoutText(use));
    return result;
}

void CDatabase::Close() noexcept {
    if (m_connection) m_engine->Close(m_connection);
    m_connection = nullptr;
}

int CStatement::Prepare(CSqlText text) {
    Finalize();
    return m_database.Engine().Prepare(m_database.Connection(), text, &m_statement);
}

int CStatement::BindInt64(int index, INT64 value) {
    return m_database.Engine().BindInt64(m_statement, index, value);
}

int CStatement::BindText(int index, const wchar_t* text) {
    return m_database.Engine().BindText(m_statement, index, text);
}

int CStatement::BindDouble(int index, double value) {
    return m_database.Engine().BindDouble(m_statement, index, value);
}

int CStatement::Step() {
    return m_database.Engine().Step(m_statement);
}

int CStatement::Finalize() {
    sqlite3_stmt* const statement = m_statement;
    m_statement = nullptr;
    return statement ? m_database.Engine().Finalize(statement) : kSqliteOk;
}

int CStatement::Run() {
    const int result = Step();
    return result == kSqliteDone ? Finalize() : result;
}

INT64 CStatement::ColumnInt64(int column) const {
    return m_database.Engine().ColumnInt64(m_statement, column);
}

double CStatement::ColumnDouble(int column) const {
    return m_database.Engine().ColumnDouble(m_statement, column);
}

const wchar_t* CStatement::ColumnText(int column) const {
    return m_database.Engine().ColumnText(m_statement, column);
}

int ExecuteStatement(const CDatabase& database, CSqlText text) {
    CStatement statement(database);
    const int result = statement.Prepare(text);
    return result == kSqliteOk ? statement.Run() : result;
}

int ReadNumber(const CDatabase& database, CSqlText text, int column, INT64& number) {
    if (!database.Engine().ReadsIntegers()) return kSqliteError;
    CStatement statement(database);
    int result = statement.Prepare(text);
    if (result == kSqliteOk) result = statement.Step();
    if (result == kSqliteDone) {
        const int finalized = statement.Finalize();
        return finalized == kSqliteOk ? kSqliteDone : finalized;
    }
    if (result != kSqliteRow) return result;
    number = statement.ColumnInt64(column);
    return statement.Finalize();
}

CTransaction::~CTransaction() {
    try {
        RollBack();
    } catch (...) { // NOLINT(bugprone-empty-catch): a destructor
        // Closing the connection, which follows, rolls back as well.
    }
}

void CTransaction::RollBack() {
    if (!std::exchange(m_open, false)) return;
    ExecuteStatement(m_database, L"ROLLBACK");
}

int CTransaction::Begin() {
    const int result = ExecuteStatement(m_database, L"BEGIN IMMEDIATE");
    if (result == kSqliteOk) m_open = true;
    return result;
}

int CTransaction::Commit() {
    const int result = ExecuteStatement(m_database, L"COMMIT");
    if (result == kSqliteOk) m_open = false;
    return result;
}

} // namespace tsl
