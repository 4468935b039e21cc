#include "tests/maintenance/OldStore.h"

#include <algorithm>
#include <ostream>

#include "store/Maintenance.h"

namespace tsl::test {

namespace fs = std::filesystem;

namespace {

constexpr size_t kActionName = 5;

std::string QuotedColumns() {
    std::string columns;
    for (const char* const column :
         {"ActionLogId", "UsedLog", "AppId", "AppName", "UserId", "ActionName", "ActionParameters",
          "AppLoggedTime", "PluginLoggedTime", "PreActionName", "PreActionParameters",
          "PreLoggedTime", "LogKind"}) {
        columns.append(columns.empty() ? "" : ",").append("quote(").append(column).append(")");
    }
    return columns;
}

} // namespace

fs::path OldStoreFolder() {
    return ProgramFolder() / "old-store";
}

void MakeOldStore(const std::string& sqlFile) {
    const Bytes sql = ReadBytes(OldStoreFolder() / sqlFile);
    ChangeActionLog(std::string(sql.begin(), sql.end()));
}

void ChangeActionLog(const std::string& sql) {
    fs::create_directories(StoreFolder());
    FileDatabase(ActionLogPath(), /*create=*/true).Query(sql);
}

StoreImage ReadActionLog() {
    const FileDatabase file(ActionLogPath());
    StoreImage image;
    image.tables = file.Query("SELECT type, name, sql FROM sqlite_master ORDER BY rowid");
    if (CountRows(ActionLogPath(), kActionLogRows) > 0) {
        image.records =
            file.Query("SELECT " + QuotedColumns() + " FROM TslIf_DbActionLog ORDER BY rowid");
    }
    EXPECT_EQ("ok", file.Value("PRAGMA integrity_check"));
    return image;
}

void PrintTo(const StoreImage& image, std::ostream* stream) {
    for (const std::vector<Row>* const rows : {&image.tables, &image.records}) {
        for (const Row& row : *rows) {
            *stream << '\n';
            for (const Cell& cell : row)
                *stream << cell.value_or("(none)") << '|';
        }
    }
}

StoreImage WithLogKinds(StoreImage image) {
    for (Row& record : image.records)
        record.back() = record[kActionName] == "'userLocation'" ? "4" : "1";
    return image;
}

StoreImage Converted(StoreImage image) {
    std::erase_if(image.tables, [](const Row& table) { return table[1] == kIdTable; });
    return WithLogKinds(std::move(image));
}

std::string LogKinds() {
    std::string kinds;
    for (const Row& record : ReadActionLog().records)
        kinds.append(kinds.empty() ? "" : " ").append(record.back().value());
    return kinds;
}

Bytes CounterBytes(const std::wstring& digits) {
    return Utf16FileBytes(digits + L"\t\r\n");
}

UINT32 ChangesOfActionLog() {
    constexpr size_t kOffset = 24; // 32 bits, the highest first
    const Bytes file = ReadBytes(ActionLogPath());
    UINT32 changes = 0;
    for (size_t index = 0; index < sizeof changes; ++index)
        changes = changes << 8 | file.at(kOffset + index);
    return changes;
}

HRESULT Maintain() {
    const CActionLogStore store(GetModuleHandleW(nullptr));
    return MaintainStore(store);
}

void OldStoreTest::TearDown() {
    ExpectLocksAreFree();
    for (const fs::path& file : {ActionLogPath(), CounterPath()}) {
        if (fs::is_regular_file(file)) {
            EXPECT_TRUE(NobodyHasOpen(file));
        }
    }
    EXPECT_TRUE(FilesInTheMaking().empty());
    PluginTest::TearDown();
}

void OldStoreTest::ExpectTheSwitchWorks() {
    EXPECT_EQ(S_OK, Plugin().SetRecordingEnabled(2));
    EXPECT_EQ(S_OK, Plugin().Notify(kCommandRecordAction, nullptr));
    EXPECT_EQ(S_OK, Plugin().SetRecordingEnabled(0));
    EXPECT_EQ(E_NOTIMPL, Plugin().Notify(kCommandRecordAction, nullptr));
}

void OldStoreTest::ExpectCompleteStoreIsConverted(const StoreImage& before) {
    EXPECT_EQ(Converted(before), ReadActionLog());
    EXPECT_EQ(CounterBytes(L"00000042"), ReadBytes(CounterPath()));
    EXPECT_EQ(43u, NextId());
}

void OldStoreTest::ExpectOnlyLogKindsAreSet(const StoreImage& before) {
    EXPECT_EQ(WithLogKinds(before), ReadActionLog());
    EXPECT_FALSE(fs::is_regular_file(CounterPath()));
}

} // namespace tsl::test
