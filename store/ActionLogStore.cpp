#include "store/ActionLogStore.h"

#include "files/DataFolders.h"
#include "store/SqliteResult.h"

namespace tsl {

namespace {

// Takes effect only in a new, empty file.
constexpr wchar_t kPageSizeText[] = L"PRAGMA page_size = 2048;";

std::unique_ptr<const SqliteApi> LoadEngine(HMODULE module) {
    auto engine = std::make_unique<SqliteApi>();
    if (FAILED(engine->Load(module, /*initializeOnly=*/false))) engine.reset();
    return engine;
}

} // namespace

CActionLogStore::CActionLogStore(HMODULE module) {
    m_engine = LoadEngine(module); // after the locks
}

HRESULT CActionLogStore::Open(const std::wstring& fileName, std::wstring_view prefix,
                              std::wstring_view name, CDatabase* database, TableShape shape,
                              bool create, FileUse use) const {
    if (!database || !m_engine) return E_POINTER;
    database->Close();
    if (fileName.empty()) return E_INVALIDARG;
    int result = database->Open(*m_engine, DbFolder() + fileName, use);
    if (result == kSqliteOk) result = ExecuteStatement(*database, kPageSizeText);
    const HRESULT opened = SqliteResultToHresult(result);
    if (FAILED(opened)) return opened;
    if (create) {
        const auto createTable =
            shape == TableShape::Action ? CreateActionTable : CreateRecordIdTable;
        createTable(m_engine.get(), *database, prefix, name);
    }
    return S_OK;
}

} // namespace tsl
