// What the stand-in of the engine and the test that loads it share: the fault that is wanted, and
// what was seen. Plain data; the engine's functions and the test run on one thread.
#pragma once

namespace tsl::test {

// The engine's functions that the component looks up, in that order.
enum class EngineEntry {
    Exec,
    Free,
    Prepare,
    Prepare16V2,
    Reset,
    BindInt,
    BindInt64,
    BindText,
    BindText16,
    BindDouble,
    Step,
    Finalize,
    Mprintf,
    GetTable,
    FreeTable,
    Open,
    Close,
    ColumnInt,
    ColumnInt64,
    ColumnText16,
    ColumnDouble,
    Initialize,
    Shutdown,
    None,
};

inline constexpr int kEntryCount = static_cast<int>(EngineEntry::None);

inline constexpr const char* kEntryNames[kEntryCount] = {
    "sqlite3_exec",          "sqlite3_free",        "sqlite3_prepare",      "sqlite3_prepare16_v2",
    "sqlite3_reset",         "sqlite3_bind_int",    "sqlite3_bind_int64",   "sqlite3_bind_text",
    "sqlite3_bind_text16",   "sqlite3_bind_double", "sqlite3_step",         "sqlite3_finalize",
    "sqlite3_mprintf",       "sqlite3_get_table",   "sqlite3_free_table",   "sqlite3_open",
    "sqlite3_close",         "sqlite3_column_int",  "sqlite3_column_int64", "sqlite3_column_text16",
    "sqlite3_column_double", "sqlite3_initialize",  "sqlite3_shutdown",
};

// What the component only looks up.
inline constexpr EngineEntry kUnusedEntries[] = {
    EngineEntry::Exec,      EngineEntry::Free,      EngineEntry::Prepare,    EngineEntry::Reset,
    EngineEntry::BindInt,   EngineEntry::BindText,  EngineEntry::Mprintf,    EngineEntry::GetTable,
    EngineEntry::FreeTable, EngineEntry::ColumnInt, EngineEntry::Initialize, EngineEntry::Shutdown,
};

inline const char* NameOf(EngineEntry entry) {
    return kEntryNames[static_cast<int>(entry)];
}

// When a call fails. Finalizing and closing are always done first, as the engine does them.
enum class FaultMoment {
    Instead,    // the call is not made
    Afterwards, // the call is made, but reports the failure (open, step)
    RollingBack // as Instead, and the transaction is rolled back as the engine does when a disk is
                // full (step)
};

struct EngineFault {
    EngineEntry entry = EngineEntry::None;
    int call = 0; // counted from 1 over all calls of the function
    int code = 0; // a column's text has none: it is null instead
    FaultMoment moment = FaultMoment::Instead;
    bool lasting = false; // later calls fail too
};

// A call that was made to fail.
struct FaultHit {
    EngineEntry entry = EngineEntry::None;
    int connection = 0;         // opened as the nth, counted from 1
    wchar_t statement[64] = {}; // the beginning of its text
};

struct StandInState {
    EngineFault fault;

    // Since the fault was set.
    int calls[kEntryCount] = {};
    int connections = 0; // attempts to open one
    static constexpr int kMostHits = 64;
    int hitCount = 0; // more than are kept may have come
    FaultHit hits[kMostHits] = {};

    // What is open now.
    int openConnections = 0;
    int openStatements = 0;
};

} // namespace tsl::test
