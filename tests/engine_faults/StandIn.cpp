// An engine that hands every call to the real one, except for those that a test wants to fail. It
// never answers in the real engine's place but by failing.
#include <cstdarg>
#include <cwchar>
#include <map>
#include <string>

#include "tests/engine_faults/RealEngine.h"
#include "tests/engine_faults/StandInState.h"

namespace tsl::test {

namespace {

struct Statement {
    int connection;
    std::wstring text;
    int failure; // of a step, which finalizing the statement reports again
};

RealEngine g_real;
StandInState g_state;
std::map<sqlite3*, int> g_connections;
std::map<sqlite3_stmt*, Statement> g_statements;

// Counts the call; whether it is to fail.
bool Fails(EngineEntry entry) {
    const int call = ++g_state.calls[static_cast<int>(entry)];
    const EngineFault& fault = g_state.fault;
    if (fault.entry != entry) return false;
    return call == fault.call || (fault.lasting && call > fault.call);
}

int FaultCode(EngineEntry entry, int connection, const std::wstring& statement) {
    if (g_state.hitCount < StandInState::kMostHits) {
        FaultHit& hit = g_state.hits[g_state.hitCount];
        hit.entry = entry;
        hit.connection = connection;
        std::wcsncpy(hit.statement, statement.c_str(), std::size(hit.statement) - 1);
    }
    ++g_state.hitCount;
    return g_state.fault.code;
}

int FaultCode(EngineEntry entry, sqlite3_stmt* statement) {
    const Statement& known = g_statements.at(statement);
    return FaultCode(entry, known.connection, known.text);
}

void CountOpen() {
    g_state.openConnections = static_cast<int>(g_connections.size());
    g_state.openStatements = static_cast<int>(g_statements.size());
}

void RollBack(sqlite3_stmt* statement) {
    for (const auto& [connection, number] : g_connections) {
        if (number != g_statements.at(statement).connection) continue;
        g_real.exec(connection, "ROLLBACK", nullptr, nullptr, nullptr);
    }
}

int FailedStep(sqlite3_stmt* statement) {
    const FaultMoment moment = g_state.fault.moment;
    if (moment == FaultMoment::Afterwards) g_real.step(statement);
    if (moment == FaultMoment::RollingBack) RollBack(statement);
    return g_statements.at(statement).failure = FaultCode(EngineEntry::Step, statement);
}

} // namespace

// The numbers of the test, to be read and set by it.
extern "C" StandInState* fault_state() {
    return &g_state;
}

// Names the real engine, which must stay loaded. False when it lacks a function.
extern "C" bool use_engine(HMODULE module) {
    return g_real.Bind(module);
}

// Ends what whoever uses the engine left open.
extern "C" void release_left_open() {
    for (const auto& [statement, known] : g_statements)
        g_real.finalize(statement);
    g_statements.clear();
    for (const auto& [connection, number] : g_connections)
        g_real.close(connection);
    g_connections.clear();
    CountOpen();
}

} // namespace tsl::test

using namespace tsl::test;

// What the component calls.

int sqlite3_open(const char* path, sqlite3** connection) {
    const bool fails = Fails(EngineEntry::Open);
    const int number = ++g_state.connections;
    int result = SQLITE_OK;
    *connection = nullptr;
    if (!fails || g_state.fault.moment == FaultMoment::Afterwards) {
        result = g_real.open(path, connection);
    }
    if (*connection) g_connections[*connection] = number;
    CountOpen();
    return fails ? FaultCode(EngineEntry::Open, number, L"") : result;
}

int sqlite3_close(sqlite3* connection) {
    const bool fails = Fails(EngineEntry::Close);
    const int result = g_real.close(connection);
    const int number = connection ? g_connections.at(connection) : 0;
    if (result == SQLITE_OK) g_connections.erase(connection);
    CountOpen();
    return fails ? FaultCode(EngineEntry::Close, number, L"") : result;
}

int sqlite3_prepare16_v2(sqlite3* connection, const void* text, int bytes, sqlite3_stmt** statement,
                         const void** tail) {
    const int number = g_connections.at(connection);
    const std::wstring copy(static_cast<const wchar_t*>(text));
    if (Fails(EngineEntry::Prepare16V2)) {
        *statement = nullptr;
        return FaultCode(EngineEntry::Prepare16V2, number, copy);
    }
    const int result = g_real.prepare16V2(connection, text, bytes, statement, tail);
    if (*statement) g_statements[*statement] = {number, copy, SQLITE_OK};
    CountOpen();
    return result;
}

