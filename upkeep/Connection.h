// SQLite as the looking-after uses it: an engine of the program's own, so that a store can be
// looked after where the component's engine is missing. Owners of a connection and a statement,
// each used by one thread. Every failure is a CSqliteError.
#pragma once

#include <windows.h>

#include <optional>
#include <stdexcept>
#include <string>

#include "upkeep/StoredValue.h"

struct sqlite3;
struct sqlite3_stmt;

namespace tsl {

// What the engine answered, with its own words: "database disk image is malformed (11)".
class CSqliteError : public std::runtime_error {
public:
    CSqliteError(int result, const char* words);

    // The primary result code.
    int Result() const noexcept { return m_result; }

private:
    int m_result;
};

enum class Access { ReadOnly, ReadWrite };

class CConnection {
public:
    // As long as the component's own locks wait.
    static constexpr int kBusyMilliseconds = 3'000;

    // Opens a file that is there and waits so long for others who are in it. What the file says is
    // not run: triggers and views are off, and one whose schema calls functions is refused, as it
    // is by hosts. Links are not followed.
    CConnection(const std::wstring& path, Access access, int busyMilliseconds = kBusyMilliseconds);
    CConnection(const CConnection&) = delete;
    CConnection& operator=(const CConnection&) = delete;
    ~CConnection();

    sqlite3* Get() const noexcept { return m_connection; }

    // Runs statements that yield nothing that is looked at.
    void Execute(const std::string& statements) const;

    // The number that a query yields in its first row.
    INT64 Number(const std::string& query) const;

private:
    int Open(const std::wstring& path, Access access, int busyMilliseconds) noexcept;

    sqlite3* m_connection = nullptr;
};

class CQuery {
public:
    CQuery(const CConnection& connection, const std::string& text);
    CQuery(const CQuery&) = delete;
    CQuery& operator=(const CQuery&) = delete;
    ~CQuery();

    // Binds the next parameter.
    CQuery& Bind(INT64 value);
    CQuery& Bind(double value);
    CQuery& Bind(const std::string& value);
    CQuery& BindNull();
    // Of whatever kind it is, byte for byte.
    CQuery& BindValue(const StoredValue& value);

    // Whether there is another row.
    bool Step();
    // Makes it ready to be bound and stepped anew.
    void Reset();

    INT64 Int64(int column) const;
    // As the component reads its unsigned numbers: the lower half of what is stored.
    UINT32 Uint32(int column) const { return static_cast<UINT32>(Int64(column)); }
    double Double(int column) const;
    // UTF-8; nothing for NULL.
    std::optional<std::string> Text(int column) const;
    // UTF-16, whatever the bytes in the file are; empty for NULL.
    std::wstring WideText(int column) const;
    // As it is stored.
    StoredValue Value(int column) const;
    int ColumnCount() const;

private:
    void Require(int result) const;

    const CConnection& m_connection;
    sqlite3_stmt* m_statement = nullptr;
    int m_bound = 0;
};

} // namespace tsl
