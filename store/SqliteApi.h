// The SQLite engine, bound at run time: it is loaded by name from its side-by-side assembly and
// called only through this table, so that the component loads and answers without it. One table per
// store; once it is loaded, any number of threads may call through it, each with connections of its
// own.
#pragma once

#include <windows.h>

#include "store/SqlText.h"

struct sqlite3;
struct sqlite3_stmt;

namespace tsl {

// What the engine's functions return, as far as the component tells the codes apart.
inline constexpr int kSqliteOk = 0;
inline constexpr int kSqliteError = 1;
inline constexpr int kSqliteNotADatabase = 26;
inline constexpr int kSqliteRow = 100;
inline constexpr int kSqliteDone = 101;

class SqliteApi {
public:
    SqliteApi() noexcept = default;
    SqliteApi(const SqliteApi&) = delete;
    SqliteApi& operator=(const SqliteApi&) = delete;
    ~SqliteApi() { Unload(); }

    // Loads the engine by the manifest of the given module and looks its functions up. With
    // initializeOnly it looks up just the two functions that start and end the engine, and starts
    // it. E_FAIL when the engine cannot be loaded. A function that is missing stays null and does
    // not fail the load.
    HRESULT Load(HMODULE module, bool initializeOnly);

    void Unload() noexcept;

    // The engine's functions that the component uses. A call of one that is missing gives
    // SQLITE_ERROR, null for a text and 1.0 for a double.
    int Prepare(sqlite3* database, CSqlText text, sqlite3_stmt** statement) const;
    int BindInt64(sqlite3_stmt* statement, int index, INT64 value) const;
    // Null binds SQL NULL. The text must live until the statement is finalized.
    int BindText(sqlite3_stmt* statement, int index, const wchar_t* text) const;
    int BindDouble(sqlite3_stmt* statement, int index, double value) const;
    int Step(sqlite3_stmt* statement) const;
    int Finalize(sqlite3_stmt* statement) const;
    int Open(const char* utf8Path, sqlite3** database) const;
    int Close(sqlite3* database) const;
    INT64 ColumnInt64(sqlite3_stmt* statement, int column) const;
    // False when ColumnInt64 has no function behind it: what it then gives is no value.
    bool ReadsIntegers() const noexcept { return m_entries.columnInt64 != nullptr; }
    // The text belongs to the statement and lives until its next step.
    const wchar_t* ColumnText(sqlite3_stmt* statement, int column) const;
    double ColumnDouble(sqlite3_stmt* statement, int column) const;

private:
    // Looked up by name in this order; see the definition of LookUpAll.
    struct Entries {
        FARPROC exec, free, prepare;
        int (*prepare16V2)(sqlite3*, const void*, int, sqlite3_stmt**, const void**);
        FARPROC reset, bindInt;
        int (*bindInt64)(sqlite3_stmt*, int, INT64);
        FARPROC bindText;
        int (*bindText16)(sqlite3_stmt*, int, const void*, int, void (*)(void*));
        int (*bindDouble)(sqlite3_stmt*, int, double);
        int (*step)(sqlite3_stmt*);
        int (*finalize)(sqlite3_stmt*);
        FARPROC mprintf, getTable, freeTable;
        int (*open)(const char*, sqlite3**);
        int (*close)(sqlite3*);
        FARPROC columnInt;
        INT64 (*columnInt64)(sqlite3_stmt*, int);
        const void* (*columnText16)(sqlite3_stmt*, int);
        double (*columnDouble)(sqlite3_stmt*, int);
        int (*initialize)();
        int (*shutdown)();
    };

    void LookUpAll() noexcept;
    template <class Entry>
    void LookUp(Entry& entry, const char* name) noexcept;

    HMODULE m_module = nullptr;
    Entries m_entries{};
};

} // namespace tsl
