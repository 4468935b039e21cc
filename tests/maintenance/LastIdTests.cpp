// The last record id of an older store, in every form in which its table may hold it.
#include "tests/maintenance/OldStore.h"

namespace tsl::test {

class LastId : public OldStoreTest {
protected:
    // Converts a store whose old table is made by the SQL; yields the counter file's bytes.
    static Bytes Convert(const std::string& sql) {
        std::filesystem::remove(ActionLogPath());
        std::filesystem::remove(CounterPath());
        MakeOldStore("no-id-table.sql");
        ChangeActionLog(sql);
        EXPECT_EQ(S_OK, Maintain()) << sql;
        EXPECT_EQ(0, CountRows(ActionLogPath(), kIdTable)) << sql;
        return ReadBytes(CounterPath());
    }
    static Bytes ConvertRows(const std::string& rows) {
        return Convert("CREATE TABLE TslIf_ActionRecordId (CurrentRecordId INTEGER,"
                       "ActionLogId INTEGER); INSERT INTO TslIf_ActionRecordId VALUES " +
                       rows);
    }
};

TEST_F(LastId, PlusOneIsTheCounter) {
    const struct {
        const char* id;
        const wchar_t* counter;
    } cases[] = {{"0", L"00000001"},           {"1", L"00000002"},
                 {"41", L"00000042"},          {"99999998", L"99999999"},
                 {"99999999", L"100000000"},   {"2147483647", L"2147483648"},
                 {"4294967294", L"4294967295"}};
    for (const auto& each : cases) {
        SCOPED_TRACE(each.id);
        EXPECT_EQ(CounterBytes(each.counter),
                  ConvertRows(std::string("(1,").append(each.id).append(")")));
    }
}

TEST_F(LastId, IsCutToThirtyTwoBits) {
    EXPECT_EQ(CounterBytes(L"00000000"), ConvertRows("(1,4294967295)"));
    EXPECT_EQ(CounterBytes(L"00000001"), ConvertRows("(1,4294967296)"));
    EXPECT_EQ(CounterBytes(L"00000042"), ConvertRows("(1,4294967337)"));
    EXPECT_EQ(CounterBytes(L"00000000"), ConvertRows("(1,-1)"));
    EXPECT_EQ(CounterBytes(L"4294967295"), ConvertRows("(1,-2)"));
    EXPECT_EQ(CounterBytes(L"00000001"), ConvertRows("(1,-9223372036854775808)"));
}

TEST_F(LastId, ThatIsNoIntegerIsReadAsTheEngineReadsIt) {
    EXPECT_EQ(CounterBytes(L"00000042"), ConvertRows("(1,'41')"));
    EXPECT_EQ(CounterBytes(L"00000042"), ConvertRows("(1,'41 and more')"));
    EXPECT_EQ(CounterBytes(L"00000042"), ConvertRows("(1,41.9)"));
    EXPECT_EQ(CounterBytes(L"00000001"), ConvertRows("(1,'forty-one')"));
    EXPECT_EQ(CounterBytes(L"00000001"), ConvertRows("(1,NULL)"));
    EXPECT_EQ(CounterBytes(L"00000001"), ConvertRows("(1,x'FF')"));
}

TEST_F(LastId, IsThatOfTheFirstRowOfCurrentRecordIdOne) {
    EXPECT_EQ(CounterBytes(L"00000042"), ConvertRows("(2,7),(NULL,8),(0,9),(1,41),(11,10)"));
    EXPECT_EQ(CounterBytes(L"00000042"), ConvertRows("(1,41),(1,77)"));
}

TEST_F(LastId, StandsInTheSecondColumnWhateverItsName) {
    EXPECT_EQ(CounterBytes(L"00000042"),
              Convert("CREATE TABLE TslIf_ActionRecordId (CurrentRecordId INTEGER,Other INTEGER,"
                      "ActionLogId INTEGER); INSERT INTO TslIf_ActionRecordId VALUES (1,41,7)"));
    // Columns in the other order: the row is found by its name, the id by its place.
    EXPECT_EQ(CounterBytes(L"00000002"),
              Convert("CREATE TABLE TslIf_ActionRecordId (ActionLogId INTEGER,CurrentRecordId "
                      "INTEGER); INSERT INTO TslIf_ActionRecordId VALUES (41,1)"));
}

TEST_F(LastId, IsZeroWithoutASecondColumn) {
    EXPECT_EQ(CounterBytes(L"00000001"),
              Convert("CREATE TABLE TslIf_ActionRecordId (CurrentRecordId INTEGER);"
                      "INSERT INTO TslIf_ActionRecordId VALUES (1)"));
}

TEST_F(LastId, IsNotTakenFromAView) {
    MakeOldStore("no-id-table.sql");
    ChangeActionLog("CREATE TABLE Ids (a,b); INSERT INTO Ids VALUES (1,41);"
                    "CREATE VIEW TslIf_ActionRecordId AS SELECT a AS CurrentRecordId, b AS "
                    "ActionLogId FROM Ids");
    const StoreImage before = ReadActionLog();
    EXPECT_EQ(kEngineError, Maintain()) << "the engine looks into no view";
    EXPECT_EQ(WithLogKinds(before), ReadActionLog());
    EXPECT_FALSE(std::filesystem::exists(CounterPath()));
    EXPECT_EQ(1u, NextId());
}

} // namespace tsl::test
