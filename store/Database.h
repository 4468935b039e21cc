// Owners of a database connection, a statement and a transaction. All belong to one operation and
// one thread, under the SQLiteAccess lock of their user, and must not outlive the SqliteApi.
#pragma once

#include <string>

#include "store/SqliteApi.h"

namespace tsl {

// What a connection is for decides how often its operation may have to wait for others who are in
// the file: all its waits together stay below the wait for the lock (3 s), so that whoever waits
// here does not make others give up the lock.
enum class FileUse {
    Statements, // four waits: for the schema, for a missing table, to run one statement and to keep
                // it
    Write,      // three: to begin a transaction, for pages that no longer fit, and to commit it
    Convert,    // eight: several statements that are no transaction
};

// Closes its connection when it goes.
class CDatabase {
public:
    CDatabase() noexcept = default;
    CDatabase(const CDatabase&) = delete;
    CDatabase& operator=(const CDatabase&) = delete;
    ~CDatabase() { Close(); }

    // Opens the file, closing what was open; the engine may give a connection also when it fails.
    // Returns the engine's result.
    int Open(const SqliteApi& engine, const std::wstring& path, FileUse use = FileUse::Write);
    void Close() noexcept;

    // REQUIRES: Open was called.
    const SqliteApi& Engine() const noexcept { return *m_engine; }
    sqlite3* Connection() const noexcept { return m_connection; }
    explicit operator bool() const noexcept { return m_connection != nullptr; }

private:
    const SqliteApi* m_engine = nullptr;
    sqlite3* m_connection = nullptr;
};

// Finalizes its statement when it goes. Every call returns the engine's result.
class CStatement {
public:
    // REQUIRES: the database has a connection.
    explicit CStatement(const CDatabase& database) noexcept : m_database(database) {}
    CStatement(const CStatement&) = delete;
    CStatement& operator=(const CStatement&) = delete;
    ~CStatement() { Finalize(); }

    int Prepare(CSqlText text);
    int BindInt64(int index, INT64 value);
    int BindText(int index, const wchar_t* text);
    int BindDouble(int index, double value);
    int Step();
    int Finalize();

    // Steps a statement that yields no row: the result of finalizing it once it is done, else that
    // of the step.
    int Run();

    // Calls onRow for each row, then finalizes. The result of finalizing, or of a failed step.
    template <class OnRow>
    int ForEachRow(OnRow onRow) {
        int result = Step();
        for (; result == kSqliteRow; result = Step())
            onRow();
        return result == kSqliteDone ? Finalize() : result;
    }

    // Columns of the row that the statement stands on.
    INT64 ColumnInt64(int column) const;
    double ColumnDouble(int column) const;
    // Null for SQL NULL. Lives until the next step.
    const wchar_t* ColumnText(int column) const;

private:
    const CDatabase& m_database;
    sqlite3_stmt* m_statement = nullptr;
};

// Prepares the text and runs it to its end. SQLITE_ROW when it yields a row.
int ExecuteStatement(const CDatabase& database, CSqlText text);

// Reads the integer in a column of the first row that the text yields. SQLITE_DONE, with the number
// untouched, when it yields none; SQLITE_ERROR when the engine reads no integers.
int ReadNumber(const CDatabase& database, CSqlText text, int column, INT64& number);

// Rolls back when it goes, unless it was committed. Begin and Commit return the engine's result.
class CTransaction {
public:
    explicit CTransaction(const CDatabase& database) noexcept : m_database(database) {}
    CTransaction(const CTransaction&) = delete;
    CTransaction& operator=(const CTransaction&) = delete;
    ~CTransaction();

    // Takes the file's write lock, so that a busy file is told before anything is done.
    int Begin();
    int Commit();
    // Undoes what was begun, as far as the engine has not done it; another may be begun then.
    void RollBack();

private:
    const CDatabase& m_database;
    bool m_open = false;
};

} // namespace tsl
