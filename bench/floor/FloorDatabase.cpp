#include "bench/floor/FloorDatabase.h"

#include "base/Hresult.h"

namespace tsl::bench {

namespace {

void RequireOk(int result) {
    if (result != SQLITE_OK) throw CHresultError(E_FAIL);
}

} // namespace

CFloorDatabase::CFloorDatabase(const CEngine& engine, const FloorTable& table) : m_engine(engine) {
    static const std::wstring pageSizeText = L"PRAGMA page_size = 2048;";
    RequireOk(engine.open(table.file.c_str(), &m_connection));
    CFloorStatement(*this, pageSizeText).Step();
    CFloorStatement(*this, table.createText).Step();
}

CFloorStatement::CFloorStatement(const CFloorDatabase& database, const std::wstring& text)
    : m_engine(database.Engine()) {
    const int bytes = static_cast<int>((text.size() + 1) * sizeof(wchar_t));
    RequireOk(m_engine.prepare(database.Connection(), text.c_str(), bytes, &m_statement, nullptr));
}

CFloorStatement& CFloorStatement::Bind(sqlite3_int64 value) {
    RequireOk(m_engine.bindInt64(m_statement, ++m_bound, value));
    return *this;
}

CFloorStatement& CFloorStatement::Bind(double value) {
    RequireOk(m_engine.bindDouble(m_statement, ++m_bound, value));
    return *this;
}

CFloorStatement& CFloorStatement::Bind(const wchar_t* text) {
    RequireOk(m_engine.bindText(m_statement, ++m_bound, text, -1, SQLITE_STATIC));
    return *this;
}

bool CFloorStatement::Step() {
    const int result = m_engine.step(m_statement);
    if (result != SQLITE_ROW && result != SQLITE_DONE) throw CHresultError(E_FAIL);
    return result == SQLITE_ROW;
}

} // namespace tsl::bench
