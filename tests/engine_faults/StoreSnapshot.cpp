#include "tests/engine_faults/StoreSnapshot.h"

#include <ostream>
#include <stdexcept>

#include "tests/dispatch/Tables.h"
#include "tests/integration/Aftermath.h"

namespace tsl::test {

namespace fs = std::filesystem;

namespace {

// Columns but for PluginLoggedTime, of which only the type can be told.
constexpr char kRowText[] =
    "SELECT ActionLogId, quote(UsedLog)||'|'||quote(AppId)||'|'||quote(AppName)||'|'||"
    "quote(UserId)||'|'||quote(ActionName)||'|'||quote(ActionParameters)||'|'||"
    "quote(AppLoggedTime)||'|'||typeof(PluginLoggedTime)||'|'||quote(PreActionName)||'|'||"
    "quote(PreActionParameters)||'|'||quote(PreLoggedTime)||'|'||quote(LogKind) FROM ";

std::vector<RecordRow> ReadTable(const FileDatabase& file, const std::string& table) {
    if (file.Query("SELECT 1 FROM sqlite_master WHERE name = '" + table + "'").empty()) return {};
    std::vector<RecordRow> rows;
    for (const Row& row : file.Query(kRowText + table + " ORDER BY ActionLogId, rowid"))
        rows.push_back({std::stoll(row[0].value_or("0")),
                        std::make_shared<const std::string>(row[1].value_or("NULL"))});
    return rows;
}

// Ids above the mark are taken for new without a search: it must never lie below one. 0 is none.
void ExpectMarkCovers(const FileDatabase& file, const std::vector<RecordRow>& rows) {
    const auto mark = static_cast<UINT32>(std::stoll(file.Value("PRAGMA user_version")));
    if (mark != 0 && !rows.empty()) {
        EXPECT_GE(mark, rows.back().id) << "ids above the mark would never be replaced";
    }
}

bool IsThere(const fs::path& path) {
    return GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

std::optional<Bytes> BytesOf(const fs::path& path) {
    return IsThere(path) ? std::optional(ReadBytes(path)) : std::nullopt;
}

void PutBackFile(const fs::path& path, const std::optional<Bytes>& bytes) {
    if (bytes) {
        WriteBytes(path, *bytes);
    } else if (!DeleteFileW(path.c_str()) && IsThere(path)) {
        throw std::runtime_error("cannot remove " + path.string());
    }
}

} // namespace

void PrintTo(const RecordRow& row, std::ostream* stream) {
    *stream << row.id << '|' << *row.values;
}

StoreSnapshot::StoreSnapshot() {
    const auto makeFile = [](const fs::path& path, std::vector<std::string> tables) {
        return File{path, std::move(tables), path.wstring() + L"-journal", {}};
    };
    m_counter = makeFile(CounterPath(), {});
    m_databases = {makeFile(ActionLogPath(), {kActionLogRows, kTakenRows}),
                   makeFile(ReplayPath(), {kReplayRows})};
}

void StoreSnapshot::Take() {
    for (File& file : m_databases)
        file.bytes.reset();
    m_contents = ContentsNow();
    for (File& file : m_databases)
        file.bytes = BytesOf(file.path);
    m_counter.bytes = BytesOf(m_counter.path);
}

void StoreSnapshot::PutBack() const {
    PutBackFile(m_counter.path, m_counter.bytes);
    for (const File& file : m_databases) {
        PutBackFile(file.path, file.bytes);
        PutBackFile(file.journal, {});
    }
}

StoreContents StoreSnapshot::ContentsNow() const {
    StoreContents contents;
    for (const File& file : m_databases) {
        for (const std::string& table : file.tables)
            contents[table];
        if (!IsThere(file.path)) continue;
        EXPECT_TRUE(NobodyHasOpen(file.path));
        EXPECT_FALSE(IsThere(file.journal));
        if (file.bytes && *file.bytes == ReadBytes(file.path)) {
            for (const std::string& table : file.tables)
                contents[table] = m_contents.at(table);
            continue;
        }
        const FileDatabase database(file.path);
        database.Query("BEGIN"); // one lock for all that is read
        EXPECT_EQ("ok", database.Value("PRAGMA integrity_check"));
        for (const std::string& table : file.tables)
            contents[table] = ReadTable(database, table);
        ExpectMarkCovers(database, contents[file.tables[0]]);
    }
    return contents;
}

bool StoreSnapshot::CounterIsAsThen() const {
    return BytesOf(m_counter.path) == m_counter.bytes;
}

} // namespace tsl::test
