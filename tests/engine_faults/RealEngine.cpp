#include "tests/engine_faults/RealEngine.h"

#include <bit>

namespace tsl::test {

bool RealEngine::Bind(HMODULE module) {
    bool complete = true;
    const auto bind = [&](auto& function, const char* name) {
        function = std::bit_cast<std::remove_reference_t<decltype(function)>>(
            GetProcAddress(module, name));
        complete = complete && function;
    };
    bind(exec, "sqlite3_exec");
    bind(free, "sqlite3_free");
    bind(prepare, "sqlite3_prepare");
    bind(prepare16V2, "sqlite3_prepare16_v2");
    bind(reset, "sqlite3_reset");
    bind(bindInt, "sqlite3_bind_int");
    bind(bindInt64, "sqlite3_bind_int64");
    bind(bindText, "sqlite3_bind_text");
    bind(bindText16, "sqlite3_bind_text16");
    bind(bindDouble, "sqlite3_bind_double");
    bind(step, "sqlite3_step");
    bind(finalize, "sqlite3_finalize");
    bind(vmprintf, "sqlite3_vmprintf");
    bind(getTable, "sqlite3_get_table");
    bind(freeTable, "sqlite3_free_table");
    bind(open, "sqlite3_open");
    bind(close, "sqlite3_close");
    bind(columnInt, "sqlite3_column_int");
    bind(columnInt64, "sqlite3_column_int64");
    bind(columnText16, "sqlite3_column_text16");
    bind(columnDouble, "sqlite3_column_double");
    bind(initialize, "sqlite3_initialize");
    bind(shutdown, "sqlite3_shutdown");
    return complete;
}

} // namespace tsl::test
