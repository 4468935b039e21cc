// Commands on databases that say what the engine is to run: each ends soon, in little memory.
#include <psapi.h>

#include "tests/support/FileDatabase.h"
#include "tests/untrusted_folder/HostileSchemas.h"
#include "tests/untrusted_folder/UpkeepFixture.h"

namespace tsl::test {

namespace fs = std::filesystem;

namespace {

constexpr ULONGLONG kMostMilliseconds = 5'000;
constexpr size_t kMostBytes = size_t{256} << 20;

// Each takes most of the memory or minutes, in a single call.
const char* const kExpressions[] = {
    "length(hex(zeroblob(450000000)))",
    "length(printf('%.*c', 100000000, 'x') || printf('%.*c', 100000000, 'y'))",
    "instr(hex(zeroblob(4000000)), hex(zeroblob(500000)) || '1')",
};

// What an action table says instead of what it said when its rows were written.
struct Change {
    const char* name;
    const char* said;
    const char* says; // with the expression in the place of %
};
const Change kChanges[] = {
    {"check", "LogKind INTEGER)", "LogKind INTEGER, CHECK (% > 0))"},
    {"generated column", "LogKind INTEGER)", "LogKind INTEGER, x NOT NULL AS (% + ActionLogId))"},
    {"generated user", "UserId INTEGER", "UserId AS (% + LogKind)"},
    {"generated id", "ActionLogId INTEGER", "ActionLogId AS (% + LogKind)"},
    {"generated text", "ActionParameters TEXT", "ActionParameters AS (%)"},
    {"index", "i ON TslIf_DbActionLog(UserId)", "i ON TslIf_DbActionLog(UserId + %)"},
    {"index of a part", "i ON TslIf_DbActionLog(UserId)",
     "i ON TslIf_DbActionLog(UserId) WHERE % + UserId > 0"},
};

// The same in words of SQL: rows first, then what the schema is to say of them.
std::string ChangeText(const Change& change, const std::string& expression) {
    std::string says = change.says;
    says.replace(says.find('%'), 1, expression);
    const auto quoted = [](const std::string& text) {
        std::string doubled;
        for (const char character : text)
            doubled.append(character == '\'' ? 2 : 1, character);
        return "'" + doubled + "'";
    };
    return "CREATE INDEX i ON TslIf_DbActionLog(UserId); PRAGMA writable_schema = ON; UPDATE "
           "sqlite_schema SET sql = replace(sql, " +
           quoted(change.said) + ", " + quoted(says) + ")";
}

} // namespace

class UpkeepSchema : public UntrustedStore {
protected:
    void Place(const HostileSchema& schema) const {
        fs::remove_all(StoreFolder().parent_path());
        MakeCounterFile(L"00000100");
        FileDatabase(Store().actionLog, /*create=*/true).Query(schema.sql);
    }

    void ExpectEndsSoon(const std::wstring& command) const {
        RunningConsole console(command);
        const CHandle process(OpenProcess(PROCESS_QUERY_INFORMATION | PROCESS_VM_READ | SYNCHRONIZE,
                                          FALSE, console.ProcessId()));
        const ULONGLONG start = GetTickCount64();
        size_t most = 0;
        PROCESS_MEMORY_COUNTERS counters{};
        while (WaitForSingleObject(process.Get(), 20) == WAIT_TIMEOUT &&
               GetTickCount64() - start < kMostMilliseconds && most < kMostBytes) {
            if (GetProcessMemoryInfo(process.Get(), &counters, sizeof counters))
                most = std::max<size_t>(most, counters.PagefileUsage);
        }
        EXPECT_LT(GetTickCount64() - start, kMostMilliseconds);
        EXPECT_LT(most, kMostBytes);
        // One that goes on is ended here.
        if (console.IsRunning()) {
            EXPECT_TRUE(command.starts_with(L"follow"));
        }
    }
};

TEST_F(UpkeepSchema, IsNotRunForRowsThatAreThere) {
    size_t tried = 0;
    for (const Change& change : kChanges) {
        const std::string expression = kExpressions[++tried % std::size(kExpressions)];
        for (const std::wstring& command :
             {Typed(L"backup", L"made"), std::wstring(L"compact"), std::wstring(L"doctor"),
              std::wstring(L"recover --force"), Typed(L"export --output", L"out"),
              std::wstring(L"stats"), Typed(L"report", L"out")}) {
            SCOPED_TRACE(std::string(change.name) + ", " + expression + ": " +
                         fs::path(command).string());
            ASSERT_NO_FATAL_FAILURE(MakeStore());
            {
                const FileDatabase database(Store().actionLog);
                database.Query(ChangeText(change, expression));
                ASSERT_NE("0", database.Value("SELECT count(*) FROM sqlite_schema WHERE sql LIKE "
                                              "'%zeroblob%' OR sql LIKE '%printf%'"));
            }
            ExpectEndsSoon(command);
            fs::remove_all(Out() / L"made");
        }
    }
}

TEST_F(UpkeepSchema, EndsSoonInLittleMemory) {
    std::vector<HostileSchema> schemas = HostileSchemas();
    const std::wstring commands[] = {
        Typed(L"backup", L"made"),         L"compact", L"doctor", L"recover --force",
        Typed(L"export --output", L"out"), L"stats"};
    size_t tried = 0;
    for (size_t index = 0; index < schemas.size(); index += index < 6 ? 1 : 9) {
        const HostileSchema& schema = schemas[index];
        for (const std::wstring& command : commands) {
            SCOPED_TRACE(schema.name + ": " + fs::path(command).string());
            ASSERT_NO_FATAL_FAILURE(Place(schema));
            ExpectEndsSoon(command);
            fs::remove_all(Out() / L"made");
        }
        ++tried;
    }
    EXPECT_GE(tried, 15u);
}

TEST_F(UpkeepSchema, IsNotRunByFollow) {
    const std::vector<HostileSchema> schemas = HostileSchemas();
    for (size_t index : {size_t{0}, size_t{3}, size_t{5}}) {
        SCOPED_TRACE(schemas[index].name);
        ASSERT_NO_FATAL_FAILURE(Place(schemas[index]));
        RunningConsole console(L"follow --after 0 --interval 10");
        const CHandle process(
            OpenProcess(PROCESS_QUERY_INFORMATION | PROCESS_VM_READ, FALSE, console.ProcessId()));
        size_t most = 0;
        FILETIME created{}, ended{}, kernel{}, user{};
        for (int look = 0; look < 60 && console.IsRunning(); ++look) {
            Sleep(25);
            PROCESS_MEMORY_COUNTERS counters{};
            if (GetProcessMemoryInfo(process.Get(), &counters, sizeof counters))
                most = std::max<size_t>(most, counters.PagefileUsage);
        }
        EXPECT_LT(most, kMostBytes);
        GetProcessTimes(process.Get(), &created, &ended, &kernel, &user);
        EXPECT_LT(user.dwLowDateTime, 10'000'000u) << "a second of work";
    }
}

} // namespace tsl::test
