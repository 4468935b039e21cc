// The disk fails again while the component takes back what a power cut left half written.
#include "tests/io_faults/IoFaultFixture.h"

namespace tsl::test {

class RecoveryFaults : public IoFaultTest {
protected:
    // A long record was being written when the power went.
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(IoFaultTest::SetUp());
        ASSERT_NO_FATAL_FAILURE(Begin());
        const StoreState before = ReadStore();
        ASSERT_NO_FATAL_FAILURE(CutPowerInARecord());
        const DiskImage left = Disk().log.AfterCut(ReadStoreFolder(), Survival::All, /*seed=*/0);
        EXPECT_EQ(before, ReadStore());
        EXPECT_NE(left.at(ActionLogPath()), ReadBytes(ActionLogPath())) << "nothing to take back";
        BeginWith(left);
    }

private:
    // The power goes as soon as the database has grown: it must be cut back, too.
    void CutPowerInARecord() {
        constexpr int kMostChanges = 100;
        for (int nth = 1; nth < kMostChanges; ++nth) {
            Begin();
            const auto size = std::filesystem::file_size(ActionLogPath());
            Schedule().CutPowerAfterChange(nth);
            EXPECT_NE(S_OK, Recording(Plugin(), kNewId, kLongText).run());
            Schedule().Clear();
            if (std::filesystem::file_size(ActionLogPath()) > size) return;
        }
        FAIL() << "nothing was written";
    }
};

TEST_F(RecoveryFaults, LoseNothingWhenARecordIsNew) {
    RunWithFaults(Recording(Plugin(), kNewId));
}

TEST_F(RecoveryFaults, AnswerAllIdsInATimeOrFail) {
    RunWithFaults(QueryingTimes(Plugin()));
}

} // namespace tsl::test
