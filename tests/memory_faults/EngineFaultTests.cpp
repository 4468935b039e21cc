// Memory runs out inside the engine: its result is told, and nothing is half done.
#include "tests/dispatch/FullAction.h"
#include "tests/memory_faults/MemoryFaultFixture.h"
#include "tests/memory_faults/StoredRows.h"

namespace tsl::test {

namespace {

using testing::AnyOf;
using testing::IsEmpty;

const std::vector<AllowedResult> kOfTheEngine = {
    {static_cast<HRESULT>(0x80041606), "", "SQLITE_NOMEM"},
    {static_cast<HRESULT>(0x80041609), "", "SQLITE_IOERR: a path that could not be converted"},
    {static_cast<HRESULT>(0x8004160D), "", "SQLITE_CANTOPEN: the same for a file to be opened"},
};

} // namespace

class EngineFaults : public MemoryFaultTest {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(MemoryFaultTest::SetUp());
        for (UINT32 id = 1; id <= 3; ++id)
            ASSERT_EQ(S_OK, Plugin().Notify(kCommandRecordAction, FullAction(id, L"playItem")));
        AimAtTheEngine();
    }
    void Delete(const char* name, const ContainerBuilder& request,
                std::vector<AllowedResult> allowed) {
        KeepCopy(ActionLogPath(), kActionLogRows);
        FailEachAllocation({
            .name = name,
            .prepare = [] { PutBackCopy(ActionLogPath(), kActionLogRows); },
            .run = [&] { return Plugin().Delete(kCommandDeleteRecords, request); },
            .allowed = std::move(allowed),
            .check =
                [&](const Outcome& outcome) {
                    EXPECT_EQ(outcome.result == S_OK ? "1" : "1 2 3",
                              IdsIn(ActionLogPath(), kActionLogRows));
                },
        });
    }
};

TEST_F(EngineFaults, LeaveTheRecordWholeOrAbsent) {
    const auto whole = RowsOf(ReplayPath(), kReplayRows, 1);
    UINT32 recordId = 1000;
    ContainerBuilder action;
    FailEachAllocation({
        .name = "action, in the engine",
        .prepare =
            [&] {
                if (++recordId % 100 == 0) ++recordId;
                action = FullAction(recordId, L"playItem");
            },
        .run = [&] { return Plugin().Notify(kCommandRecordAction, action); },
        .allowed = kOfTheEngine,
        .check =
            [&](const Outcome& outcome) {
                // Once committed, a record is there even if the engine then fails to tell so.
                if (outcome.result == S_OK) {
                    EXPECT_EQ(whole, RowsOf(ReplayPath(), kReplayRows, recordId));
                }
                EXPECT_THAT(RowsOf(ReplayPath(), kReplayRows, recordId), AnyOf(IsEmpty(), whole));
                EXPECT_THAT(RowsOf(ActionLogPath(), kActionLogRows, recordId),
                            AnyOf(IsEmpty(), whole));
            },
    });
}

TEST_F(EngineFaults, LeaveTheOlderRecordOrTheNewOne) {
    const auto whole = RowsOf(ReplayPath(), kReplayRows, 1);
    const ContainerBuilder olderAction =
        Action(3, L"olderAction").Date(kKeyActionTime, kFullActionTime);
    ASSERT_EQ(S_OK, Plugin().Notify(kCommandRecordAction, olderAction));
    const auto older = RowsOf(ReplayPath(), kReplayRows, 3);
    const ContainerBuilder action = FullAction(3, L"playItem");
    FailEachAllocation({
        .name = "action of an id that is there, in the engine",
        .prepare = [&] { ASSERT_EQ(S_OK, Plugin().Notify(kCommandRecordAction, olderAction)); },
        .run = [&] { return Plugin().Notify(kCommandRecordAction, action); },
        .allowed = kOfTheEngine,
        .check =
            [&](const Outcome& outcome) {
                if (outcome.result == S_OK) {
                    EXPECT_EQ(whole, RowsOf(ReplayPath(), kReplayRows, 3));
                }
                EXPECT_THAT(RowsOf(ReplayPath(), kReplayRows, 3), AnyOf(older, whole));
                EXPECT_THAT(RowsOf(ActionLogPath(), kActionLogRows, 3), AnyOf(older, whole));
            },
    });
}

TEST_F(EngineFaults, LeaveRecordsWholeOrUnanswered) {
    CVariant ids = MakeArray<LONG>(std::vector<LONG>{1, 2, 3});
    ids.Address()->vt = VT_ARRAY | VT_UI4;
    ContainerBuilder request;
    request.Set(kKeyRecordIds, std::move(ids));
    FailEachAllocation({
        .name = "records of three ids, in the engine",
        .prepare = {},
        .run = [&] { return Ask(kCommandQueryRecords, request); },
        .allowed = kOfTheEngine,
        .check =
            [&](const Outcome& outcome) {
                if (outcome.result != S_OK) {
                    EXPECT_TRUE(AnswerIsUntouched());
                    return;
                }
                const AnswerContainers records = Unpack(Answer().Get());
                ASSERT_EQ(3u, records.size());
                for (const auto& record : records) {
                    EXPECT_EQ(L"playItem", TextOf(*record, kKeyActionName));
                    EXPECT_FALSE(TextOf(*record, kKeyParameterText).empty());
                }
            },
    });
}

TEST_F(EngineFaults, LeaveATimeRangeWholeOrUnanswered) {
    const ContainerBuilder request = ContainerBuilder().Ui4(kKeyUserId, 7);
    FailEachAllocation({
        .name = "ids in a time range, in the engine",
        .prepare = {},
        .run = [&] { return Ask(kCommandQueryIds, request); },
        .allowed = kOfTheEngine,
        .check =
            [&](const Outcome& outcome) {
                if (outcome.result == S_OK) {
                    EXPECT_EQ(3u, Unpack(Answer().Get()).size());
                } else {
                    EXPECT_TRUE(AnswerIsUntouched());
                }
            },
    });
}

TEST_F(EngineFaults, DeleteTheTimeRangeOrNothing) {
    FileDatabase(ActionLogPath())
        .Query("UPDATE TslIf_DbActionLog SET PluginLoggedTime = ActionLogId");
    Delete("deletion of a time range, in the engine",
           ContainerBuilder().Ui4(kKeyUserId, 7).Date(kKeyStartTime, 2), kOfTheEngine);
}

TEST_F(EngineFaults, DeleteTheIdRangeOrNothing) {
    Delete("deletion of an id range, in the engine",
           ContainerBuilder().Ui4(kKeyUserId, 7).Ui4(kKeyFirstRecordId, 2),
           {{E_POINTER, "", "this deletion tells every failure of the engine so"}});
}

} // namespace tsl::test
