#include "upkeep/Connection.h"

#include <sqlite3.h>

#include "console/Text.h"
#include "engine/EngineGuard.h"

namespace tsl {

namespace {

// For all connections of the process, once.
int GuardEngine() noexcept {
    static const int result = GuardFiles(/*sharesDeletion=*/true);
    return result;
}

// Reads the schema while it may call no functions, so that one that does is refused. Only then may
// our own statements.
int LookAtSchema(sqlite3* connection, int mostArguments) noexcept {
    const int result =
        sqlite3_exec(connection, "SELECT 1 FROM sqlite_schema LIMIT 1", nullptr, nullptr, nullptr);
    sqlite3_limit(connection, SQLITE_LIMIT_FUNCTION_ARG, mostArguments);
    return result;
}

} // namespace

CSqliteError::CSqliteError(int result, const char* words)
    : std::runtime_error(RepairUtf8(words) + " (" + std::to_string(result & 0xFF) + ")"),
      m_result(result & 0xFF) {}

CConnection::CConnection(const std::wstring& path, Access access, int busyMilliseconds) {
    const int result = Open(path, access, busyMilliseconds);
    if (result == SQLITE_OK) return;
    const CSqliteError error(result,
                             m_connection ? sqlite3_errmsg(m_connection) : sqlite3_errstr(result));
    sqlite3_close(m_connection);
    throw error;
}

int CConnection::Open(const std::wstring& path, Access access, int busyMilliseconds) noexcept {
    int result = GuardEngine();
    if (result != SQLITE_OK) return result;
    const int flags = access == Access::ReadOnly ? SQLITE_OPEN_READONLY : SQLITE_OPEN_READWRITE;
    result = sqlite3_open_v2(ToUtf8(path).c_str(), &m_connection, flags, /*vfs=*/nullptr);
    if (result != SQLITE_OK) return result;
    sqlite3_busy_timeout(m_connection, busyMilliseconds);
    const int mostArguments = sqlite3_limit(m_connection, SQLITE_LIMIT_FUNCTION_ARG, -1);
    result = DistrustSchema(m_connection);
    return result == SQLITE_OK ? LookAtSchema(m_connection, mostArguments) : result;
}

CConnection::~CConnection() {
    sqlite3_close(m_connection);
}

void CConnection::Execute(const std::string& statements) const {
    const int result = sqlite3_exec(m_connection, statements.c_str(), nullptr, nullptr, nullptr);
    if (result != SQLITE_OK) throw CSqliteError(result, sqlite3_errmsg(m_connection));
}

INT64 CConnection::Number(const std::string& query) const {
    CQuery statement(*this, query);
    return statement.Step() ? statement.Int64(0) : 0;
}

CQuery::CQuery(const CConnection& connection, const std::string& text) : m_connection(connection) {
    Require(sqlite3_prepare_v2(connection.Get(), text.c_str(), -1, &m_statement, nullptr));
}

CQuery::~CQuery() {
    sqlite3_finalize(m_statement);
}

void CQuery::Require(int result) const {
    if (result != SQLITE_OK) throw CSqliteError(result, sqlite3_errmsg(m_connection.Get()));
}

CQuery& CQuery::Bind(INT64 value) {
    Require(sqlite3_bind_int64(m_statement, ++m_bound, value));
    return *this;
}

CQuery& CQuery::Bind(double value) {
    Require(sqlite3_bind_double(m_statement, ++m_bound, value));
    return *this;
}

CQuery& CQuery::Bind(const std::string& value) {
    Require(sqlite3_bind_text(m_statement, ++m_bound, value.data(), static_cast<int>(value.size()),
                              SQLITE_TRANSIENT));
    return *this;
}

CQuery& CQuery::BindNull() {
    Require(sqlite3_bind_null(m_statement, ++m_bound));
    return *this;
}

CQuery& CQuery::BindValue(const StoredValue& value) {
    if (const auto* const number = std::get_if<INT64>(&value)) return Bind(*number);
    if (const auto* const real = std::get_if<double>(&value)) return Bind(*real);
    if (const auto* const text = std::get_if<std::string>(&value)) return Bind(*text);
    const auto* const blob = std::get_if<BlobValue>(&value);
    if (!blob) return BindNull();
    Require(sqlite3_bind_blob(m_statement, ++m_bound, blob->bytes.data(),
                              static_cast<int>(blob->bytes.size()), SQLITE_TRANSIENT));
    return *this;
}

bool CQuery::Step() {
    const int result = sqlite3_step(m_statement);
    if (result != SQLITE_ROW && result != SQLITE_DONE) Require(result);
    return result == SQLITE_ROW;
}

void CQuery::Reset() {
    // Tells again what the last step told.
    sqlite3_reset(m_statement);
    m_bound = 0;
}

INT64 CQuery::Int64(int column) const {
    return sqlite3_column_int64(m_statement, column);
}

double CQuery::Double(int column) const {
    return sqlite3_column_double(m_statement, column);
}

StoredValue CQuery::Value(int column) const {
    switch (sqlite3_column_type(m_statement, column)) {
    case SQLITE_INTEGER:
        return Int64(column);
    case SQLITE_FLOAT:
        return Double(column);
    case SQLITE_TEXT:
        return Text(column).value_or(std::string());
    case SQLITE_BLOB: {
        const auto* const bytes =
            static_cast<const char*>(sqlite3_column_blob(m_statement, column));
        const auto size = static_cast<size_t>(sqlite3_column_bytes(m_statement, column));
        return BlobValue{bytes ? std::string(bytes, size) : std::string()};
    }
    default:
        return {};
    }
}

int CQuery::ColumnCount() const {
    return sqlite3_column_count(m_statement);
}

std::optional<std::string> CQuery::Text(int column) const {
    const auto* const text =
        reinterpret_cast<const char*>(sqlite3_column_text(m_statement, column));
    if (!text) return std::nullopt;
    return std::string(text, static_cast<size_t>(sqlite3_column_bytes(m_statement, column)));
}

std::wstring CQuery::WideText(int column) const {
    const auto* const text =
        static_cast<const wchar_t*>(sqlite3_column_text16(m_statement, column));
    return text ? std::wstring(text) : std::wstring();
}

} // namespace tsl
