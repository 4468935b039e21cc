// The component's own engine, as the floors call it: the same file, and so the same code and the
// same memory. Used by one thread.
#pragma once

#include <sqlite3.h>

#include <string>

#include "base/LoadedLibrary.h"

namespace tsl::bench {

class CEngine {
public:
    // Loads the engine that lies beside the component. Throws CHresultError.
    CEngine();

    HMODULE Module() const noexcept { return m_library.Module(); }

    decltype(&sqlite3_open) open;
    decltype(&sqlite3_close) close;
    decltype(&sqlite3_prepare16_v2) prepare;
    decltype(&sqlite3_bind_int64) bindInt64;
    decltype(&sqlite3_bind_text16) bindText;
    decltype(&sqlite3_bind_double) bindDouble;
    decltype(&sqlite3_step) step;
    decltype(&sqlite3_finalize) finalize;
    decltype(&sqlite3_column_int64) columnInt64;
    decltype(&sqlite3_column_text16) columnText;
    decltype(&sqlite3_column_double) columnDouble;

private:
    CLoadedLibrary m_library;
};

} // namespace tsl::bench
