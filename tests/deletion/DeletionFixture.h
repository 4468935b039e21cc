// Base of the tests that delete by way of the DLL: a prepared action log, and what is left of it.
#pragma once

#include "component/host/CommandCodes.h"
#include "tests/integration/Aftermath.h"
#include "tests/support/FileDatabase.h"
#include "tests/support/PluginFixture.h"
#include "tests/user_ids/TokenSid.h"

namespace tsl::test {

struct StoredRow {
    UINT64 id;
    UINT32 userId;
    UINT32 logKind;
    double pluginTime;
};

class DeletionTest : public PluginTest {
protected:
    // Recording is switched on with log kind 1.
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(PluginTest::SetUp());
        MakeCounterFile();
        SetLogKind(1);
    }
    void TearDown() override {
        ExpectLocksAreFree();
        if (std::filesystem::is_regular_file(ActionLogPath())) {
            EXPECT_TRUE(NobodyHasOpen(ActionLogPath()));
        }
        PluginTest::TearDown();
    }

    void SetLogKind(UINT32 kind) { ASSERT_EQ(S_OK, Plugin().SetRecordingEnabled(kind)); }

    HRESULT Delete(IUnknown* container) {
        return Plugin().Delete(kCommandDeleteRecords, container);
    }

    // Makes the action log with these rows. The host's time is far from the plug-in's.
    static void Prepare(const std::vector<StoredRow>& rows) {
        MakeStoreFolder();
        const FileDatabase file(ActionLogPath(), /*create=*/true);
        file.Query("BEGIN");
        file.Query("DROP TABLE IF EXISTS TslIf_DbActionLog");
        file.Query("CREATE TABLE TslIf_DbActionLog (ActionLogId INTEGER,UsedLog INTEGER,"
                   "AppId INTEGER,AppName TEXT,UserId INTEGER,ActionName TEXT,"
                   "ActionParameters TEXT,AppLoggedTime REAL,PluginLoggedTime REAL,"
                   "PreActionName TEXT, PreActionParameters TEXT,PreLoggedTime INTEGER,"
                   "LogKind INTEGER)");
        for (const StoredRow& row : rows) {
            file.Query("INSERT INTO TslIf_DbActionLog(ActionLogId,UserId,AppLoggedTime,"
                       "PluginLoggedTime,LogKind) VALUES(" +
                       std::to_string(static_cast<INT64>(row.id)) + "," +
                       std::to_string(row.userId) + ",-500000.5," + std::to_string(row.pluginTime) +
                       "," + std::to_string(row.logKind) + ")");
        }
        file.Query("COMMIT");
    }

    // What is left: the ids in the order of the rows, with a blank between.
    static std::string Left() {
        std::string ids;
        for (const auto& row : FileDatabase(ActionLogPath())
                                   .Query("SELECT ActionLogId FROM TslIf_DbActionLog "
                                          "ORDER BY rowid")) {
            ids += (ids.empty() ? "" : " ") + row[0].value_or("NULL");
        }
        return ids;
    }
};

// A request for each form. The by-id form deletes record 2 of user 1; the others all of user 1.
inline ContainerBuilder OneRecord(UINT64 id = 2) {
    return ContainerBuilder().Ui8(kKeyRecordToTake, id);
}
inline ContainerBuilder IdRange(UINT32 first = 1, UINT32 user = 1) {
    return ContainerBuilder().Ui4(kKeyFirstRecordId, first).Ui4(kKeyUserId, user);
}
inline ContainerBuilder TimeRange(UINT32 user = 1) {
    return ContainerBuilder().Ui4(kKeyUserId, user);
}

// Records 1 to 4 of user 1, one day after the other, all of log kind 1.
inline const std::vector<StoredRow> kFourDays = {
    {1, 1, 1, 40001}, {2, 1, 1, 40002}, {3, 1, 1, 40003}, {4, 1, 1, 40004}};

} // namespace tsl::test
