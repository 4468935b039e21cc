// Delete actions: under log kind 1 a record to be taken later, and a shorter one in the logs.
#include "tests/dispatch/DispatchFixture.h"
#include "tests/dispatch/FullAction.h"

namespace tsl::test {

class DeleteRoad : public DispatchTest {
protected:
    static std::vector<Row> RowsOf(const std::string& table) {
        return FileDatabase(FileOf(table))
            .Query("SELECT ActionLogId, AppId, UserId, ActionName, ActionParameters, "
                   "AppLoggedTime, LogKind FROM " +
                   table + " ORDER BY rowid");
    }
};

TEST_F(DeleteRoad, LeavesAWholeRecordToTakeAndAShorterOneInTheLogs) {
    UINT32 id = 5;
    for (const wchar_t* const name :
         {L"deleteItem", L"DELETEITEM", L"autoDeleteItem", L"AutodeleteItem"}) {
        SCOPED_TRACE(name);
        EXPECT_EQ(S_OK, Report(FullAction(++id, name)));
        const std::wstring sent = name;
        Row row = {std::to_string(id), "3",        "7", std::string(sent.begin(), sent.end()),
                   kFullText,          "45356.25", "1"};
        ASSERT_FALSE(RowsOf(kTakenRows).empty());
        EXPECT_EQ(row, RowsOf(kTakenRows).back());
        row[4] = kCopiedText;
        ASSERT_FALSE(RowsOf(kActionLogRows).empty());
        EXPECT_EQ(row, RowsOf(kActionLogRows).back());
        ASSERT_FALSE(RowsOf(kReplayRows).empty());
        EXPECT_EQ(row, RowsOf(kReplayRows).back());
    }
    for (const char* const table : {kTakenRows, kActionLogRows, kReplayRows}) {
        EXPECT_EQ("6 7 8 9", IdsIn(table)) << table;
    }
}

TEST_F(DeleteRoad, TakesBareActionsToo) {
    EXPECT_EQ(S_OK, Report(Action(5, L"deleteItem")));
    for (const char* const table : {kTakenRows, kActionLogRows, kReplayRows}) {
        EXPECT_EQ("5", IdsIn(table));
        EXPECT_EQ("", ParametersOf(table, 5));
        EXPECT_EQ(1, CountRowsWhere(table, "AppLoggedTime = PluginLoggedTime"))
            << table << ": no time of the host's came by way of the copy";
    }
}

TEST_F(DeleteRoad, WithoutAnApplicationRecordsApplicationZero) {
    const ContainerBuilder action = Action(5, L"deleteItem");
    action.Get()->RemoveValue(kKeyAppId);
    EXPECT_EQ(S_OK, Report(action));
    for (const char* const table : {kTakenRows, kActionLogRows, kReplayRows}) {
        EXPECT_EQ(1, CountRowsWhere(table, "AppId = 0")) << table;
    }
}

TEST_F(DeleteRoad, WithoutAUserOrAnIdRecordsNothing) {
    for (const UINT64 key : {kKeyUserId, kKeyRecordId}) {
        const ContainerBuilder action = Action(5, L"deleteItem");
        action.Get()->RemoveValue(key);
        EXPECT_EQ(S_OK, Report(action));
    }
    EXPECT_EQ(S_OK, Report(Action(0, L"deleteItem")));
    for (const char* const table : {kTakenRows, kActionLogRows, kReplayRows}) {
        EXPECT_EQ("", IdsIn(table)) << table;
    }
}

TEST_F(DeleteRoad, IsThatOfAnyOtherActionUnderOtherKinds) {
    UINT32 id = 5;
    for (const UINT32 kind : {0u, 3u, 4u, 8u, 16u, 0x101u, 0xFFFFFFFFu}) {
        SCOPED_TRACE(kind);
        SetLogKind(kind);
        EXPECT_EQ(S_OK, Report(FullAction(++id, L"deleteItem")));
        EXPECT_EQ(kFullText, ParametersOf(kActionLogRows, id));
        EXPECT_EQ(kFullText, ParametersOf(kReplayRows, id));
        EXPECT_EQ("", IdsIn(kTakenRows));
    }
}

TEST_F(DeleteRoad, UnderKindTwoAddsOnlyTheMoment) {
    SetLogKind(2);
    EXPECT_EQ(S_OK, Report(FullAction(5, L"deleteItem").Date(kKeyActionTime, 25569.0)));
    const std::string expected = "ullValues={1,2,0}" + std::string(kFullText).substr(15);
    EXPECT_EQ(expected, ParametersOf(kActionLogRows, 5));
    EXPECT_EQ(expected, ParametersOf(kReplayRows, 5));
    EXPECT_EQ("", IdsIn(kTakenRows));
}

TEST_F(DeleteRoad, IsChosenByTheKindOfTheObjectThatIsTold) {
    const CComPtr<ITslPluginDb2> other = Library().CreatePlugin();
    ASSERT_EQ(S_OK, other->SetRecordingEnabled(4));
    EXPECT_EQ(S_OK, Report(Action(5, L"deleteItem")));
    EXPECT_EQ(S_OK, other->Notify(kCommandRecordAction, Action(6, L"deleteItem")));
    EXPECT_EQ("5", IdsIn(kTakenRows));
    EXPECT_EQ("5 6", IdsIn(kActionLogRows));
    EXPECT_EQ("5 6", IdsIn(kReplayRows));
}

TEST_F(DeleteRoad, LeavesOneRecordPerId) {
    EXPECT_EQ(S_OK, Report(Action(5, L"deleteItem")));
    EXPECT_EQ(S_OK, Report(FullAction(5, L"autoDeleteItem")));
    for (const char* const table : {kTakenRows, kActionLogRows, kReplayRows}) {
        EXPECT_EQ("5", IdsIn(table)) << table;
    }
    EXPECT_EQ(kFullText, ParametersOf(kTakenRows, 5));
    EXPECT_EQ(kCopiedText, ParametersOf(kActionLogRows, 5));
}

TEST_F(DeleteRoad, RecordsAfterwardsGoToTheActionLogAgain) {
    EXPECT_EQ(S_OK, Report(Action(5, L"deleteItem")));
    EXPECT_EQ(S_OK, Report(FullAction(6, L"playItem")));
    EXPECT_EQ("5", IdsIn(kTakenRows));
    EXPECT_EQ(kFullText, ParametersOf(kActionLogRows, 6));
    EXPECT_EQ(kFullText, ParametersOf(kReplayRows, 6));
}

// A value that cannot be encoded keeps the whole record out; the copy does without it.
TEST_F(DeleteRoad, WhoseWholeRecordCannotBeWrittenStillLeavesTheShorterOne) {
    ContainerBuilder action = FullAction(5, L"deleteItem");
    action.Text(kKeyIntValues, L"no numbers");
    EXPECT_EQ(S_OK, Report(action));
    EXPECT_EQ("", IdsIn(kTakenRows));
    EXPECT_EQ(kCopiedText, ParametersOf(kActionLogRows, 5));
    EXPECT_EQ(kCopiedText, ParametersOf(kReplayRows, 5));
}

TEST_F(DeleteRoad, TreatsAValueThatCannotBeReadAsAbsentInTheCopy) {
    ScriptedContainer action(FullAction(5, L"deleteItem").Get());
    action.getResults[kKeyUllValues] = E_ACCESSDENIED;
    action.getResults[kKeyNumber] = E_ACCESSDENIED;
    EXPECT_EQ(S_OK, Report(&action));
    EXPECT_EQ(1u, action.References());
    EXPECT_EQ("", IdsIn(kTakenRows));
    const std::string expected = std::string(kCopiedText).substr(16);
    EXPECT_EQ(expected, ParametersOf(kActionLogRows, 5));
    EXPECT_EQ(expected, ParametersOf(kReplayRows, 5));
}

} // namespace tsl::test
