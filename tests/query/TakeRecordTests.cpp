// Taking one record: what its container holds, and that the record is gone afterwards.
#include <algorithm>

#include "tests/query/QueryFixture.h"

namespace tsl::test {

namespace {

constexpr char kFull[] = "'ullValues={18446744073709551615,7,9}&intValues={1,-2,2147483647,4}&"
                         "stringValues={a%2cb}'";

std::vector<UINT64> Sorted(std::vector<UINT64> keys) {
    std::ranges::sort(keys);
    return keys;
}

} // namespace

class TakeRecord : public QueryTest {
protected:
    AnswerContainers Take(UINT64 id) {
        CVariant answer = CVariant::FromText(L"replaced");
        EXPECT_EQ(S_OK, Ask(kTake, ContainerBuilder().Ui8(kIdToTake, id), answer.Address()));
        return Unpack(answer.Get());
    }
    // Nothing is answered, but the record goes.
    void ExpectTakenUnseen(const std::string& parameters) {
        SCOPED_TRACE(parameters);
        StoreTaken({{.id = 5, .user = 1, .parameters = parameters}});
        ExpectNoAnswer(S_OK, kTake, ContainerBuilder().Ui8(kIdToTake, 5));
        EXPECT_EQ(0, CountRows(ActionLogPath(), kTakenRows));
    }
};

TEST_F(TakeRecord, CarriesTheDecodedParameters) {
    StoreTaken({{.id = 5, .user = 1, .parameters = kFull}});
    const AnswerContainers records = Take(5);
    ASSERT_EQ(1u, records.size());
    ITslParamContainer& record = *records[0];
    EXPECT_EQ(kTake, CodeOf(record));
    const CVariant handedOn = ValueOf(record, 0x050020000000000b);
    EXPECT_EQ(VT_BOOL, handedOn.Type());
    EXPECT_EQ(VARIANT_FALSE, handedOn.Get().boolVal);
    const CVariant taken = ValueOf(record, 0x050020010000000b);
    EXPECT_EQ(VT_BOOL, taken.Type());
    EXPECT_EQ(VARIANT_TRUE, taken.Get().boolVal);
    const std::pair<UINT64, UINT64> ids[] = {{0x0200001000000015, 18446744073709551615u},
                                             {0x0400101200000015, 7}};
    for (const auto& [key, expected] : ids) {
        EXPECT_EQ(VT_UI8, ValueOf(record, key).Type());
        EXPECT_EQ(expected, ValueOf(record, key).Get().ullVal);
    }
    const std::pair<UINT64, LONG> numbers[] = {
        {0x0400101000000003, 1}, {0x0400101100000003, -2}, {0x0400101300000003, 2147483647}};
    for (const auto& [key, expected] : numbers) {
        EXPECT_EQ(VT_I4, ValueOf(record, key).Type());
        EXPECT_EQ(expected, ValueOf(record, key).Get().lVal);
    }
    EXPECT_EQ(L"a%2cb", TextOf(record, 0x0500202400000008)) << "the first text stays encoded";
}

TEST_F(TakeRecord, SetsTheCodeThenTheKeysInTheirOrder) {
    StoreTaken({{.id = 5, .user = 1, .parameters = kFull}});
    ASSERT_EQ(1u, Take(5).size());
    EXPECT_EQ((std::vector<UINT64>{0, 0x050020000000000b, 0x050020010000000b, 0x0200001000000015,
                                   0x0400101000000003, 0x0400101100000003, 0x0400101300000003,
                                   0x0400101200000015, 0x0500202400000008}),
              Containers().calls);
}

TEST_F(TakeRecord, RemovesTheRecordAndNoOther) {
    StoreLog({{.id = 5, .user = 1}});
    StoreTaken({{.id = 4, .user = 1}, {.id = 5, .user = 1, .parameters = kFull}, {.id = 6}});
    ASSERT_EQ(1u, Take(5).size());
    EXPECT_EQ((Ids{4, 6}), IdsIn(kTakenRows));
    EXPECT_EQ((Ids{5}), IdsIn(kActionLogRows));
    ExpectNoAnswer(S_OK, kTake, ContainerBuilder().Ui8(kIdToTake, 5));
}

TEST_F(TakeRecord, WithOneTextKeepsTheFirstFlagFalseAndCarriesTheText) {
    StoreTaken({{.id = 5, .user = 1, .parameters = "'ullValues={1,2}&stringValues={x}'"}});
    const AnswerContainers records = Take(5);
    ASSERT_EQ(1u, records.size());
    EXPECT_EQ(VARIANT_FALSE, ValueOf(*records[0], 0x050020000000000b).Get().boolVal);
    EXPECT_EQ(L"x", TextOf(*records[0], 0x0500202400000008));
}

TEST_F(TakeRecord, LeavesOutTheKeysWithoutValue) {
    struct Case {
        const char* parameters;
        std::vector<UINT64> more;
    };
    const std::vector<UINT64> numbers = {0x0400101000000003, 0x0400101100000003,
                                         0x0400101300000003};
    const Case cases[] = {
        {"'ullValues={1,2}'", {}},
        {"'ullValues={1,2}&intValues={1,2}'", {}},
        {"'ullValues={1,2}&intValues={1,2,3}'", numbers},
        {"'ullValues={1,2}&stringValues={}'", {}},
        {"'ullValues={1,2}&stringValues={,}'", {0x0500202400000008}},
    };
    for (const Case& one : cases) {
        SCOPED_TRACE(one.parameters);
        StoreTaken({{.id = 5, .user = 1, .parameters = one.parameters}});
        const AnswerContainers records = Take(5);
        ASSERT_EQ(1u, records.size());
        std::vector<UINT64> expected = {0x050020000000000b, 0x050020010000000b, 0x0200001000000015,
                                        0x0400101200000015};
        expected.insert(expected.end(), one.more.begin(), one.more.end());
        EXPECT_EQ(Sorted(expected), Sorted(KeysOf(*records[0])));
    }
}

TEST_F(TakeRecord, ThatCannotBeDecodedIsStillRemoved) {
    ExpectTakenUnseen("''");
    ExpectTakenUnseen("'ullValues={}'");
    ExpectTakenUnseen("'ullValues={1}'");
    ExpectTakenUnseen("'ullValues={1,2'");
    ExpectTakenUnseen("'ULLVALUES={1,2}'");
    ExpectTakenUnseen("'stringValues={a,b}&intValues={1,2,3}'");
}

TEST_F(TakeRecord, WithoutParametersIsStillRemoved) {
    ExpectTakenUnseen("NULL");
}

TEST_F(TakeRecord, ThatIsNotThereLeavesTheResultAndTheOthers) {
    ExpectNoAnswer(S_OK, kTake, ContainerBuilder().Ui8(kIdToTake, 5));
    StoreTaken({{.id = 4, .user = 1, .parameters = kFull}});
    ExpectNoAnswer(S_OK, kTake, ContainerBuilder().Ui8(kIdToTake, 5));
    ExpectNoAnswer(S_OK, kTake, ContainerBuilder().Ui8(kIdToTake, 0x100000004));
    EXPECT_EQ((Ids{4}), IdsIn(kTakenRows));
}

TEST_F(TakeRecord, IsNotTakenFromTheActionLog) {
    StoreLog({{.id = 5, .user = 1, .parameters = kFull}});
    ExpectNoAnswer(S_OK, kTake, ContainerBuilder().Ui8(kIdToTake, 5));
    EXPECT_EQ((Ids{5}), IdsIn(kActionLogRows));
}

TEST_F(TakeRecord, TakesAnIdOfAllItsBits) {
    StoreTaken({{.id = 0x7FFFFFFFFFFFFFFF, .user = 1, .parameters = kFull}});
    EXPECT_EQ(1u, Take(0x7FFFFFFFFFFFFFFF).size());
    EXPECT_EQ(0, CountRows(ActionLogPath(), kTakenRows));
}

TEST_F(TakeRecord, CarriesEachRowOfAnIdThatIsThereTwice) {
    StoreTaken({{.id = 5, .user = 1, .parameters = "'ullValues={1,2}'"},
                {.id = 5, .user = 1, .parameters = "NULL"},
                {.id = 5, .user = 1, .parameters = "'ullValues={3,4}'"}});
    const AnswerContainers records = Take(5);
    ASSERT_EQ(2u, records.size());
    EXPECT_EQ(1u, ValueOf(*records[0], 0x0200001000000015).Get().ullVal);
    EXPECT_EQ(3u, ValueOf(*records[1], 0x0200001000000015).Get().ullVal);
    EXPECT_EQ(0, CountRows(ActionLogPath(), kTakenRows));
}

TEST_F(TakeRecord, StopsAtTheFirstRowThatCannotBeDecoded) {
    StoreTaken({{.id = 5, .user = 1, .parameters = "'ullValues={1,2}'"},
                {.id = 5, .user = 1, .parameters = "'ullValues={1}'"},
                {.id = 5, .user = 1, .parameters = "'ullValues={3,4}'"}});
    ExpectNoAnswer(S_OK, kTake, ContainerBuilder().Ui8(kIdToTake, 5));
    EXPECT_EQ(1, Containers().created) << "no container for what follows";
    EXPECT_EQ(0, CountRows(ActionLogPath(), kTakenRows));
}

TEST_F(TakeRecord, AnswersWithAnotherUsersRecordButLeavesIt) {
    StoreTaken({{.id = 5, .user = 7, .parameters = kFull}});
    EXPECT_EQ(1u, Take(5).size());
    EXPECT_EQ((Ids{5}), IdsIn(kTakenRows));
}

TEST_F(TakeRecord, IsOfUserOneWhateverUserTheHostNames) {
    StoreTaken({{.id = 5, .user = 7, .parameters = kFull}, {.id = 6, .user = 1}});
    CVariant answer;
    ASSERT_EQ(S_OK, Ask(kTake, ContainerBuilder().Ui8(kIdToTake, 5).Ui4(0x0200002100000013, 7),
                        answer.Address()));
    EXPECT_EQ((Ids{5, 6}), IdsIn(kTakenRows));
}

TEST_F(TakeRecord, IsOfTheCurrentUserUnderLogKindTwo) {
    const std::filesystem::path folder = StoreFolder().parent_path() / L"UID";
    std::filesystem::create_directories(folder);
    WriteBytes(folder / L"UserIdList.dat", Utf16FileBytes(L"0x00000040\tS-1-5-21-1-2-3-4\t\r\n"));
    StoreTaken(
        {{.id = 5, .user = 65, .parameters = kFull}, {.id = 6, .user = 1, .parameters = kFull}});
    ASSERT_EQ(S_OK, Plugin().SetRecordingEnabled(2));
    EXPECT_EQ(1u, Take(5).size());
    EXPECT_EQ(1u, Take(6).size());
    EXPECT_EQ((Ids{6}), IdsIn(kTakenRows));
}

} // namespace tsl::test
