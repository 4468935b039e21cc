#include "tests/upkeep/RecoverFixture.h"

#include <algorithm>

#include "console/Text.h"
#include "tests/support/StoreChecks.h"

namespace tsl::test {

namespace fs = std::filesystem;

void RecoverTest::SetUp() {
    ASSERT_NO_FATAL_FAILURE(StoreTest::SetUp());
    MakeStoreFolder();
    m_store = StoreIn(StoreFolder().wstring());
    MakeSampleStore(m_store);
    m_actionLog = ReadBytes(m_store.actionLog);
    m_replayLog = ReadBytes(m_store.replayLog);
}

std::vector<fs::path> RecoverTest::FilesAside() {
    std::vector<fs::path> files;
    for (const auto& entry : fs::directory_iterator(StoreFolder())) {
        const std::wstring name = entry.path().filename().wstring();
        const bool isOwn = name == kActionLogFileName || name == kReplayFileName ||
                           name == L"actionLog.txt" || name == L"UserIdList.dat";
        if (!isOwn) files.push_back(entry.path());
    }
    std::ranges::sort(files);
    return files;
}

void RecoverTest::RemoveFilesAside() {
    for (const fs::path& file : FilesAside())
        fs::remove_all(file);
}

RowCounts RecoverTest::Rows(const fs::path& database, const std::string& table) {
    if (CountRows(database, table) == 0) return {};
    std::string values;
    for (const Column& column : kActionColumns) {
        const std::string name = ToUtf8(column.name);
        values += "||'|'||typeof(" + name + ")||hex(CAST(" + name + " AS BLOB))";
    }
    RowCounts rows;
    for (const Row& row : FileDatabase(database).Query("SELECT ''" + values + " FROM " + table))
        ++rows[row[0].value()];
    return rows;
}

int RecoverTest::CountOfOthers(const RowCounts& rows, const RowCounts& known) {
    int others = 0;
    for (const auto& [row, count] : rows) {
        const auto found = known.find(row);
        others += std::max(0, count - (found == known.end() ? 0 : found->second));
    }
    return others;
}

void RecoverTest::ExpectWhole(const fs::path& database) {
    const FileDatabase file(database);
    EXPECT_EQ("ok", file.Value("PRAGMA integrity_check"));
    EXPECT_EQ("2048", file.Value("PRAGMA page_size"));
    std::vector<Row> wanted;
    const auto add = [&](const wchar_t* name) {
        std::string text = ToUtf8(CreateActionTableText(kTablePrefix, name));
        text.erase(text.find("IF NOT EXISTS "), 14);
        wanted.push_back({ToUtf8(TableName(kTablePrefix, name)), text});
    };
    if (database.filename() == kReplayFileName) {
        add(kReplayTable);
    } else {
        add(kActionLogTable);
        add(kContentDeleteTable);
    }
    EXPECT_EQ(wanted, file.Query("SELECT name, sql FROM sqlite_schema"));
    const std::string main = wanted[0][0].value();
    EXPECT_EQ(file.Value("SELECT ifnull(max(ActionLogId), 0) FROM " + main +
                         " WHERE typeof(ActionLogId) = 'integer'"),
              file.Value("PRAGMA user_version"));
    EXPECT_EQ("0", file.Value("SELECT count(*) - count(DISTINCT ActionLogId) FROM " + main +
                              " WHERE ActionLogId IS NOT NULL"));
}

void RecoverTest::Patch(const fs::path& file, size_t place, const Bytes& bytes) {
    Bytes all = ReadBytes(file);
    std::ranges::copy(bytes, all.begin() + static_cast<std::ptrdiff_t>(place));
    WriteBytes(file, all);
}

} // namespace tsl::test
