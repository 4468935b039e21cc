// Base of the tests of calls that meet: the real DLL, driven by a host whose methods call back.
#pragma once

#include <memory>
#include <optional>

#include "console/ComInitialization.h"
#include "console/PluginLibrary.h"
#include "tests/calls/Commands.h"
#include "tests/support/FileDatabase.h"
#include "tests/support/StoreChecks.h"
#include "tests/support/StoreFixture.h"

namespace tsl::test {

class CallsTest : public StoreTest {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(StoreTest::SetUp());
        MakeCounterFile();
        m_com.emplace();
        m_host = std::make_unique<CallingHost>();
        m_library.emplace((ProgramFolder() / L"TslIfDbActionLog.dll").wstring());
        RenewPlugin();
        ASSERT_NO_FATAL_FAILURE(RecordBaseStore(*m_plugin));
    }
    void TearDown() override {
        m_host->onCall = nullptr;
        m_plugin.Reset();
        EXPECT_EQ(0u, m_host->contentStore.Held());
        EXPECT_TRUE(MutexIsFree(kSqliteAccessLock));
        EXPECT_TRUE(MutexIsFree(kLogIdLock));
        EXPECT_TRUE(m_library->CanUnload()) << "something of the component is still in use";
        m_library.reset();
        m_host.reset();
        m_com.reset();
        StoreTest::TearDown();
    }

    // So many records of the user in the replay log.
    static void FillReplayLog(int records) {
        const FileDatabase database(ReplayPath());
        database.Query("DELETE FROM TslIf_ActionReplay");
        database.Query(
            "WITH RECURSIVE n(i) AS (SELECT 10001 UNION ALL SELECT i + 1 FROM n WHERE i < " +
            std::to_string(10000 + records) +
            ") INSERT INTO TslIf_ActionReplay (ActionLogId, UserId, ActionName, PluginLoggedTime, "
            "LogKind) SELECT i, 7, 'a', 45000.0, 1 FROM n");
    }

    CallingHost& Host() { return *m_host; }
    ITslPluginDb2& Plugin() { return *m_plugin; }
    // Another object under log kind 1, which keeps nothing of the host's yet.
    CComPtr<ITslPluginDb2> AnotherPlugin() {
        CComPtr<ITslPluginDb2> made = m_library->CreatePlugin();
        EXPECT_EQ(S_OK, made->SetRecordingEnabled(1));
        return made;
    }
    void RenewPlugin() { m_plugin = AnotherPlugin(); }

    // The command with an argument whose methods call back, or with a plain one.
    std::string CallByHost(const HostCommand& command, ITslPluginDb2& plugin, Turn turn) {
        return command.call(plugin, turn, [this](CComPtr<CTslParamContainer> values) {
            return m_host->Argument(std::move(values));
        });
    }
    static std::string CallPlainly(const HostCommand& command, ITslPluginDb2& plugin, Turn turn) {
        return command.call(plugin, turn, [](CComPtr<CTslParamContainer> values) {
            values->AddRef();
            return CComPtr<ITslParamContainer>::FromOwned(values.Get());
        });
    }

private:
    std::optional<CComInitialization> m_com;
    std::unique_ptr<CallingHost> m_host;
    std::optional<CPluginLibrary> m_library;
    CComPtr<ITslPluginDb2> m_plugin;
};

} // namespace tsl::test
