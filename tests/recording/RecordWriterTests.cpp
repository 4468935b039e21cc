// The row that an action becomes: its thirteen values, its times, and the one row per record id.
#include "recording/RecordWriter.h"

#include "tests/recording/RecordStore.h"
#include "tests/support/RawContainer.h"

namespace tsl::test {

class RecordWriter : public RecordStoreTest {
protected:
    HRESULT Write(ITslParamContainer* action) {
        return WriteActionRecord(Store(), m_target, action);
    }

    static constexpr const char* kAllColumns =
        "SELECT ActionLogId, UsedLog, AppId, AppName, UserId, ActionName, ActionParameters, "
        "PreActionName, PreActionParameters, PreLoggedTime, LogKind FROM ";
    static std::vector<Row> Rows() {
        return FileDatabase(ActionLogPath())
            .Query(std::string(kAllColumns) + "TslIf_DbActionLog ORDER BY rowid");
    }
};

namespace {

constexpr DATE kTime = 45356.25490740741;

// The current time as a date, with milliseconds.
DATE Now() {
    SYSTEMTIME now{};
    GetSystemTime(&now);
    const double milliseconds = now.wMilliseconds;
    now.wMilliseconds = 0;
    DATE date = 0.0;
    EXPECT_TRUE(SystemTimeToVariantTime(&now, &date));
    return date + milliseconds / 8.64e7;
}

constexpr double kHalfMillisecond = 0.5 / 8.64e7;

} // namespace

TEST_F(RecordWriter, WritesAllThirteenValues) {
    ContainerBuilder action = Action(5, L"playItem");
    action.Date(kKeyActionTime, kTime).Array<LONG>(kKeyIntValues, {1, -2});
    EXPECT_EQ(S_OK, Write(action));
    const std::vector<Row> expected = {{"5", "0", "3", std::nullopt, "7", "playItem",
                                        "intValues={1,-2}", std::nullopt, std::nullopt, "0", "1"}};
    EXPECT_EQ(expected, Rows());
}

TEST_F(RecordWriter, StoresEachValueWithItsType) {
    EXPECT_EQ(S_OK, Write(Action(5, L"playItem").I4(kKeyIntValues, 1)));
    std::string sql = "SELECT ";
    for (const Column& column : kActionColumns) {
        sql += (column.name == kActionColumns[0].name ? "typeof(" : ", typeof(") +
               std::string(column.name.begin(), column.name.end()) + ")";
    }
    const std::vector<Row> expected = {{"integer", "integer", "integer", "null", "integer", "text",
                                        "text", "real", "real", "null", "null", "integer",
                                        "integer"}};
    EXPECT_EQ(expected, FileDatabase(ActionLogPath()).Query(sql + " FROM TslIf_DbActionLog"));
}

TEST_F(RecordWriter, WidensIdsWithoutASignAndTheApplicationWithOne) {
    m_target.logKind = 0xFFFFFFFE;
    ContainerBuilder action = Action(0xFFFFFFFF, L"playItem");
    action.Ui4(kKeyUserId, 0x80000000).I4(kKeyAppId, -5);
    EXPECT_EQ(S_OK, Write(action));
    EXPECT_EQ("4294967295|2147483648|-5|4294967294",
              Logged("SELECT ActionLogId || '|' || UserId || '|' || AppId || '|' || LogKind "
                     "FROM TslIf_DbActionLog"));
}

TEST_F(RecordWriter, StoresAnEmptyParameterTextAsAnEmptyText) {
    EXPECT_EQ(S_OK, Write(Action(5, L"playItem")));
    EXPECT_EQ("text 0", Logged("SELECT typeof(ActionParameters) || ' ' || length(ActionParameters) "
                               "FROM TslIf_DbActionLog"));
}

TEST_F(RecordWriter, StoresTheTextsUnchanged) {
    ContainerBuilder action = Action(5, L"\x518D\x751F \xD83D\xDE00 'quoted' \"%s\" ?1");
    action.Text(kKeyStringValues, L"\x6B4C\xD83D\xDE00");
    EXPECT_EQ(S_OK, Write(action));
    EXPECT_EQ("\xE5\x86\x8D\xE7\x94\x9F \xF0\x9F\x98\x80 'quoted' \"%s\" ?1",
              Logged("SELECT ActionName FROM TslIf_DbActionLog"));
    EXPECT_EQ("stringValues={\xE6\xAD\x8C\xF0\x9F\x98\x80}",
              Logged("SELECT ActionParameters FROM TslIf_DbActionLog"));
}

TEST_F(RecordWriter, KeepsATextOfTenMillionCharactersWhole) {
    constexpr size_t kLength = 10'000'000;
    EXPECT_EQ(S_OK,
              Write(Action(5, L"playItem").Text(kKeyStringValues, std::wstring(kLength, L'x'))));
    const size_t expected = kLength + std::string("stringValues={}").size();
    EXPECT_EQ(std::to_string(expected),
              Logged("SELECT length(ActionParameters) FROM TslIf_DbActionLog"));
    EXPECT_EQ("xx}", Logged("SELECT substr(ActionParameters, -3) FROM TslIf_DbActionLog"));
}

TEST_F(RecordWriter, StoresANullNameAsNull) {
    RawContainer action(Action(5, L"playItem").Get());
    action.Make(kKeyActionName, [](VARIANT& value) {
        value.vt = VT_BSTR;
        value.bstrVal = nullptr;
        return S_OK;
    });
    EXPECT_EQ(S_OK, Write(&action));
    EXPECT_EQ("null", Logged("SELECT typeof(ActionName) FROM TslIf_DbActionLog"));
}

TEST_F(RecordWriter, StoresAnEmptyNameAsAnEmptyText) {
    EXPECT_EQ(S_OK, Write(Action(5, L"")));
    EXPECT_EQ("text 0", Logged("SELECT typeof(ActionName) || ' ' || length(ActionName) "
                               "FROM TslIf_DbActionLog"));
}

TEST_F(RecordWriter, StoresTheHostsTimeExactly) {
    for (const DATE time : {kTime, 0.0, -1.75, 1e300}) {
        EXPECT_EQ(S_OK, Write(Action(5, L"playItem").Date(kKeyActionTime, time)));
        EXPECT_EQ(time, std::stod(Logged("SELECT printf('%!.17g', AppLoggedTime) "
                                         "FROM TslIf_DbActionLog")));
    }
}

TEST_F(RecordWriter, StampsTheTimeOfWritingInUtc) {
    const DATE before = Now();
    EXPECT_EQ(S_OK, Write(Action(5, L"playItem").Date(kKeyActionTime, kTime)));
    const DATE after = Now();
    const double stamp =
        std::stod(Logged("SELECT printf('%!.17g', PluginLoggedTime) FROM TslIf_DbActionLog"));
    EXPECT_GE(stamp, before - kHalfMillisecond);
    EXPECT_LE(stamp, after + kHalfMillisecond);
}

TEST_F(RecordWriter, StampsMilliseconds) {
    bool fractionSeen = false;
    for (UINT32 id = 1; id <= 5; ++id) {
        EXPECT_EQ(S_OK, Write(Action(id, L"playItem")));
        const double milliseconds = std::stod(
            Logged("SELECT round(PluginLoggedTime * 86400000.0) % 1000 FROM TslIf_DbActionLog "
                   "WHERE ActionLogId = " +
                   std::to_string(id)));
        fractionSeen |= milliseconds != 0.0;
        Sleep(3);
    }
    EXPECT_TRUE(fractionSeen);
}

TEST_F(RecordWriter, UsesTheTimeOfWritingWithoutATimeOfTheHost) {
    EXPECT_EQ(S_OK, Write(Action(5, L"playItem")));
    EXPECT_EQ("1", Logged("SELECT AppLoggedTime = PluginLoggedTime FROM TslIf_DbActionLog"));
}

TEST_F(RecordWriter, KeepsOneRowPerIdTheLatest) {
    EXPECT_EQ(S_OK, Write(Action(5, L"first").I4(kKeyIntValues, 1)));
    EXPECT_EQ(S_OK, Write(Action(6, L"other")));
    EXPECT_EQ(S_OK, Write(Action(5, L"second")));
    const std::vector<Row> expected = {{"6", "other", ""}, {"5", "second", ""}};
    EXPECT_EQ(expected, FileDatabase(ActionLogPath())
                            .Query("SELECT ActionLogId, ActionName, ActionParameters "
                                   "FROM TslIf_DbActionLog ORDER BY rowid"));
}

TEST_F(RecordWriter, WritesToTheTableAndFileOfItsTarget) {
    m_target.tableName = kContentDeleteTable;
    EXPECT_EQ(S_OK, Write(Action(5, L"first")));
    EXPECT_EQ(S_OK, Write(Action(5, L"deleteItem")));
    m_target.fileName = kReplayFileName;
    m_target.tableName = kReplayTable;
    EXPECT_EQ(S_OK, Write(Action(5, L"first")));
    EXPECT_EQ(S_OK, Write(Action(5, L"replayed")));

    EXPECT_EQ("deleteItem", Logged("SELECT ActionName FROM TslIf_ContentDeleteProperty"));
    EXPECT_EQ("replayed",
              FileDatabase(ReplayPath()).Value("SELECT ActionName FROM TslIf_ActionReplay"));
    EXPECT_EQ("1", Logged("SELECT COUNT(*) FROM sqlite_master")) << "no other table is made";
}

TEST_F(RecordWriter, AddsWhatTheLogKindOfItsTargetAsksFor) {
    m_target.logKind = 2;
    EXPECT_EQ(S_OK, Write(Action(5, L"playItem").Date(kKeyActionTime, 25569.0)));
    EXPECT_EQ("ullValues={0}&intValues={0} 2",
              Logged("SELECT ActionParameters || ' ' || LogKind FROM TslIf_DbActionLog"));
}

TEST_F(RecordWriter, ClosesTheDatabase) {
    EXPECT_EQ(S_OK, Write(Action(5, L"playItem")));
    EXPECT_TRUE(DeleteFileW(ActionLogPath().c_str())) << GetLastError();
}

} // namespace tsl::test
