// What doctor says that recover mends, recover mends, without being forced to.
#include "tests/support/FullForm.h"
#include "tests/support/StoreChecks.h"
#include "tests/upkeep/RecoverFixture.h"
#include "upkeep/doctor/Doctor.h"

namespace tsl::test {

namespace {

class Mending : public RecoverTest {
protected:
    static bool NamesRecover(const Findings& findings) {
        return std::ranges::any_of(findings, [](const Finding& finding) {
            return finding.damage && finding.remedy == kRecover;
        });
    }

    // Whether there was anything to be mended.
    bool Mend() const {
        if (!NamesRecover(Examine(Store()))) return false;
        Recover();
        for (const Finding& finding : Examine(Store()))
            EXPECT_FALSE(finding.damage) << finding.subject << ": " << finding.text;
        return true;
    }
};

TEST_F(Mending, OfRecordsThatAreThereTwice) {
    Change(Store().actionLog, "INSERT INTO TslIf_DbActionLog SELECT * FROM TslIf_DbActionLog WHERE "
                              "ActionLogId < 3");
    EXPECT_TRUE(Mend());
    EXPECT_EQ(kSampleRecords, CountRows(Store().actionLog, kActionLogRows));
}

TEST_F(Mending, OfARecordWithoutAnId) {
    Change(Store().replayLog,
           "UPDATE TslIf_ActionReplay SET ActionLogId = NULL WHERE ActionLogId = 600");
    EXPECT_TRUE(Mend());
    EXPECT_EQ(kSampleReplayed - 1, CountRows(Store().replayLog, kReplayRows));
}

TEST_F(Mending, OfDamagedDatabases) {
    const std::vector<DamagedFile> damaged = DamagedDatabases(WholeActionLog(), 200);
    int mended = 0;
    for (size_t index = 0; index < damaged.size(); index += InForm(15, 1)) {
        SCOPED_TRACE(std::to_string(index) + ": " + damaged[index].how);
        PutInPlace(damaged[index], Store().actionLog);
        mended += Mend();
        RemoveFilesAside();
    }
    EXPECT_GT(mended, 0);
}

TEST_F(Mending, OfSpoiledCounters) {
    const Bytes whole = ReadBytes(Store().counter);
    int mended = 0;
    for (const DamagedFile& file : DamagedTextFiles(whole, InForm(15, 100))) {
        if (file.isFolder) continue;
        SCOPED_TRACE(file.how);
        PutInPlace(file, Store().counter);
        mended += Mend();
    }
    EXPECT_GT(mended, 0);
}

} // namespace

} // namespace tsl::test
