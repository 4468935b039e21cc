// Memory runs out during a deletion: what was asked for goes, or nothing.
#include "tests/memory_faults/MemoryFaultFixture.h"
#include "tests/memory_faults/StoredRows.h"
#include "tests/user_ids/TokenSid.h"

namespace tsl::test {

class DeletionFaults : public MemoryFaultTest {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(MemoryFaultTest::SetUp());
        for (UINT32 id = 1; id <= 5; ++id) {
            ContainerBuilder action = Action(id, L"playItem");
            ASSERT_EQ(S_OK, Plugin().Notify(kCommandRecordAction, action.Ui4(kKeyUserId, 1)));
        }
        FileDatabase(ActionLogPath())
            .Query("UPDATE TslIf_DbActionLog SET PluginLoggedTime = ActionLogId");
        KeepCopy(ActionLogPath(), kActionLogRows);
        PrepareUserIdList(Utf16FileBytes(L"0x00000001\t" + TokenSid() + L"\t\r\n"));
    }

    void Delete(const char* name, const ContainerBuilder& request, const std::string& left,
                std::vector<AllowedResult> allowed = {}) {
        FailEachAllocation({
            .name = name,
            .prepare = [] { PutBackCopy(ActionLogPath(), kActionLogRows); },
            .run = [&] { return Plugin().Delete(kCommandDeleteRecords, request); },
            .allowed = std::move(allowed),
            .check =
                [&](const Outcome& outcome) {
                    const std::string all = "1 2 3 4 5";
                    EXPECT_EQ(outcome.result == S_OK ? left : all,
                              IdsIn(ActionLogPath(), kActionLogRows));
                },
        });
    }
};

TEST_F(DeletionFaults, DeleteTheOneRecordOrNothing) {
    Delete("deletion of one record", ContainerBuilder().Ui8(kKeyRecordToTake, 2), "1 3 4 5");
}

TEST_F(DeletionFaults, DeleteTheOneRecordOfASystemUserOrNothing) {
    ASSERT_EQ(S_OK, Plugin().SetRecordingEnabled(2));
    Delete("deletion of one record, log kind 2", ContainerBuilder().Ui8(kKeyRecordToTake, 2),
           "1 3 4 5",
           {{E_INVALIDARG, "ConvertSidToStringSidW", "a user without an identifier has no id"}});
}

TEST_F(DeletionFaults, DeleteTheIdRangeOrNothing) {
    Delete("deletion of an id range",
           ContainerBuilder().Ui4(kKeyUserId, 1).Ui4(kKeyFirstRecordId, 2).Ui4(kKeyLastRecordId, 3),
           "1 4 5");
}

TEST_F(DeletionFaults, DeleteTheTimeRangeOrNothing) {
    Delete("deletion of a time range",
           ContainerBuilder().Ui4(kKeyUserId, 1).Date(kKeyStartTime, 2).Date(kKeyEndTime, 4),
           "1 5");
}

} // namespace tsl::test
