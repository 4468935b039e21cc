// A machine without any store: maintenance makes an empty database file and leaves it at that.
#include "tests/maintenance/OldStore.h"

namespace tsl::test {

namespace fs = std::filesystem;

class FreshInstall : public OldStoreTest {
protected:
    static void ExpectAnEmptyDatabaseAndNothingElse() {
        EXPECT_EQ(StoreImage(), ReadActionLog());
        EXPECT_EQ(1, std::distance(fs::directory_iterator(StoreFolder()), {}));
    }
};

TEST_F(FreshInstall, GetsAnEmptyDatabase) {
    ASSERT_FALSE(fs::exists(StoreFolder()));
    EXPECT_EQ(kEngineError, Maintain());
    ExpectAnEmptyDatabaseAndNothingElse();
    EXPECT_EQ(Bytes(), ReadBytes(ActionLogPath()));
}

TEST_F(FreshInstall, GetsItWithTheSwitch) {
    EXPECT_EQ(S_OK, Plugin().SetRecordingEnabled(1));
    ExpectAnEmptyDatabaseAndNothingElse();
    ExpectTheSwitchWorks();
    ExpectAnEmptyDatabaseAndNothingElse();
}

TEST_F(FreshInstall, BeginsWithIdOne) {
    ASSERT_EQ(S_OK, Plugin().SetRecordingEnabled(1));
    EXPECT_EQ(1u, NextId());
    ExpectAGoodActionIsRecorded(Plugin());
    EXPECT_EQ(E_FAIL, Maintain());
    EXPECT_EQ("1", LogKinds());
}

TEST_F(FreshInstall, WithAnEmptyDatabaseKeepsIt) {
    MakeStoreFolder();
    WriteBytes(ActionLogPath(), {});
    EXPECT_EQ(kEngineError, Maintain());
    EXPECT_EQ(Bytes(), ReadBytes(ActionLogPath()));
    ExpectAnEmptyDatabaseAndNothingElse();
}

TEST_F(FreshInstall, WithTablesOfOthersLeavesThemAlone) {
    ChangeActionLog("CREATE TABLE Other (LogKind INTEGER); INSERT INTO Other VALUES (7)");
    const Bytes before = ReadBytes(ActionLogPath());
    EXPECT_EQ(kEngineError, Maintain());
    EXPECT_EQ(before, ReadBytes(ActionLogPath()));
    EXPECT_FALSE(fs::exists(CounterPath()));
}

} // namespace tsl::test
