// The functions of the real engine, to which the stand-in hands every call.
#pragma once

#include <windows.h>

#include <sqlite3.h>

namespace tsl::test {

struct RealEngine {
    decltype(&::sqlite3_exec) exec;
    decltype(&::sqlite3_free) free;
    decltype(&::sqlite3_prepare) prepare;
    decltype(&::sqlite3_prepare16_v2) prepare16V2;
    decltype(&::sqlite3_reset) reset;
    decltype(&::sqlite3_bind_int) bindInt;
    decltype(&::sqlite3_bind_int64) bindInt64;
    decltype(&::sqlite3_bind_text) bindText;
    decltype(&::sqlite3_bind_text16) bindText16;
    decltype(&::sqlite3_bind_double) bindDouble;
    decltype(&::sqlite3_step) step;
    decltype(&::sqlite3_finalize) finalize;
    decltype(&::sqlite3_vmprintf) vmprintf; // in the place of mprintf, whose arguments vary
    decltype(&::sqlite3_get_table) getTable;
    decltype(&::sqlite3_free_table) freeTable;
    decltype(&::sqlite3_open) open;
    decltype(&::sqlite3_close) close;
    decltype(&::sqlite3_column_int) columnInt;
    decltype(&::sqlite3_column_int64) columnInt64;
    decltype(&::sqlite3_column_text16) columnText16;
    decltype(&::sqlite3_column_double) columnDouble;
    decltype(&::sqlite3_initialize) initialize;
    decltype(&::sqlite3_shutdown) shutdown;

    // Whether the module has them all.
    bool Bind(HMODULE module);
};

} // namespace tsl::test
