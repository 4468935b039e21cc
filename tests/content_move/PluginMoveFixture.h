// Base of the tests that tell the real DLL of a move, as hosts do. The action is called
// "viaMoveContent"; whatever comes of the move, it belongs into the replay log alone.
#pragma once

#include <optional>
#include <string>

#include "component/host/CommandCodes.h"
#include "tests/content_move/Properties.h"
#include "tests/support/ContentStoreDouble.h"
#include "tests/support/FileDatabase.h"
#include "tests/support/HostContainers.h"
#include "tests/support/PluginFixture.h"
#include "tests/support/StoreChecks.h"

namespace tsl::test {

// The move from "old one" and "old two" to "new one" and "new two" with the number 9.
inline ContainerBuilder MoveActionOf(UINT32 recordId) {
    return Action(recordId, L"viaMoveContent")
        .Texts(0x0200003400002008, {L"old one", L"old two"})
        .Texts(0x0200005100002008, {L"new one", L"new two"})
        .I4(0x0200004200000003, 9);
}

class PluginMoveTest : public PluginTest {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(PluginTest::SetUp());
        m_registration.emplace(CLSID_TslContentStore, &storeClass);
        ASSERT_EQ(S_OK, Plugin().SetRecordingEnabled(1));
        store.Hold(7, {Property(L"old one", L"old two", 1), Property(L"x", L"y", 2)});
        store.Hold(8, {Property(L"old one", L"old two", 3)});
    }
    void TearDown() override {
        ReleasePlugin();
        EXPECT_EQ(0u, store.Held()) << "a reference to the content store was not given back";
        m_registration.reset();
        PluginTest::TearDown();
    }

    HRESULT Notify(UINT32 recordId) {
        return Plugin().Notify(kCommandRecordAction, MoveActionOf(recordId));
    }
    // All calls of a move that nothing keeps from success.
    static Calls WholeMove() {
        return {L"find 'old one'", L"get 7", L"set 7 " + kMoved + Written(L"x", L"y", 2), L"get 8",
                L"set 8 " + kMoved};
    }
    // "5 viaMoveContent, 6 …": the records of a table, in the order of their ids.
    static std::string Records(const std::filesystem::path& database, const std::string& table) {
        if (CountRows(database, table) == 0) return "";
        return FileDatabase(database).Value(
            "SELECT group_concat(row, ', ') FROM (SELECT ActionLogId || ' ' || ActionName AS row "
            "FROM " +
            table + " ORDER BY ActionLogId)");
    }
    static std::string Logged() { return Records(ActionLogPath(), kActionLogRows); }
    static std::string Replayed() { return Records(ReplayPath(), kReplayRows); }

    ContentStoreDouble store;
    ContentStoreClass storeClass{store};

private:
    std::optional<ClassRegistration> m_registration;
};

} // namespace tsl::test
