// The trim of the replay log while the disk fails.
#include "tests/io_faults/IoFaultFixture.h"
#include "tests/support/FileDatabase.h"

namespace tsl::test {

namespace {

constexpr UINT32 kIdThatTrims = 2000;

} // namespace

class ReplayTrimFaults : public IoFaultTest {
protected:
    // Recording a thousand actions takes too long: their rows are copies of a recorded one.
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(IoFaultTest::SetUp());
        {
            const FileDatabase file(ReplayPath());
            file.Query("WITH RECURSIVE ids(id) AS (SELECT 101 UNION ALL SELECT id + 1 FROM ids "
                       "LIMIT 1000) "
                       "INSERT INTO TslIf_ActionReplay SELECT id, UsedLog, AppId, AppName, UserId, "
                       "ActionName, '', AppLoggedTime, PluginLoggedTime, PreActionName, "
                       "PreActionParameters, PreLoggedTime, LogKind FROM ids, TslIf_ActionReplay "
                       "WHERE ActionLogId = 2");
            file.Query("PRAGMA user_version = 1100");
        }
        BeginWith(ReadStoreFolder());
    }
};

TEST_F(ReplayTrimFaults, TrimTheWholeLogOrNothing) {
    RunWithFaults(ReplayTrim(Plugin(), kIdThatTrims));
}

class ReplayTrimPowerCuts : public ReplayTrimFaults {};

TEST_F(ReplayTrimPowerCuts, TrimTheWholeLogOrNothing) {
    RunWithPowerCuts(ReplayTrim(Plugin(), kIdThatTrims));
}

} // namespace tsl::test
