// Lists of ids, answered as the operations answer them.
#include "query/IdListAnswer.h"
#include "tests/query/QueryFixture.h"

namespace tsl::test {

class IdListAnswer : public QueryTest {};

TEST_F(IdListAnswer, OfAllIdsLeavesOutZero) {
    CVariant answer;
    const std::vector<UINT64> ids = {0, 5, 0, 0x100000000, 0};
    ASSERT_EQ(S_OK, AnswerAllIds(ids, answer.Address()));
    Ids found;
    for (const auto& container : Unpack(answer.Get()))
        found.push_back(ValueOf(*container, 0x0200001000000015).Get().ullVal);
    EXPECT_EQ((Ids{5, 0x100000000}), found);
}

TEST_F(IdListAnswer, OfIdsKeepsZeroAndDuplicates) {
    CVariant answer;
    const std::vector<UINT32> ids = {7, 0, 7};
    ASSERT_EQ(S_OK, AnswerIds(ids, answer.Address()));
    Ids found;
    for (const auto& container : Unpack(answer.Get()))
        found.push_back(ValueOf(*container, 0x0200002200000013).Get().ulVal);
    EXPECT_EQ((Ids{7, 0, 7}), found);
}

TEST_F(IdListAnswer, OfNoIdsIsAnInvalidArgumentAndLeavesTheResult) {
    CVariant answer = CVariant::FromUi4(42);
    EXPECT_EQ(E_INVALIDARG, AnswerIds({}, answer.Address()));
    EXPECT_EQ(E_INVALIDARG, AnswerAllIds({}, answer.Address()));
    EXPECT_EQ(VT_UI4, answer.Type());
    EXPECT_EQ(E_POINTER, AnswerIds({}, nullptr));
    EXPECT_EQ(E_POINTER, AnswerAllIds({}, nullptr));
    EXPECT_EQ(0, Containers().created);
}

} // namespace tsl::test
