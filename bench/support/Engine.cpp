#include "bench/support/Engine.h"

#include "base/Hresult.h"
#include "console/StorePlace.h"

namespace tsl::bench {

CEngine::CEngine() : m_library(ProgramFolder() + L"Corvane.Nimbra.SQLiteEngine\\SQLite3.dll") {
    if (!m_library) throw CHresultError(HresultFromLastError());
    const auto find = [this]<class Function>(Function& function, const char* name) {
        function = m_library.Find<Function>(name);
        if (!function) throw CHresultError(HresultFromLastError());
    };
    find(open, "sqlite3_open");
    find(close, "sqlite3_close");
    find(prepare, "sqlite3_prepare16_v2");
    find(bindInt64, "sqlite3_bind_int64");
    find(bindText, "sqlite3_bind_text16");
    find(bindDouble, "sqlite3_bind_double");
    find(step, "sqlite3_step");
    find(finalize, "sqlite3_finalize");
    find(columnInt64, "sqlite3_column_int64");
    find(columnText, "sqlite3_column_text16");
    find(columnDouble, "sqlite3_column_double");
}

} // namespace tsl::bench
