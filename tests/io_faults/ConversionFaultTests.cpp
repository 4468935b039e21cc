// The conversion of a store of the older form while the disk fails.
#include "tests/io_faults/IoFaultFixture.h"
#include "tests/maintenance/OldStore.h"

namespace tsl::test {

class ConversionFaults : public IoFaultTest {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(IoFaultTest::SetUp());
        WriteStoreFolder({});
        MakeOldStore("complete.sql");
        BeginWith(ReadStoreFolder());
        AlsoCheck([] { ExpectConvertedWhereThereIsACounter(); });
    }

    // The switch reports nothing of the conversion. One that failed is made by the next switch.
    Operation Converting() {
        return {"conversion",
                [&] { return Plugin().SetRecordingEnabled(1); },
                {{Table::Log, SetEveryKind}, {Table::Log, SetKindOfLocations}}};
    }

private:
    static void SetEveryKind(TableRows& rows, const TableRows&) {
        for (TableRow& row : rows)
            row.logKind = "1";
    }
    static void SetKindOfLocations(TableRows& rows, const TableRows&) {
        for (TableRow& row : rows) {
            if (row.name == "userLocation") row.logKind = "4";
        }
    }

    // With a counter file a store is never looked at again, so nothing may be missing by then.
    static void ExpectConvertedWhereThereIsACounter() {
        if (!std::filesystem::is_regular_file(CounterPath())) return;
        EXPECT_EQ(CounterBytes(L"00000042"), ReadBytes(CounterPath()));
        TableRows rows = ReadStore().In(Table::Log);
        const TableRows found = rows;
        SetEveryKind(rows, {});
        SetKindOfLocations(rows, {});
        EXPECT_EQ(rows, found);
    }
};

TEST_F(ConversionFaults, LoseNoRecordAndAreMadeUpFor) {
    RunWithFaults(Converting());
}

class ConversionPowerCuts : public ConversionFaults {};

TEST_F(ConversionPowerCuts, LoseNoRecordAndAreMadeUpFor) {
    RunWithPowerCuts(Converting());
}

} // namespace tsl::test
