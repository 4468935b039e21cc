// Base of the tests that report actions to the real DLL. Recording is on with log kind 1, and the
// first id has been handed out, so that the store counts as converted.
#pragma once

#include "component/host/CommandCodes.h"
#include "tests/dispatch/Tables.h"
#include "tests/integration/Aftermath.h"
#include "tests/support/PluginFixture.h"

namespace tsl::test {

class DispatchTest : public PluginTest {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(PluginTest::SetUp());
        ASSERT_EQ(1u, NextId());
        SetLogKind(1);
    }
    // No lock is held and no file is open.
    void TearDown() override {
        ExpectLocksAreFree();
        for (const auto& file : {ActionLogPath(), ReplayPath()}) {
            if (std::filesystem::is_regular_file(file)) {
                EXPECT_TRUE(NobodyHasOpen(file));
            }
        }
        PluginTest::TearDown();
    }

    // The log kind of the plug-in; 0 as well, with recording on.
    void SetLogKind(UINT32 kind) {
        ASSERT_EQ(S_OK, Plugin().SetRecordingEnabled(kind));
        if (kind == 0) {
            ASSERT_EQ(S_OK, Library().CreatePlugin()->SetRecordingEnabled(1));
        }
    }

    HRESULT Report(IUnknown* action) { return Plugin().Notify(kCommandRecordAction, action); }

    // Makes the three tables, without rows. REQUIRES: log kind 1.
    void MakeTables() {
        ASSERT_EQ(S_OK, Report(Action(1, L"deleteItem")));
        ASSERT_EQ("1 1 1",
                  IdsIn(kActionLogRows) + " " + IdsIn(kTakenRows) + " " + IdsIn(kReplayRows));
        EmptyTables();
    }
};

} // namespace tsl::test
