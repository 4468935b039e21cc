// Every store of the older form that the examples make, converted: all its tables and records, the
// counter file and the next id.
#include <set>

#include "tests/maintenance/OldStore.h"

namespace tsl::test {

namespace fs = std::filesystem;

namespace {

struct Example {
    const char* name;
    const char* file;
    HRESULT answer;
    bool hasRecordTable;
    std::optional<std::wstring> counter; // nothing for a store that is not converted
    UINT32 nextId;
};

const Example kExamples[] = {
    {"Complete", "complete.sql", S_OK, true, L"00000042", 43},
    {"NoRecords", "no-records.sql", S_OK, true, L"00000042", 43},
    {"HighestId", "highest-id.sql", S_OK, true, L"00000000", 1},
    {"DamagedIdText", "damaged-id-text.sql", S_OK, true, L"00000001", 2},
    {"NoIdTable", "no-id-table.sql", kEngineError, true, {}, 1},
    {"NoLastId", "no-last-id.sql", kEngineNoRow, true, {}, 1},
    {"DamagedIdColumns", "damaged-id-columns.sql", kEngineError, true, {}, 1},
    {"NoActionTable", "no-action-table.sql", kEngineError, false, {}, 1},
};

void PrintTo(const Example& example, std::ostream* stream) {
    *stream << example.file;
}

} // namespace

class Conversion : public OldStoreTest, public ::testing::WithParamInterface<Example> {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(OldStoreTest::SetUp());
        MakeOldStore(GetParam().file);
        before = ReadActionLog();
        ASSERT_FALSE(before.tables.empty());
    }

    // What is now in the folder is just what becomes of the store.
    void ExpectOutcome() {
        const auto& counter = GetParam().counter;
        EXPECT_EQ(counter ? Converted(before) : WithLogKinds(before), ReadActionLog());
        ASSERT_EQ(counter.has_value(), fs::exists(CounterPath()));
        if (counter) {
            EXPECT_EQ(CounterBytes(*counter), ReadBytes(CounterPath()));
        }
        const auto files = counter ? 2 : 1;
        EXPECT_EQ(files, std::distance(fs::directory_iterator(StoreFolder()), {}));
    }

    StoreImage before;
};

INSTANTIATE_TEST_SUITE_P(Of, Conversion, ::testing::ValuesIn(kExamples),
                         [](const auto& example) { return example.param.name; });

TEST_P(Conversion, AnswersForTheStore) {
    EXPECT_EQ(GetParam().answer, Maintain());
    ExpectOutcome();
}

TEST_P(Conversion, ComesWithTheSwitchAndBeforeTheFirstId) {
    EXPECT_EQ(S_OK, Plugin().SetRecordingEnabled(1));
    ExpectOutcome();
    ExpectLocksAreFree();
    EXPECT_EQ(GetParam().nextId, NextId());
    EXPECT_EQ(GetParam().nextId + 1, NextId());
    ExpectAGoodActionIsRecorded(Plugin());
}

TEST_P(Conversion, ComesWithTheFlagZeroToo) {
    EXPECT_EQ(S_OK, Plugin().SetRecordingEnabled(0));
    ExpectOutcome();
    EXPECT_EQ(E_NOTIMPL, Plugin().Notify(kCommandRecordAction, nullptr));
}

TEST_P(Conversion, IsOverOnceAnIdWasHandedOut) {
    Maintain();
    EXPECT_EQ(GetParam().nextId, NextId());
    const Bytes counter = ReadBytes(CounterPath());
    const Bytes database = ReadBytes(ActionLogPath());
    EXPECT_EQ(E_FAIL, Maintain());
    EXPECT_EQ(S_OK, Plugin().SetRecordingEnabled(32));
    EXPECT_EQ(database, ReadBytes(ActionLogPath()));
    EXPECT_EQ(counter, ReadBytes(CounterPath()));
}

TEST_P(Conversion, GivesTheSameAnswerUntilThen) {
    EXPECT_EQ(GetParam().answer, Maintain());
    EXPECT_EQ(GetParam().counter ? E_FAIL : GetParam().answer, Maintain());
    ExpectOutcome();
}

TEST(ConversionExamples, AreAllConvertedHere) {
    std::set<std::string> files;
    for (const auto& entry : fs::directory_iterator(OldStoreFolder()))
        files.insert(entry.path().filename().string());
    std::set<std::string> converted;
    for (const Example& example : kExamples)
        converted.insert(example.file);
    EXPECT_EQ(converted, files);
}

class ConversionExample : public OldStoreTest {};

TEST_F(ConversionExample, HasTheTablesOfTheOlderForm) {
    MakeOldStore("complete.sql");
    const StoreImage store = ReadActionLog();
    const std::vector<Row> tables = {
        {"table", "TslIf_DbActionLog",
         "CREATE TABLE TslIf_DbActionLog (ActionLogId INTEGER,UsedLog INTEGER,AppId INTEGER,"
         "AppName TEXT,UserId INTEGER,ActionName TEXT,ActionParameters TEXT,AppLoggedTime REAL,"
         "PluginLoggedTime REAL,PreActionName TEXT, PreActionParameters TEXT,"
         "PreLoggedTime INTEGER,LogKind INTEGER)"},
        {"table", "TslIf_ActionRecordId",
         "CREATE TABLE TslIf_ActionRecordId (CurrentRecordId INTEGER,ActionLogId INTEGER)"}};
    EXPECT_EQ(tables, store.tables);
    EXPECT_EQ(39u, store.records.size());
    for (const Row& record : store.records)
        EXPECT_EQ("NULL", record.back());
}

TEST_F(ConversionExample, OnceConvertedTakesTheCommandsThatFollow) {
    MakeOldStore("complete.sql");
    ASSERT_EQ(S_OK, Plugin().SetRecordingEnabled(1));
    ExpectAGoodActionIsRecorded(Plugin());
    EXPECT_EQ(40, CountRows(ActionLogPath(), kActionLogRows));
    EXPECT_EQ(0, CountRows(ActionLogPath(), kIdTable));
}

} // namespace tsl::test
