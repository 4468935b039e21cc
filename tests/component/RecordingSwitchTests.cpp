// SetRecordingEnabled: one switch for the process, one log kind for each object.
#include "component/host/CommandCodes.h"
#include "tests/support/FileDatabase.h"
#include "tests/support/PluginFixture.h"
#include "tests/support/StoreChecks.h"

namespace tsl::test {

class RecordingSwitch : public PluginTest {
protected:
    static HRESULT Record(ITslPluginDb2& plugin, UINT32 recordId) {
        return plugin.Notify(kCommandRecordAction, Action(recordId, L"playItem"));
    }
    static std::string LogKindOf(UINT32 recordId) {
        return FileDatabase(ReplayPath())
            .Value("SELECT LogKind FROM TslIf_ActionReplay WHERE ActionLogId = " +
                   std::to_string(recordId));
    }
};

TEST_F(RecordingSwitch, IsOffUntilItIsSet) {
    EXPECT_EQ(E_NOTIMPL, Record(Plugin(), 1));
    EXPECT_EQ(0, CountRows(ActionLogPath(), kActionLogRows));
    EXPECT_EQ(0, CountRows(ReplayPath(), kReplayRows));
}

TEST_F(RecordingSwitch, IsStillOffAfterTheFlagZero) {
    EXPECT_EQ(S_OK, Plugin().SetRecordingEnabled(0));
    EXPECT_EQ(E_NOTIMPL, Record(Plugin(), 1));
    EXPECT_EQ(0, CountRows(ReplayPath(), kReplayRows));
}

TEST_F(RecordingSwitch, IsOnWithEveryOtherFlagWhichIsTheLogKind) {
    UINT32 recordId = 0;
    for (const UINT32 flag : {1u, 2u, 4u, 32u, 0x80000000u, 0xFFFFFFFFu}) {
        SCOPED_TRACE(flag);
        EXPECT_EQ(S_OK, Plugin().SetRecordingEnabled(flag));
        EXPECT_EQ(S_OK, Record(Plugin(), ++recordId));
        EXPECT_EQ(std::to_string(flag), LogKindOf(recordId));
    }
}

TEST_F(RecordingSwitch, IsTurnedOffForEveryObjectByOne) {
    const CComPtr<ITslPluginDb2> other = Library().CreatePlugin();
    ASSERT_EQ(S_OK, Plugin().SetRecordingEnabled(1));
    ASSERT_EQ(S_OK, other->SetRecordingEnabled(1));
    EXPECT_EQ(S_OK, other->SetRecordingEnabled(0));
    EXPECT_EQ(E_NOTIMPL, Record(Plugin(), 1));
    EXPECT_EQ(E_NOTIMPL, Record(*other.Get(), 2));
    EXPECT_EQ(0, CountRows(ReplayPath(), kReplayRows));
}

TEST_F(RecordingSwitch, IsTurnedOnForEveryObjectByOne) {
    const CComPtr<ITslPluginDb2> other = Library().CreatePlugin();
    ASSERT_EQ(S_OK, other->SetRecordingEnabled(4));
    EXPECT_EQ(S_OK, Record(Plugin(), 1));
    EXPECT_EQ("0", LogKindOf(1)) << "an object that was never given a flag has log kind 0";
    EXPECT_EQ(S_OK, Record(*other.Get(), 2));
    EXPECT_EQ("4", LogKindOf(2));
}

TEST_F(RecordingSwitch, LeavesEachObjectItsOwnLogKind) {
    const CComPtr<ITslPluginDb2> other = Library().CreatePlugin();
    ASSERT_EQ(S_OK, Plugin().SetRecordingEnabled(1));
    ASSERT_EQ(S_OK, other->SetRecordingEnabled(32));
    EXPECT_EQ(S_OK, Record(Plugin(), 1));
    EXPECT_EQ(S_OK, Record(*other.Get(), 2));
    EXPECT_EQ("1", LogKindOf(1));
    EXPECT_EQ("32", LogKindOf(2));
}

TEST_F(RecordingSwitch, GivesAnObjectThatTurnedItOffLogKindZero) {
    const CComPtr<ITslPluginDb2> other = Library().CreatePlugin();
    ASSERT_EQ(S_OK, Plugin().SetRecordingEnabled(1));
    ASSERT_EQ(S_OK, Plugin().SetRecordingEnabled(0));
    ASSERT_EQ(S_OK, other->SetRecordingEnabled(32));
    EXPECT_EQ(S_OK, Record(Plugin(), 1));
    EXPECT_EQ("0", LogKindOf(1));
}

TEST_F(RecordingSwitch, OutlivesTheObjectThatSetIt) {
    CComPtr<ITslPluginDb2> other = Library().CreatePlugin();
    ASSERT_EQ(S_OK, other->SetRecordingEnabled(1));
    other.Reset();
    EXPECT_EQ(S_OK, Record(Plugin(), 1));
    ReleasePlugin();
    const CComPtr<ITslPluginDb2> later = Library().CreatePlugin();
    EXPECT_EQ(S_OK, Record(*later.Get(), 2));
    EXPECT_EQ(2, CountRows(ReplayPath(), kReplayRows));
}

TEST_F(RecordingSwitch, IsSetThoughTheStoreCannotBeOpened) {
    MakeStoreFolder();
    std::filesystem::create_directory(ActionLogPath());
    EXPECT_EQ(S_OK, Plugin().SetRecordingEnabled(1));
    EXPECT_EQ(S_OK, Plugin().Notify(kCommandRecordAction, nullptr));
}

} // namespace tsl::test
