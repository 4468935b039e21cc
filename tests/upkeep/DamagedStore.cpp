#include "tests/upkeep/DamagedStore.h"

#include <algorithm>

#include "console/Text.h"
#include "store/Schema.h"
#include "tests/hostile_input/Mutation.h"
#include "tests/support/FileDatabase.h"
#include "tests/support/StoreChecks.h"

namespace tsl::test {

namespace {

// Rows of the ids first to last, one a minute; each twentieth has a text of some pages.
void FillTable(const FileDatabase& database, const std::string& name, int first, int last) {
    const std::string table = "TslIf_" + name;
    database.Query(ToUtf8(CreateActionTableText(kTablePrefix, ToUtf16(name))));
    database.Query(
        "WITH RECURSIVE n(id) AS (SELECT " + std::to_string(first) +
        " UNION ALL SELECT id + 1 FROM n WHERE id < " + std::to_string(last) + ") INSERT INTO " +
        table +
        " SELECT id, 0, id % 3, NULL, 1 + id % 2, CASE id % 4 WHEN 0 THEN 'playItem' WHEN 1 THEN "
        "'showItem' WHEN 2 THEN 'rateItem' ELSE 'deleteItem' END, 'ullValues={' || id || "
        "'}&stringValues={' || CASE id % 20 WHEN 0 THEN hex(zeroblob(2500)) ELSE 'A%20title%20' || "
        "id "
        "END || '}', 45000.0 + id / 1440.0, 45000.0 + id / 1440.0, NULL, NULL, 0, CASE id % 10 "
        "WHEN 9 "
        "THEN 2 ELSE 1 END FROM n");
}

// Some pages become free, and the header knows the highest id.
void Finish(const FileDatabase& database, const std::string& name, int surplus) {
    const std::string table = "TslIf_" + name;
    database.Query("DELETE FROM " + table + " WHERE ActionLogId > " + std::to_string(surplus));
    database.Query("PRAGMA user_version = " + std::to_string(surplus));
}

void MakeDatabases(const StorePaths& store) {
    const FileDatabase actionLog(store.actionLog, /*create=*/true);
    actionLog.Query("PRAGMA page_size = 2048");
    FillTable(actionLog, "DbActionLog", 1, kSampleRecords + 50);
    FillTable(actionLog, "ContentDeleteProperty", 1, kSampleKept);
    Finish(actionLog, "DbActionLog", kSampleRecords);
    const FileDatabase replayLog(store.replayLog, /*create=*/true);
    replayLog.Query("PRAGMA page_size = 2048");
    FillTable(replayLog, "ActionReplay", kSampleRecords - kSampleReplayed + 1, kSampleRecords + 20);
    Finish(replayLog, "ActionReplay", kSampleRecords);
}

DamagedFile Flipped(const Bytes& whole, size_t count, Chance& chance) {
    DamagedFile file{std::to_string(count) + " flipped bytes", whole};
    for (size_t left = count; left > 0; --left)
        chance.Of(file.bytes) ^= static_cast<unsigned char>(1 + chance.Below(255));
    return file;
}

Bytes OfText(std::string_view text) {
    return Bytes(text.begin(), text.end());
}

// The same name stands for something else.
DamagedFile WithOtherSchema(const std::string& how, const std::string& statements) {
    const auto path = std::filesystem::temp_directory_path() / L"other_schema.db";
    std::filesystem::remove(path);
    FileDatabase(path, /*create=*/true).Query(statements);
    DamagedFile file{how, ReadBytes(path)};
    std::filesystem::remove(path);
    return file;
}

} // namespace

void MakeSampleStore(const StorePaths& store) {
    MakeDatabases(store);
    WriteBytes(store.counter, Utf16FileBytes(L"00000600\t\r\n"));
    WriteBytes(store.userIds, Utf16FileBytes(L"0x00000001\tS-1-5-21-1-2-3-1001\t\r\n"
                                             L"0x00000002\tS-1-5-21-1-2-3-1002\t\r\n"
                                             L"0x00000003\tS-1-5-18\t\r\n"));
}

std::vector<DamagedFile> DamagedDatabases(const Bytes& whole, size_t count) {
    std::vector<DamagedFile> files = {
        {"nothing in it", {}},
        {"a text", OfText("This is no database, but a text.\r\n")},
        {"a long text", OfText(std::string(100'000, 'x'))},
        {"a folder", {}, /*isFolder=*/true},
        WithOtherSchema("no table", "CREATE TABLE Other (a)"),
        WithOtherSchema("two columns", "CREATE TABLE TslIf_DbActionLog (ActionLogId, UserId);"
                                       "CREATE TABLE TslIf_ActionReplay (ActionLogId, UserId)"),
        WithOtherSchema("a view",
                        "CREATE TABLE t (a); CREATE VIEW TslIf_DbActionLog AS SELECT a AS "
                        "ActionLogId FROM t; CREATE VIEW TslIf_ActionReplay AS SELECT a AS "
                        "ActionLogId FROM t")};
    for (size_t size = kPageSize; size < whole.size(); size += kPageSize) {
        const auto end = whole.begin() + static_cast<std::ptrdiff_t>(size);
        files.push_back(
            {"cut after " + std::to_string(size) + " bytes", Bytes(whole.begin(), end)});
    }
    Chance chance(20261121);
    for (size_t flipped = 1; files.size() < count || flipped <= 64; ++flipped)
        files.push_back(Flipped(whole, 1 + (flipped - 1) % 64, chance));
    return files;
}

std::vector<DamagedFile> DamagedTextFiles(const Bytes& whole, size_t count) {
    std::vector<DamagedFile> files = {{"nothing in it", {}}, {"a folder", {}, /*isFolder=*/true}};
    Chance chance(4711);
    while (files.size() < count) {
        DamagedFile file{"spoiled " + std::to_string(files.size()), whole};
        SpoilBytes(file.bytes, chance, 8);
        files.push_back(std::move(file));
    }
    return files;
}

void PutInPlace(const DamagedFile& file, const std::filesystem::path& path) {
    std::filesystem::remove_all(path);
    if (file.isFolder) {
        std::filesystem::create_directory(path);
    } else {
        WriteBytes(path, file.bytes);
    }
}

} // namespace tsl::test
