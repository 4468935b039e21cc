// The component in a folder without its engine: it loads, hands out ids and answers that it cannot
// record.
#include "tests/integration/Aftermath.h"
#include "tests/support/PluginFixture.h"

namespace tsl::test {

// This program and the component lie in a folder of their own.
class NoEngine : public PluginTest {
protected:
    void SetUp() override {
        ASSERT_FALSE(std::filesystem::exists(ProgramFolder() / L"Corvane.Nimbra.SQLiteEngine"));
        ASSERT_NO_FATAL_FAILURE(PluginTest::SetUp());
        ASSERT_EQ(nullptr, GetModuleHandleW(L"SQLite3.dll"));
        ASSERT_EQ(S_OK, Plugin().SetRecordingEnabled(1));
    }
};

TEST_F(NoEngine, DoesNotKeepTheObjectFromBeingCreated) {
    EXPECT_EQ(S_OK, Plugin().Reserved1());
    EXPECT_EQ(S_FALSE, Plugin().SetHost(nullptr));
    const CComPtr<ITslPluginDb2> another = Library().CreatePlugin();
    EXPECT_EQ(S_OK, another->SetRecordingEnabled(0));
}

TEST_F(NoEngine, IsReportedForAnAction) {
    ScriptedContainer action(Action(1, L"playItem").Get());
    EXPECT_EQ(E_POINTER, Plugin().Notify(kCommandRecordAction, &action));
    EXPECT_EQ(1u, action.References());
    EXPECT_FALSE(std::filesystem::exists(ActionLogPath()));
    EXPECT_FALSE(std::filesystem::exists(ReplayPath()));
    ExpectLocksAreFree();
}

TEST_F(NoEngine, IsNoConcernOfANotifyWithoutContainer) {
    EXPECT_EQ(S_OK, Plugin().Notify(kCommandRecordAction, nullptr));
}

TEST_F(NoEngine, IsNoConcernOfTheRecordIds) {
    EXPECT_EQ(1u, NextId());
    EXPECT_EQ(2u, NextId());
    EXPECT_EQ(Utf16FileBytes(L"00000002\t\r\n"), ReadBytes(CounterPath()));
    ExpectLocksAreFree();
}

TEST_F(NoEngine, LeavesTheModuleToBeUnloaded) {
    Plugin().Notify(kCommandRecordAction, Action(1, L"playItem"));
    ReleasePlugin();
    EXPECT_TRUE(Library().CanUnload());
    EXPECT_FALSE(MutexExists(kSqliteAccessLock));
    EXPECT_FALSE(MutexExists(kLogIdLock));
}

} // namespace tsl::test
