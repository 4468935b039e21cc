// The id of the record to take, whatever the host puts into its VARIANT.
#include <gmock/gmock.h>

#include "tests/query/QueryFixture.h"
#include "tests/support/LockWaits.h"
#include "tests/support/MutexHolder.h"

namespace tsl::test {

namespace {

using ::testing::ElementsAre;

constexpr char kParameters[] = "'ullValues={1,2}'";

// A VARIANT of the type whose eight bytes of value are these.
CVariant Raw(VARTYPE type, UINT64 bytes) {
    CVariant value = CVariant::FromUi8(bytes);
    value.Address()->vt = type;
    return value;
}

} // namespace

class TakeArgument : public QueryTest {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(QueryTest::SetUp());
        StoreTaken({{.id = 0, .user = 1, .parameters = "'ullValues={100,0}'"},
                    {.id = 5, .user = 1, .parameters = "'ullValues={105,0}'"}});
    }
    // Nothing is answered and nothing is removed.
    void ExpectRefused(HRESULT expected, IUnknown* request) {
        ExpectNoAnswer(expected, kTake, request);
        EXPECT_EQ((Ids{0, 5}), IdsIn(kTakenRows));
    }
    // The 64-bit value of the record that the request finds; nothing is removed.
    UINT64 Found(CVariant id) {
        CVariant answer;
        EXPECT_EQ(S_OK,
                  Ask(kTake, ContainerBuilder().Set(kIdToTake, std::move(id)), answer.Address()));
        EXPECT_EQ((Ids{0, 5}), IdsIn(kTakenRows));
        const AnswerContainers records = Unpack(answer.Get());
        return records.size() == 1 ? ValueOf(*records[0], 0x0200001000000015).Get().ullVal : 0;
    }
};

TEST_F(TakeArgument, MissingIsNoAnswerAndNothingIsRemoved) {
    ExpectRefused(S_OK, ContainerBuilder().Ui4(kUser, 1));
}

TEST_F(TakeArgument, ThatCannotBeReadIsReportedAndNothingIsRemoved) {
    ScriptedContainer request(ContainerBuilder().Ui8(kIdToTake, 5).Ui4(kUser, 1).Get());
    request.getResults[kIdToTake] = E_ACCESSDENIED;
    ExpectRefused(E_ACCESSDENIED, &request);
    EXPECT_EQ(1u, request.References());
}

TEST_F(TakeArgument, OfATypeThatSharesNoBitIsNoAnswerAndNothingIsRemoved) {
    ExpectRefused(S_OK, ContainerBuilder().Text(kIdToTake, L"5").Ui4(kUser, 1));
    ExpectRefused(S_OK, ContainerBuilder().Set(kIdToTake, Raw(VT_I2, 5)).Ui4(kUser, 1));
    ExpectRefused(S_OK, ContainerBuilder().Set(kIdToTake, Raw(VT_ERROR, 5)).Ui4(kUser, 1));
}

TEST_F(TakeArgument, OfAnotherTypeFindsTheRecordByTheBytesOfThatType) {
    constexpr UINT64 kJunkAbove32 = 0xAAAAAAAA00000005;
    constexpr UINT64 kJunkAbove16 = 0xAAAAAAAAAAAA0005;
    constexpr UINT64 kJunkAbove8 = 0xAAAAAAAAAAAAAA05;
    EXPECT_EQ(105u, Found(Raw(VT_I4, kJunkAbove32)));
    EXPECT_EQ(105u, Found(Raw(VT_UI4, kJunkAbove32)));
    EXPECT_EQ(105u, Found(Raw(VT_INT, kJunkAbove32)));
    EXPECT_EQ(105u, Found(Raw(VT_UINT, kJunkAbove32)));
    EXPECT_EQ(105u, Found(Raw(VT_UI2, kJunkAbove16)));
    EXPECT_EQ(105u, Found(Raw(VT_BOOL, kJunkAbove16)));
    EXPECT_EQ(105u, Found(Raw(VT_UI1, kJunkAbove8)));
    EXPECT_EQ(105u, Found(Raw(VT_I1, kJunkAbove8)));
    EXPECT_EQ(105u, Found(Raw(VT_I8, 5)));
    EXPECT_EQ(105u, Found(Raw(VT_DATE, 5)));
    EXPECT_EQ(100u, Found(Raw(VT_NULL, 5))) << "a value without bytes is id 0";
}

