#include "bench/support/Store.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <stdexcept>
#include <string_view>

#include "bench/support/Tables.h"
#include "console/StorePlace.h"

namespace tsl::bench {

namespace fs = std::filesystem;

namespace {

constexpr UINT32 kIdsBetweenLooks = 100;

constexpr wchar_t kParameters[] =
    L"'ullValues={4711,815}&usValues={7,12}&intValues={-1,2,30}&boolValues={1}&stringValues={A%20"
    L"title%20of%20usual%20length,Its%20maker,2026}&floatValues={0.500000}'";

fs::path StoreFolder() {
    return fs::path(CounterFilePath()).parent_path();
}

// Records first to last, whose times TimeOf tells.
std::wstring InsertText(std::wstring_view table, UINT32 first, UINT32 last) {
    return L"WITH RECURSIVE n(i) AS (SELECT " + std::to_wstring(first) +
           L" UNION ALL SELECT i + 1 FROM n WHERE i < " + std::to_wstring(last) +
           L") INSERT INTO " + std::wstring(table) + L" SELECT i, 0, i % 7, NULL, 1, 'playItem', " +
           kParameters + L", 45000 + i / 1440.0, 45000 + i / 1440.0, NULL, NULL, 0, 1 FROM n";
}

void WriteCounter(const fs::path& path, UINT32 counter) {
    wchar_t text[32];
    const int length =
        swprintf(text, std::size(text), L"\xFEFF%08lu\t\r\n", static_cast<unsigned long>(counter));
    std::ofstream(path, std::ios::binary)
        .write(reinterpret_cast<const char*>(text),
               static_cast<std::streamsize>(sizeof(wchar_t) * static_cast<size_t>(length)));
}

} // namespace

CStores::CStores(const CEngine& engine) : m_engine(engine) {
    const char* const allowed = std::getenv("TSL_TEST_STORE_MAY_BE_WIPED");
    if (!allowed || std::string_view(allowed) != "1") {
        throw std::runtime_error("the benchmarks delete the machine's action log; set "
                                 "TSL_TEST_STORE_MAY_BE_WIPED=1");
    }
    fs::remove_all(StoreFolder().parent_path());
}

CStores::~CStores() {
    std::error_code ignored;
    fs::remove_all(StoreFolder().parent_path(), ignored);
}

fs::path CStores::Shelf(UINT32 size) const {
    return StoreFolder().parent_path() / (L"Shelf" + std::to_wstring(size));
}

void CStores::Place(UINT32 size) {
    if (size == m_size) return;
    if (m_size != 0) fs::rename(StoreFolder(), Shelf(m_size));
    if (fs::exists(Shelf(size))) {
        fs::rename(Shelf(size), StoreFolder());
    } else {
        Make(size);
    }
    m_size = size;
    m_lastId = std::max(m_lastId, size);
}

void CStores::Make(UINT32 size) const {
    fs::create_directories(StoreFolder());
    const auto make = [this](const fs::path& file, const std::wstring& table, UINT32 first,
                             UINT32 last) {
        Run(file, L"PRAGMA page_size = 2048");
        Run(file, CreateText(table));
        Run(file, InsertText(table, first, last));
    };
    make(ActionLogPath(), kActionLogTable, 1, size);
    make(ActionLogPath(), kKeptTable, 1, kKeptRecords);
    make(ReplayLogPath(), kReplayTable, size - kReplayedRecords + 1, size);
    // The highest id of each file, as the component leaves it there.
    for (const fs::path file : {ActionLogPath(), ReplayLogPath()})
        Run(file, L"PRAGMA user_version = " + std::to_wstring(size));
    WriteCounter(CounterFilePath(), size);
}

void CStores::Restore() {
    const auto keep = [this](const fs::path& file, const std::wstring& table, UINT32 rows) {
        Run(file, L"DELETE FROM " + table + L" WHERE rowid > " + std::to_wstring(rows));
    };
    keep(ActionLogPath(), kActionLogTable, m_size);
    keep(ReplayLogPath(), kReplayTable, kReplayedRecords);
    keep(ActionLogPath(), kKeptTable, kKeptRecords);
}

UINT32 CStores::Add(const wchar_t* table, int count) {
    const UINT32 first = m_lastId + 1;
    m_lastId += static_cast<UINT32>(count);
    Run(ActionLogPath(), InsertText(table, first, m_lastId));
    return first;
}

UINT32 CStores::AddRecords(int count) {
    return Add(kActionLogTable, count);
}

UINT32 CStores::AddKeptRecords(int count) {
    return Add(kKeptTable, count);
}

std::wstring CStores::ParametersOf(UINT32 recordId) const {
    return Run(ActionLogPath(),
               L"SELECT ActionParameters FROM TslIf_DbActionLog WHERE ActionLogId = " +
                   std::to_wstring(recordId));
}

StoreCounts CStores::Count() const {
    const auto count = [this](const std::wstring& table) {
        return std::stoi(Run(ActionLogPath(), L"SELECT COUNT(*) FROM " + table));
    };
    return {count(kActionLogTable), count(kKeptTable)};
}

UINT32 CStores::NewId() {
    if (++m_lastId % kIdsBetweenLooks == 0) ++m_lastId;
    return m_lastId;
}

UINT32 CStores::NewHundredthId() {
    m_lastId += kIdsBetweenLooks - m_lastId % kIdsBetweenLooks;
    return m_lastId;
}

std::wstring CStores::Run(const fs::path& file, const std::wstring& statement) const {
    std::wstring text;
    sqlite3* database = nullptr;
    sqlite3_stmt* prepared = nullptr;
    int result = m_engine.open(file.string().c_str(), &database);
    if (result == SQLITE_OK) {
        result = m_engine.prepare(database, statement.c_str(), -1, &prepared, nullptr);
    }
    if (result == SQLITE_OK) {
        result = m_engine.step(prepared);
        for (; result == SQLITE_ROW; result = m_engine.step(prepared)) {
            const void* const found = m_engine.columnText(prepared, 0);
            if (found) text = static_cast<const wchar_t*>(found);
        }
    }
    m_engine.finalize(prepared);
    m_engine.close(database);
    if (result != SQLITE_DONE) {
        throw std::runtime_error("cannot fill " + file.string() + ": result " +
                                 std::to_string(result));
    }
    return text;
}

} // namespace tsl::bench
