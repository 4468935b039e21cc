// Whole records by a list of ids: what the containers hold.
#include <gmock/gmock.h>

#include "tests/query/QueryFixture.h"
#include "tests/support/LockWaits.h"
#include "tests/support/MutexHolder.h"

namespace tsl::test {

namespace {

using ::testing::ElementsAre;

const std::vector<UINT64> kKeysInOrder = {
    0x050020000000000b, 0x0200002200000013, 0x0200002100000013, 0x0200002000000003,
    0x0200002500000008, 0x0200002600000008, 0x0200002400000007};

} // namespace

class RecordList : public QueryTest {
protected:
    static CVariant IdArray(const std::vector<UINT32>& ids) {
        CVariant array = MakeFilledArray<LONG>(ids.size(), [&](std::span<LONG> made) {
            for (size_t index = 0; index < ids.size(); ++index)
                made[index] = static_cast<LONG>(ids[index]);
        });
        array.Address()->vt = VT_ARRAY | VT_UI4;
        return array;
    }
    // The records of the ids. Fails the test when there are none.
    AnswerContainers Fetch(const std::vector<UINT32>& ids) {
        CVariant answer = CVariant::FromText(L"replaced");
        EXPECT_EQ(S_OK, Ask(kAskForRecords, ContainerBuilder().Set(kIdList, IdArray(ids)),
                            answer.Address()));
        return Unpack(answer.Get());
    }
    Ids FetchIds(const std::vector<UINT32>& ids) {
        Ids found;
        for (const auto& record : Fetch(ids))
            found.push_back(ValueOf(*record, 0x0200002200000013).Get().ulVal);
        return found;
    }
};

TEST_F(RecordList, CarriesTheFieldsUnderTheirKeys) {
    StoreLog({{.id = 4000000000,
               .user = 4000000001,
               .time = 1000.25,
               .parameters = "'intValues={1,-2}&stringValues={a%2cb}'",
               .name = "'playItem'",
               .app = -3,
               .appTime = 500.75}});
    const AnswerContainers records = Fetch({4000000000});
    ASSERT_EQ(1u, records.size());
    ITslParamContainer& record = *records[0];
    EXPECT_EQ(kAskForRecords, CodeOf(record));
    const CVariant found = ValueOf(record, 0x050020000000000b);
    EXPECT_EQ(VT_BOOL, found.Type());
    EXPECT_EQ(VARIANT_TRUE, found.Get().boolVal);
    const CVariant id = ValueOf(record, 0x0200002200000013);
    EXPECT_EQ(VT_UI4, id.Type());
    EXPECT_EQ(4000000000u, id.Get().ulVal);
    const CVariant user = ValueOf(record, 0x0200002100000013);
    EXPECT_EQ(VT_UI4, user.Type());
    EXPECT_EQ(4000000001u, user.Get().ulVal);
    const CVariant app = ValueOf(record, 0x0200002000000003);
    EXPECT_EQ(VT_I4, app.Type());
    EXPECT_EQ(-3, app.Get().lVal);
    EXPECT_EQ(L"playItem", TextOf(record, 0x0200002500000008));
    EXPECT_EQ(L"intValues={1,-2}&stringValues={a%2cb}", TextOf(record, 0x0200002600000008));
}

TEST_F(RecordList, CarriesTheTimeOfTheApplicationNotThatOfThePlugin) {
    StoreLog({{.id = 1, .time = 1000.25, .appTime = 500.75}});
    const AnswerContainers records = Fetch({1});
    ASSERT_EQ(1u, records.size());
    const CVariant time = ValueOf(*records[0], 0x0200002400000007);
    EXPECT_EQ(VT_DATE, time.Type());
    EXPECT_EQ(500.75, time.Get().date);
}

TEST_F(RecordList, SetsTheCodeThenTheKeysInTheirOrder) {
    StoreLog({{.id = 1}, {.id = 2}});
    ASSERT_EQ(2u, Fetch({1, 2}).size());
    std::vector<UINT64> expected = {0};
    expected.insert(expected.end(), kKeysInOrder.begin(), kKeysInOrder.end());
    expected.insert(expected.end(), expected.begin(), expected.begin() + 8);
    EXPECT_EQ(expected, Containers().calls);
    EXPECT_EQ(nullptr, Containers().outer);
}

TEST_F(RecordList, TurnsMissingTextsIntoEmptyOnes) {
    StoreLog({{.id = 1, .parameters = "NULL", .name = "NULL"}});
    const AnswerContainers records = Fetch({1});
    ASSERT_EQ(1u, records.size());
    EXPECT_EQ(L"", TextOf(*records[0], 0x0200002500000008));
    EXPECT_EQ(L"", TextOf(*records[0], 0x0200002600000008));
}

TEST_F(RecordList, KeepsTextsOutsideTheBasicPlane) {
    StoreLog({{.id = 1, .parameters = "'stringValues={\xF0\x9F\x8E\xB5}'", .name = "'\xC3\xA4'"}});
    const AnswerContainers records = Fetch({1});
    ASSERT_EQ(1u, records.size());
    EXPECT_EQ(L"\u00e4", TextOf(*records[0], 0x0200002500000008));
    EXPECT_EQ(L"stringValues={\U0001F3B5}", TextOf(*records[0], 0x0200002600000008));
}

TEST_F(RecordList, IsOfEveryUserAndLogKind) {
    StoreLog({{.id = 1, .user = 1}, {.id = 2, .user = 9, .logKind = 16}, {.id = 3}});
    EXPECT_EQ((Ids{1, 2, 3}), FetchIds({1, 2, 3}));
}

TEST_F(RecordList, ComesInTheOrderOfTheRows) {
    StoreLog({{.id = 3}, {.id = 1}, {.id = 2}});
    EXPECT_EQ((Ids{3, 1, 2}), FetchIds({1, 2, 3}));
}

TEST_F(RecordList, LeavesOutIdsWithoutRecord) {
    StoreLog({{.id = 1}, {.id = 3}});
    EXPECT_EQ((Ids{3}), FetchIds({2, 3, 4, 0, 0xFFFFFFFF}));
}

TEST_F(RecordList, HoldsARecordOnceHoweverOftenItIsAskedFor) {
    StoreLog({{.id = 1}, {.id = 2}});
    EXPECT_EQ((Ids{1, 2}), FetchIds({2, 1, 2, 2, 1}));
}

TEST_F(RecordList, HoldsEachRowOfAnIdThatIsThereTwice) {
    StoreLog({{.id = 1, .user = 5}, {.id = 1, .user = 6}});
    EXPECT_EQ((Ids{1, 1}), FetchIds({1}));
}

TEST_F(RecordList, WithoutARecordIsAnEmptyVariant) {
    StoreLog({{.id = 1}});
    for (const UINT32 id : {0u, 2u, 0xFFFFFFFFu}) {
        CVariant answer = CVariant::FromText(L"replaced");
        EXPECT_EQ(S_OK, Ask(kAskForRecords, ContainerBuilder().Set(kIdList, IdArray({id})),
                            answer.Address()));
        EXPECT_EQ(VT_EMPTY, answer.Type());
    }
}

TEST_F(RecordList, IsNotTakenFromTheOtherTable) {
    StoreTaken({{.id = 1}});
    CVariant answer = CVariant::FromUi4(42);
    EXPECT_EQ(S_OK,
              Ask(kAskForRecords, ContainerBuilder().Set(kIdList, IdArray({1})), answer.Address()));
    EXPECT_EQ(VT_EMPTY, answer.Type());
}

TEST_F(RecordList, OfTenThousandAndOfAHundredThousandIdsIsFetchedInOneCall) {
    constexpr UINT32 kRecords = 10000;
    std::vector<StoredRow> rows;
    std::vector<UINT32> asked;
    Ids expected;
    for (UINT32 id = 1; id <= kRecords; ++id) {
        rows.push_back({.id = id});
        asked.push_back(id);
        expected.push_back(id);
    }
    StoreLog(rows);
    EXPECT_EQ(expected, FetchIds(asked));
    while (asked.size() < 100000)
        asked.push_back(static_cast<UINT32>(asked.size()) + 1);
    EXPECT_EQ(expected, FetchIds(asked));
}

TEST_F(RecordList, OfMoreIdsThanTheEngineTakesReportsThat) {
    StoreLog({{.id = 1}});
    ExpectNoAnswer(kEngineError, kAskForRecords,
                   ContainerBuilder().Set(kIdList, IdArray(std::vector<UINT32>(250001, 1))));
}

TEST_F(RecordList, WaitsForTheDatabaseLockAndGoesOnWithoutIt) {
    StoreLog({{.id = 1}});
    const MutexHolder holder(kSqliteAccessLock);
    const LockWaits waits(HeldLocks::AreGivenUpAtOnce, kComponentLibrary);
    EXPECT_EQ((Ids{1}), FetchIds({1}));
    EXPECT_THAT(waits.TimeOuts(kSqliteAccessLock), ElementsAre(3000));
    EXPECT_FALSE(MutexIsFree(kSqliteAccessLock)) << "the other process still holds it";
}

} // namespace tsl::test