TEST_F(TakeArgument, ThatIsAnArrayIsIdZero) {
    EXPECT_EQ(100u, Found(MakeArray<ULONGLONG>(std::vector<ULONGLONG>{5})));
    EXPECT_EQ(100u, Found(MakeArray<ULONGLONG>({})));
    EXPECT_EQ(100u, Found(MakeArray<LONG>(std::vector<LONG>{5})));
}

TEST_F(TakeArgument, ThatIsANullArrayIsIdZero) {
    EXPECT_EQ(100u, Found(Raw(VT_ARRAY | VT_UI8, 0)));
}

// An id of another type does not choose the removal by id: what else the container names goes.
TEST_F(TakeArgument, OfAnotherTypeLeavesTheRemovalToTheRangeThatTheContainerNames) {
    StoreTaken({{.id = 8, .user = 7, .parameters = kParameters},
                {.id = 9, .user = 7, .logKind = 2},
                {.id = 10, .user = 7, .time = 2000.0}});
    CVariant answer;
    ASSERT_EQ(S_OK, Ask(kTake,
                        ContainerBuilder()
                            .Set(kIdToTake, Raw(VT_UI4, 8))
                            .Ui4(kUser, 7)
                            .Date(0x0200001700000007, 1500.0),
                        answer.Address()));
    EXPECT_EQ(1u, Unpack(answer.Get()).size());
    EXPECT_EQ((Ids{0, 5, 9, 10}), IdsIn(kTakenRows));
    ASSERT_EQ(S_OK, Ask(kTake,
                        ContainerBuilder()
                            .Set(kIdToTake, Raw(VT_UI4, 10))
                            .Ui4(kUser, 7)
                            .Ui4(0x0200001800000013, 10),
                        answer.Address()));
    EXPECT_EQ(1u, Unpack(answer.Get()).size());
    EXPECT_EQ((Ids{0, 5, 9}), IdsIn(kTakenRows));
}

TEST_F(TakeArgument, OfTheRightTypeIsNotMixedWithRangesInTheContainer) {
    CVariant answer;
    ASSERT_EQ(S_OK, Ask(kTake,
                        ContainerBuilder()
                            .Ui8(kIdToTake, 5)
                            .Ui4(kUser, 1)
                            .Ui4(0x0200001800000013, 0)
                            .Ui4(0x0200001900000013, 9),
                        answer.Address()));
    EXPECT_EQ(1u, Unpack(answer.Get()).size());
    EXPECT_EQ((Ids{0}), IdsIn(kTakenRows));
}

TEST_F(TakeArgument, WithANullResultIsRefusedBeforeAnythingIsReadOrRemoved) {
    ScriptedContainer request(ContainerBuilder().Ui8(kIdToTake, 5).Get());
    EXPECT_EQ(E_POINTER, Ask(kTake, &request, nullptr));
    EXPECT_TRUE(request.keysRead.empty());
    EXPECT_EQ(1u, request.References());
    EXPECT_EQ((Ids{0, 5}), IdsIn(kTakenRows));
}

TEST_F(TakeArgument, RemovalWaitsForTheDatabaseLockAndGoesOnWithoutIt) {
    const MutexHolder holder(kSqliteAccessLock);
    const LockWaits waits(HeldLocks::AreGivenUpAtOnce, kComponentLibrary);
    CVariant answer;
    ASSERT_EQ(S_OK, Ask(kTake, ContainerBuilder().Ui8(kIdToTake, 5), answer.Address()));
    EXPECT_THAT(waits.TimeOuts(kSqliteAccessLock), ElementsAre(3000));
    EXPECT_EQ(1u, Unpack(answer.Get()).size());
    EXPECT_EQ((Ids{0}), IdsIn(kTakenRows));
}

} // namespace tsl::test
