// Memory runs out while a user's records are reset, or the replay log is trimmed: all of the user's
// records go, or none.
#include "tests/memory_faults/MemoryFaultFixture.h"
#include "tests/memory_faults/StoredRows.h"

namespace tsl::test {

using testing::AnyOf;

class UserResetFaults : public MemoryFaultTest {
protected:
    HRESULT Notify(UINT32 recordId, std::wstring_view name, UINT32 userId) {
        ContainerBuilder action = Action(recordId, name);
        return Plugin().Notify(kCommandRecordAction, action.Ui4(kKeyUserId, userId));
    }
};

TEST_F(UserResetFaults, TakeAllOfTheUsersRecordsOrNone) {
    constexpr UINT32 kId = 9;
    for (UINT32 id = 1; id <= 3; ++id)
        ASSERT_EQ(S_OK, Notify(id, L"playItem", 7));
    ASSERT_EQ(S_OK, Notify(4, L"playItem", 8));
    KeepCopy(ActionLogPath(), kActionLogRows);
    const ContainerBuilder action = Action(kId, L"veSettingReset");

    FailEachAllocation({
        .name = "reset of a user's records",
        .prepare =
            [] {
                PutBackCopy(ActionLogPath(), kActionLogRows);
                FileDatabase(ReplayPath())
                    .Query("DELETE FROM TslIf_ActionReplay WHERE ActionLogId = 9");
            },
        .run = [&] { return Plugin().Notify(kCommandRecordAction, action); },
        .allowed = {},
        .check =
            [&](const Outcome& outcome) {
                EXPECT_EQ(outcome.result == S_OK ? 1u : 0u,
                          RowsOf(ReplayPath(), kReplayRows, kId).size());
                const std::string ids = IdsIn(ActionLogPath(), kActionLogRows);
                EXPECT_THAT(ids, AnyOf("1 2 3 4", "1 2 3 4 9", "4", "4 9"));
                if (outcome.NothingFailed()) {
                    EXPECT_EQ("4 9", ids);
                }
            },
    });
}

TEST_F(UserResetFaults, TrimTheReplayLogOrLeaveItAsItWas) {
    constexpr UINT32 kId = 100000;
    ASSERT_EQ(S_OK, Notify(1, L"playItem", 7));
    FileDatabase(ReplayPath())
        .Query("WITH RECURSIVE Numbers(value) AS (SELECT 2 UNION ALL SELECT value + 1 FROM Numbers "
               "WHERE "
               "value < 1000) "
               "INSERT INTO TslIf_ActionReplay SELECT value, UsedLog, AppId, AppName, UserId, "
               "ActionName, ActionParameters, AppLoggedTime, PluginLoggedTime, PreActionName, "
               "PreActionParameters, PreLoggedTime, LogKind "
               "FROM TslIf_ActionReplay, Numbers");
    KeepCopy(ReplayPath(), kReplayRows);
    ASSERT_EQ(1000, CountRows(ReplayPath(), kReplayRows));
    const ContainerBuilder action = Action(kId, L"playItem");

    FailEachAllocation({
        .name = "action at which the replay log is trimmed",
        .prepare = [] { PutBackCopy(ReplayPath(), kReplayRows); },
        .run = [&] { return Plugin().Notify(kCommandRecordAction, action); },
        .allowed = {},
        .check =
            [&](const Outcome& outcome) {
                const int added = outcome.result == S_OK ? 1 : 0;
                EXPECT_EQ(static_cast<size_t>(added),
                          RowsOf(ReplayPath(), kReplayRows, kId).size());
                EXPECT_THAT(CountRows(ReplayPath(), kReplayRows), AnyOf(added, 1000 + added));
                if (outcome.NothingFailed()) {
                    EXPECT_EQ(1, CountRows(ReplayPath(), kReplayRows));
                }
            },
        .briefRuns = 3,
    });
}

} // namespace tsl::test