int sqlite3_bind_int64(sqlite3_stmt* statement, int index, sqlite3_int64 value) {
    constexpr EngineEntry entry = EngineEntry::BindInt64;
    return Fails(entry) ? FaultCode(entry, statement) : g_real.bindInt64(statement, index, value);
}

int sqlite3_bind_text16(sqlite3_stmt* statement, int index, const void* text, int bytes,
                        void (*destructor)(void*)) {
    constexpr EngineEntry entry = EngineEntry::BindText16;
    return Fails(entry) ? FaultCode(entry, statement)
                        : g_real.bindText16(statement, index, text, bytes, destructor);
}

int sqlite3_bind_double(sqlite3_stmt* statement, int index, double value) {
    constexpr EngineEntry entry = EngineEntry::BindDouble;
    return Fails(entry) ? FaultCode(entry, statement) : g_real.bindDouble(statement, index, value);
}

int sqlite3_step(sqlite3_stmt* statement) {
    return Fails(EngineEntry::Step) ? FailedStep(statement) : g_real.step(statement);
}

int sqlite3_finalize(sqlite3_stmt* statement) {
    const bool fails = Fails(EngineEntry::Finalize);
    const int result = g_real.finalize(statement);
    if (!statement) return result;
    const int failure =
        fails ? FaultCode(EngineEntry::Finalize, statement) : g_statements.at(statement).failure;
    g_statements.erase(statement);
    CountOpen();
    return failure != SQLITE_OK ? failure : result;
}

sqlite3_int64 sqlite3_column_int64(sqlite3_stmt* statement, int column) {
    Fails(EngineEntry::ColumnInt64);
    return g_real.columnInt64(statement, column);
}

const void* sqlite3_column_text16(sqlite3_stmt* statement, int column) {
    if (!Fails(EngineEntry::ColumnText16)) return g_real.columnText16(statement, column);
    FaultCode(EngineEntry::ColumnText16, statement);
    return nullptr;
}

double sqlite3_column_double(sqlite3_stmt* statement, int column) {
    Fails(EngineEntry::ColumnDouble);
    return g_real.columnDouble(statement, column);
}

// What it only looks up.

int sqlite3_exec(sqlite3* connection, const char* text, int (*onRow)(void*, int, char**, char**),
                 void* context, char** error) {
    Fails(EngineEntry::Exec);
    return g_real.exec(connection, text, onRow, context, error);
}

void sqlite3_free(void* memory) {
    Fails(EngineEntry::Free);
    g_real.free(memory);
}

int sqlite3_prepare(sqlite3* connection, const char* text, int bytes, sqlite3_stmt** statement,
                    const char** tail) {
    Fails(EngineEntry::Prepare);
    return g_real.prepare(connection, text, bytes, statement, tail);
}

int sqlite3_reset(sqlite3_stmt* statement) {
    Fails(EngineEntry::Reset);
    return g_real.reset(statement);
}

int sqlite3_bind_int(sqlite3_stmt* statement, int index, int value) {
    Fails(EngineEntry::BindInt);
    return g_real.bindInt(statement, index, value);
}

int sqlite3_bind_text(sqlite3_stmt* statement, int index, const char* text, int bytes,
                      void (*destructor)(void*)) {
    Fails(EngineEntry::BindText);
    return g_real.bindText(statement, index, text, bytes, destructor);
}

char* sqlite3_mprintf(const char* format, ...) {
    Fails(EngineEntry::Mprintf);
    va_list arguments;
    va_start(arguments, format);
    char* const text = g_real.vmprintf(format, arguments);
    va_end(arguments);
    return text;
}

int sqlite3_get_table(sqlite3* connection, const char* text, char*** table, int* rows, int* columns,
                      char** error) {
    Fails(EngineEntry::GetTable);
    return g_real.getTable(connection, text, table, rows, columns, error);
}

void sqlite3_free_table(char** table) {
    Fails(EngineEntry::FreeTable);
    g_real.freeTable(table);
}

int sqlite3_column_int(sqlite3_stmt* statement, int column) {
    Fails(EngineEntry::ColumnInt);
    return g_real.columnInt(statement, column);
}

int sqlite3_initialize() {
    Fails(EngineEntry::Initialize);
    return g_real.initialize();
}

int sqlite3_shutdown() {
    Fails(EngineEntry::Shutdown);
    return g_real.shutdown();
}
