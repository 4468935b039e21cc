// Memory runs out while recording is switched on: the switch is on all the same, no record is lost,
// and what was not converted is converted the next time.
#include "tests/maintenance/OldStore.h"
#include "tests/memory_faults/CounterFile.h"
#include "tests/memory_faults/MemoryFaultFixture.h"

namespace tsl::test {

namespace fs = std::filesystem;

class MaintenanceFaults : public MemoryFaultTest {
protected:
    static void RemoveStore() {
        fs::remove(CounterPath());
        fs::remove(ActionLogPath());
    }
    void ExpectRecordingIsOn(const Outcome& outcome) {
        EXPECT_EQ(S_OK, outcome.result) << "the switch tells nothing of the conversion";
        EXPECT_EQ(S_OK, Plugin().Notify(kCommandRecordAction, nullptr));
    }
};

TEST_F(MaintenanceFaults, SwitchRecordingOnInAnEmptyStore) {
    FailEachAllocation({
        .name = "recording switched on, empty store",
        .prepare =
            [&] {
                Plugin().SetRecordingEnabled(0);
                RemoveStore();
            },
        .run = [&] { return Plugin().SetRecordingEnabled(1); },
        .allowed = {},
        .check =
            [&](const Outcome& outcome) {
                ExpectRecordingIsOn(outcome);
                EXPECT_FALSE(fs::exists(CounterPath()));
            },
    });
}

TEST_F(MaintenanceFaults, SwitchRecordingOnInAConvertedStore) {
    FailEachAllocation({
        .name = "recording switched on, converted store",
        .prepare =
            [&] {
                Plugin().SetRecordingEnabled(0);
                MakeCounterFile(L"00000041");
            },
        .run = [&] { return Plugin().SetRecordingEnabled(1); },
        .allowed = {},
        .check =
            [&](const Outcome& outcome) {
                ExpectRecordingIsOn(outcome);
                EXPECT_EQ(std::optional<UINT32>(41), StoredCounter());
            },
    });
}

TEST_F(MaintenanceFaults, ConvertAnOlderStoreNowOrTheNextTime) {
    StoreImage before;
    FailEachAllocation({
        .name = "conversion of an older store",
        .prepare =
            [&] {
                Plugin().SetRecordingEnabled(0);
                RemoveStore();
                MakeOldStore("complete.sql");
                before = ReadActionLog();
            },
        .run = [&] { return Plugin().SetRecordingEnabled(1); },
        .allowed = {},
        .check =
            [&](const Outcome& outcome) {
                ExpectRecordingIsOn(outcome);
                const bool seeded = fs::exists(CounterPath());
                const StoreImage after = ReadActionLog();
                if (outcome.NothingFailed()) {
                    EXPECT_EQ(Converted(before), after);
                }
                // Only a store that has its counter is done with; the old table may stay in it.
                if (seeded) {
                    EXPECT_THAT(after, testing::AnyOf(Converted(before), WithLogKinds(before)));
                }
                EXPECT_EQ(S_OK, Plugin().SetRecordingEnabled(1));
                EXPECT_EQ(std::optional<UINT32>(42), StoredCounter());
                EXPECT_TRUE(FilesInTheMaking().empty());
                EXPECT_EQ(WithLogKinds(before).records, ReadActionLog().records);
                if (!seeded) {
                    EXPECT_EQ(Converted(before), ReadActionLog());
                }
            },
        .briefRuns = 5,
    });
}

} // namespace tsl::test
