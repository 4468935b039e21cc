// One action all the way: an id, the action, the rows in both databases.
#include "component/host/CommandCodes.h"
#include "tests/support/FileDatabase.h"
#include "tests/support/PluginFixture.h"

namespace tsl::test {

class RoadOfOneAction : public PluginTest {};

TEST_F(RoadOfOneAction, LeadsFromTheIdToOneRowInEachDatabase) {
    ASSERT_EQ(S_OK, Plugin().SetRecordingEnabled(1));
    const UINT32 id = NextId();
    ASSERT_EQ(1u, id);
    ContainerBuilder action = Action(id, L"playItem");
    action.Array<LONG>(kKeyIntValues, {1, -2});
    ASSERT_EQ(S_OK, Plugin().Notify(kCommandRecordAction, action));

    const std::string columns =
        "SELECT ActionLogId, AppId, UserId, ActionName, ActionParameters, LogKind FROM ";
    const std::vector<Row> expected = {{"1", "3", "7", "playItem", "intValues={1,-2}", "1"}};
    EXPECT_EQ(expected, FileDatabase(ActionLogPath()).Query(columns + "TslIf_DbActionLog"));
    EXPECT_EQ(expected, FileDatabase(ReplayPath()).Query(columns + "TslIf_ActionReplay"));
}

} // namespace tsl::test
