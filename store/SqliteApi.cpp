#include "store/SqliteApi.h"

#include <bit>

#include "files/Paths.h"
#include "store/ActivationContext.h"

namespace tsl {

namespace {

constexpr wchar_t kEngineFileName[] = L"SQLite3.dll";

// The resource that names the engine's assembly for this processor.
constexpr int kEngineManifestResource = 205;

} // namespace

HRESULT SqliteApi::Load(HMODULE module, bool initializeOnly) {
    std::wstring modulePath;
    ModuleFilePath(modulePath, module);
    const CActivationContext context(module, modulePath, kEngineManifestResource);
    if (!m_module && context.IsActive()) m_module = LoadLibraryW(kEngineFileName);
    if (!m_module) return E_FAIL;
    if (!initializeOnly) {
        LookUpAll();
        return S_OK;
    }
    LookUp(m_entries.initialize, "sqlite3_initialize");
    LookUp(m_entries.shutdown, "sqlite3_shutdown");
    if (m_entries.initialize) m_entries.initialize();
    return S_OK;
}

void SqliteApi::Unload() noexcept {
    if (m_module) FreeLibrary(m_module);
    m_module = nullptr;
    m_entries = {};
}

template <class Entry>
void SqliteApi::LookUp(Entry& entry, const char* name) noexcept {
    entry = std::bit_cast<Entry>(GetProcAddress(m_module, name));
}

// All names that the binding has ever looked up, in their order, used or not.
void SqliteApi::LookUpAll() noexcept {
    LookUp(m_entries.exec, "sqlite3_exec");
    LookUp(m_entries.free, "sqlite3_free");
    LookUp(m_entries.prepare, "sqlite3_prepare");
    LookUp(m_entries.prepare16V2, "sqlite3_prepare16_v2");
    LookUp(m_entries.reset, "sqlite3_reset");
    LookUp(m_entries.bindInt, "sqlite3_bind_int");
    LookUp(m_entries.bindInt64, "sqlite3_bind_int64");
    LookUp(m_entries.bindText, "sqlite3_bind_text");
    LookUp(m_entries.bindText16, "sqlite3_bind_text16");
    LookUp(m_entries.bindDouble, "sqlite3_bind_double");
    LookUp(m_entries.step, "sqlite3_step");
    LookUp(m_entries.finalize, "sqlite3_finalize");
    LookUp(m_entries.mprintf, "sqlite3_mprintf");
    LookUp(m_entries.getTable, "sqlite3_get_table");
    LookUp(m_entries.freeTable, "sqlite3_free_table");
    LookUp(m_entries.open, "sqlite3_open");
    LookUp(m_entries.close, "sqlite3_close");
    LookUp(m_entries.columnInt, "sqlite3_column_int");
    LookUp(m_entries.columnInt64, "sqlite3_column_int64");
    LookUp(m_entries.columnText16, "sqlite3_column_text16");
    LookUp(m_entries.columnDouble, "sqlite3_column_double");
    LookUp(m_entries.initialize, "sqlite3_initialize");
    LookUp(m_entries.shutdown, "sqlite3_shutdown");
}

int SqliteApi::Prepare(sqlite3* database, CSqlText text, sqlite3_stmt** statement) const {
    if (!m_entries.prepare16V2) return kSqliteError;
    return m_entries.prepare16V2(database, text.Get(), static_cast<int>(text.BytesWithTerminator()),
                                 statement, /*tail=*/nullptr);
}

int SqliteApi::BindInt64(sqlite3_stmt* statement, int index, INT64 value) const {
    return m_entries.bindInt64 ? m_entries.bindInt64(statement, index, value) : kSqliteError;
}

int SqliteApi::BindText(sqlite3_stmt* statement, int index, const wchar_t* text) const {
    if (!m_entries.bindText16) return kSqliteError;
    return m_entries.bindText16(statement, index, text, /*bytes: up to the terminator*/ -1,
                                /*destructor: the text is static*/ nullptr);
}

int SqliteApi::BindDouble(sqlite3_stmt* statement, int index, double value) const {
    return m_entries.bindDouble ? m_entries.bindDouble(statement, index, value) : kSqliteError;
}

int SqliteApi::Step(sqlite3_stmt* statement) const {
    return m_entries.step ? m_entries.step(statement) : kSqliteError;
}

int SqliteApi::Finalize(sqlite3_stmt* statement) const {
    return m_entries.finalize ? m_entries.finalize(statement) : kSqliteError;
}

int SqliteApi::Open(const char* utf8Path, sqlite3** database) const {
    return m_entries.open ? m_entries.open(utf8Path, database) : kSqliteError;
}

int SqliteApi::Close(sqlite3* database) const {
    return m_entries.close ? m_entries.close(database) : kSqliteError;
}

INT64 SqliteApi::ColumnInt64(sqlite3_stmt* statement, int column) const {
    return m_entries.columnInt64 ? m_entries.columnInt64(statement, column) : kSqliteError;
}

const wchar_t* SqliteApi::ColumnText(sqlite3_stmt* statement, int column) const {
    if (!m_entries.columnText16) return nullptr;
    return static_cast<const wchar_t*>(m_entries.columnText16(statement, column));
}

double SqliteApi::ColumnDouble(sqlite3_stmt* statement, int column) const {
    return m_entries.columnDouble ? m_entries.columnDouble(statement, column) : 1.0;
}

} // namespace tsl
