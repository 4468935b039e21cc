// A database and a statement with nothing around the engine's calls but the test of their results.
// Used by one thread.
#pragma once

#include "bench/support/Engine.h"

namespace tsl::bench {

// A table: its file, and the text that makes it.
struct FloorTable {
    std::string file; // UTF-8
    std::wstring createText;
    std::wstring name;
};

// Opened as every operation opens it: the page size set, the table made when it is missing.
class CFloorDatabase {
public:
    CFloorDatabase(const CEngine& engine, const FloorTable& table);
    CFloorDatabase(const CFloorDatabase&) = delete;
    CFloorDatabase& operator=(const CFloorDatabase&) = delete;
    ~CFloorDatabase() { m_engine.close(m_connection); }

    const CEngine& Engine() const noexcept { return m_engine; }
    sqlite3* Connection() const noexcept { return m_connection; }

private:
    const CEngine& m_engine;
    sqlite3* m_connection = nullptr;
};

// Throws CHresultError when the engine refuses anything.
class CFloorStatement {
public:
    CFloorStatement(const CFloorDatabase& database, const std::wstring& text);
    CFloorStatement(const CFloorStatement&) = delete;
    CFloorStatement& operator=(const CFloorStatement&) = delete;
    ~CFloorStatement() { m_engine.finalize(m_statement); }

    // Binds the next parameter. A null text is NULL.
    CFloorStatement& Bind(sqlite3_int64 value);
    CFloorStatement& Bind(double value);
    CFloorStatement& Bind(const wchar_t* text);

    // Whether there is another row.
    bool Step();

    sqlite3_int64 Int64(int column) { return m_engine.columnInt64(m_statement, column); }
    double Double(int column) { return m_engine.columnDouble(m_statement, column); }
    const wchar_t* Text(int column) {
        return static_cast<const wchar_t*>(m_engine.columnText(m_statement, column));
    }

private:
    const CEngine& m_engine;
    sqlite3_stmt* m_statement = nullptr;
    int m_bound = 0;
};

} // namespace tsl::bench
