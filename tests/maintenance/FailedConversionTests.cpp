// A conversion that fails on the way says so, leaves what it did, and is made up for by the next.
#include "tests/maintenance/OldStore.h"
#include "tests/support/EngineSleeps.h"

namespace tsl::test {

namespace fs = std::filesystem;

class FailedConversion : public OldStoreTest {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(OldStoreTest::SetUp());
        MakeOldStore("complete.sql");
        before = ReadActionLog();
    }
    // Fails with the answer and changes nothing; the switch works.
    void ExpectNothingIsDone(HRESULT answer) {
        const Bytes database = ReadBytes(ActionLogPath());
        EXPECT_EQ(answer, Maintain());
        ExpectLocksAreFree();
        ExpectTheSwitchWorks();
        EXPECT_EQ(database, ReadBytes(ActionLogPath()));
        EXPECT_FALSE(fs::exists(CounterPath()));
    }
    void ExpectTheNextRunConverts() {
        EXPECT_EQ(S_OK, Plugin().SetRecordingEnabled(1));
        ExpectCompleteStoreIsConverted(before);
    }
    // Opens the database and lets others do with it what share says.
    static CHandle HoldOpen(DWORD share) {
        return CHandle(CreateFileW(ActionLogPath().c_str(), GENERIC_READ, share, nullptr,
                                   OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    }

    StoreImage before;
};

TEST_F(FailedConversion, OfADatabaseThatAnotherConnectionWrites) {
    for (const char* const begin : {"BEGIN IMMEDIATE", "BEGIN EXCLUSIVE"}) {
        SCOPED_TRACE(begin);
        const FileDatabase other(ActionLogPath());
        other.Query(begin);
        const EngineSleeps sleeps;
        ExpectNothingIsDone(kEngineBusy);
        EXPECT_GE(sleeps.Waits(kConvertWait), 2u) << "both runs try again for a while";
        other.Query("ROLLBACK");
        EXPECT_EQ(before, ReadActionLog());
    }
    ExpectTheNextRunConverts();
}

TEST_F(FailedConversion, OfADatabaseThatAnotherConnectionReads) {
    {
        const FileDatabase other(ActionLogPath());
        other.Query("BEGIN");
        other.Query("SELECT * FROM TslIf_DbActionLog");
        const EngineSleeps sleeps;
        ExpectNothingIsDone(kEngineBusy);
        EXPECT_GE(sleeps.Waits(kConvertWait), 2u) << "both runs try again for a while";
        other.Query("COMMIT");
    }
    ExpectTheNextRunConverts();
}

TEST_F(FailedConversion, OfADatabaseThatMayNotBeWritten) {
    {
        const CHandle reader = HoldOpen(FILE_SHARE_READ);
        ASSERT_TRUE(reader);
        EXPECT_EQ(kEngineReadOnly, Maintain());
        ExpectTheSwitchWorks();
    }
    EXPECT_EQ(before, ReadActionLog());
    ExpectTheNextRunConverts();
}

TEST_F(FailedConversion, OfADatabaseThatNobodyMayOpen) {
    {
        const CHandle owner = HoldOpen(/*share=*/0);
        ASSERT_TRUE(owner);
        const EngineSleeps sleeps;
        EXPECT_EQ(kEngineCannotOpen, Maintain());
        ExpectTheSwitchWorks();
    }
    EXPECT_EQ(before, ReadActionLog());
    ExpectTheNextRunConverts();
}

TEST_F(FailedConversion, OfAFolderInPlaceOfTheDatabase) {
    const fs::path aside = StoreFolder() / L"aside";
    fs::rename(ActionLogPath(), aside);
    fs::create_directory(ActionLogPath());
    EXPECT_EQ(kEngineCannotOpen, Maintain());
    ExpectTheSwitchWorks();
    EXPECT_FALSE(fs::exists(CounterPath()));
    fs::remove(ActionLogPath());
    fs::rename(aside, ActionLogPath());
    ExpectTheNextRunConverts();
}

TEST_F(FailedConversion, OfAFileInPlaceOfTheFolder) {
    fs::remove_all(StoreFolder());
    WriteBytes(StoreFolder(), {'x'});
    EXPECT_EQ(kEngineCannotOpen, Maintain());
    ExpectTheSwitchWorks();
    EXPECT_EQ(Bytes{'x'}, ReadBytes(StoreFolder()));
    fs::remove(StoreFolder());
}

TEST_F(FailedConversion, OfADamagedDatabase) {
    WriteBytes(ActionLogPath(), Bytes(4096, 0xA5));
    ExpectNothingIsDone(kEngineNotADatabase);
}

TEST_F(FailedConversion, OfRecordsWithoutTheColumnOfTheKind) {
    ChangeActionLog("ALTER TABLE TslIf_DbActionLog DROP COLUMN LogKind");
    ExpectNothingIsDone(kEngineError);
}

TEST_F(FailedConversion, OfRecordsThatTakeNoKind) {
    ChangeActionLog("CREATE UNIQUE INDEX Refuse ON TslIf_DbActionLog (LogKind) WHERE LogKind = 1");
    ExpectNothingIsDone(kEngineConstraint);
    ChangeActionLog("DROP INDEX Refuse");
    ExpectTheNextRunConverts();
}

TEST_F(FailedConversion, OfLocationsKeepsTheFirstKinds) {
    ChangeActionLog("CREATE UNIQUE INDEX Refuse ON TslIf_DbActionLog (LogKind) WHERE LogKind = 4");
    StoreImage expected = ReadActionLog();
    for (Row& record : expected.records)
        record.back() = "1";
    EXPECT_EQ(kEngineConstraint, Maintain());
    ExpectTheSwitchWorks();
    EXPECT_EQ(expected, ReadActionLog());
    EXPECT_FALSE(fs::exists(CounterPath()));
    ChangeActionLog("DROP INDEX Refuse");
    ExpectTheNextRunConverts();
}

TEST_F(FailedConversion, OfAMissingActionLogMakesNoTable) {
    ChangeActionLog("ALTER TABLE TslIf_DbActionLog RENAME TO Aside");
    ExpectNothingIsDone(kEngineError);
    ChangeActionLog("ALTER TABLE Aside RENAME TO TslIf_DbActionLog");
    EXPECT_EQ(S_OK, Maintain());
    EXPECT_EQ(43u, NextId());
}

TEST_F(FailedConversion, OfAnOldTableThatIsPutInOrderIsMadeUpFor) {
    ChangeActionLog("UPDATE TslIf_ActionRecordId SET CurrentRecordId = 2");
    const StoreImage damaged = ReadActionLog();
    EXPECT_EQ(kEngineNoRow, Maintain());
    ExpectTheSwitchWorks();
    ExpectOnlyLogKindsAreSet(damaged);
    ChangeActionLog("UPDATE TslIf_ActionRecordId SET CurrentRecordId = 1");
    ExpectTheNextRunConverts();
}

} // namespace tsl::test
