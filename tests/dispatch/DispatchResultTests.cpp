// What the host is told: the result of the replay log's write, and nothing of the others.
#include "tests/dispatch/DispatchFixture.h"
#include "tests/dispatch/FullAction.h"
#include "tests/support/Failures.h"

namespace tsl::test {

namespace fs = std::filesystem;

class DispatchResult : public DispatchTest {
protected:
    // The ids that the action log has of user 7, asked by way of the interface.
    std::vector<UINT32> QueriedIds() {
        CVariant answer;
        EXPECT_EQ(S_OK, Plugin().Request(kCommandQueryIds, ContainerBuilder().Ui4(kKeyUserId, 7),
                                         nullptr, answer.Address()));
        CValueView<IUnknown*> containers;
        EXPECT_EQ(S_OK, containers.Open(*answer.Address()));
        std::vector<UINT32> ids;
        for (IUnknown* const container : containers.Values()) {
            CVariant id;
            EXPECT_EQ(S_OK, static_cast<ITslParamContainer*>(container)->GetValue(kKeyRecordId,
                                                                                  id.Address()));
            ids.push_back(id.Get().ulVal);
        }
        return ids;
    }
};

TEST_F(DispatchResult, IsTheFailureOfTheReplayLog) {
    fs::create_directory(ReplayPath());
    UINT32 id = 5;
    for (const wchar_t* const name :
         {L"playItem", L"deleteItem", L"veSettingReset", L"viaMoveContent", L"showExternalLink"}) {
        EXPECT_EQ(kEngineCannotOpen, Report(Action(++id, name))) << name;
    }
    EXPECT_EQ("8", IdsIn(kActionLogRows)) << "the reset took 6 and 7";
    EXPECT_EQ("7", IdsIn(kTakenRows));
    EXPECT_EQ(kEngineCannotOpen, Report(Action(100, L"playItem"))) << "with a trim before";
    EXPECT_EQ("8 100", IdsIn(kActionLogRows));
}

TEST_F(DispatchResult, IsTheFailureOfTheReplayLogThatIsInUse) {
    ASSERT_EQ(S_OK, Report(Action(5, L"playItem")));
    const FileDatabase other(ReplayPath());
    other.Query("BEGIN EXCLUSIVE");
    EXPECT_EQ(kEngineBusy, Report(Action(6, L"playItem")));
    EXPECT_EQ(kEngineBusy, Report(Action(100, L"playItem")));
    other.Query("ROLLBACK");
    EXPECT_EQ("5 6 100", IdsIn(kActionLogRows));
    EXPECT_EQ("5", IdsIn(kReplayRows));
}

TEST_F(DispatchResult, SaysNothingOfTheActionLog) {
    fs::remove(ActionLogPath());
    fs::create_directory(ActionLogPath());
    UINT32 id = 5;
    for (const wchar_t* const name :
         {L"playItem", L"veSettingReset", L"viaMoveContent", L"showExternalLink"}) {
        EXPECT_EQ(S_OK, Report(FullAction(++id, name))) << name;
        EXPECT_EQ(kFullText, ParametersOf(kReplayRows, id));
    }
    EXPECT_EQ(S_OK, Report(FullAction(10, L"deleteItem")));
    EXPECT_EQ(kCopiedText, ParametersOf(kReplayRows, 10));
}

TEST_F(DispatchResult, SaysNothingOfAContentMoveWithoutValues) {
    EXPECT_EQ(S_OK, Report(Action(5, L"viaMoveContent")));
    EXPECT_EQ("", IdsIn(kActionLogRows));
    EXPECT_EQ("5", IdsIn(kReplayRows));
}

TEST_F(DispatchResult, IsTheContainersFailureToGiveAField) {
    for (const UINT64 key : {kKeyRecordId, kKeyAppId, kKeyUserId, kKeyActionTime, kKeyActionName}) {
        SCOPED_TRACE(key);
        ScriptedContainer action(Action(5, L"playItem").Get());
        action.getResults[key] = E_ACCESSDENIED;
        EXPECT_EQ(E_ACCESSDENIED, Report(&action));
        EXPECT_EQ(1u, action.References());
    }
    EXPECT_EQ("", IdsIn(kActionLogRows));
    EXPECT_EQ("", IdsIn(kReplayRows));
}

TEST_F(DispatchResult, OfASkippedRecordIsSuccess) {
    EXPECT_EQ(S_OK, Report(Action(0, L"playItem")));
    EXPECT_EQ(S_OK, Report(ContainerBuilder()));
    EXPECT_EQ("", IdsIn(kActionLogRows));
    EXPECT_EQ("", IdsIn(kReplayRows));
}

TEST_F(DispatchResult, OfWhateverKindLeavesQueriesOnTheActionLog) {
    ASSERT_EQ(S_OK, Report(Action(5, L"playItem")));
    ASSERT_EQ(S_OK, Report(Action(6, L"showExternalLink")));
    EXPECT_EQ(std::vector<UINT32>{5}, QueriedIds());

    ScriptedContainer failing(Action(7, L"playItem").Get());
    failing.getResults[kKeyRecordId] = E_ACCESSDENIED;
    EXPECT_EQ(E_ACCESSDENIED, Report(&failing));
    EXPECT_EQ(std::vector<UINT32>{5}, QueriedIds());

    const FileDatabase other(ReplayPath());
    other.Query("BEGIN EXCLUSIVE");
    EXPECT_EQ(kEngineBusy, Report(Action(8, L"playItem")));
    other.Query("ROLLBACK");
    EXPECT_EQ((std::vector<UINT32>{5, 8}), QueriedIds());
}

TEST_F(DispatchResult, OfWhateverKindLeavesDeletionsOnTheActionLog) {
    ASSERT_EQ(S_OK, Report(Action(5, L"playItem")));
    EXPECT_EQ(S_OK, Plugin().Delete(kCommandDeleteRecords, ContainerBuilder().Ui4(kKeyUserId, 7)));
    EXPECT_EQ("", IdsIn(kActionLogRows));
    EXPECT_EQ("5", IdsIn(kReplayRows));
}

} // namespace tsl::test
