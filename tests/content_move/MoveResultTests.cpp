// A step that fails ends the work on its item, not that on the next; the last step tells the
// result.
#include "tests/content_move/ContentMoveFixture.h"
#include "tests/support/Failures.h"

namespace tsl::test {

namespace {

// Success codes that are not S_OK.
constexpr HRESULT kOtherSuccess = 0x00041500;

} // namespace

// Three items with a match each; the calls are 1 find, 2 get 7, 3 set 7, 4 get 8, 5 set 8, 6 get 9,
// 7 set 9.
class MoveResult : public ContentMoveTest {
protected:
    void SetUp() override {
        for (const UINT64 id : {7, 8, 9})
            store.Hold(id, {Property(L"old one", L"old two", 1)});
    }
    HRESULT MoveWith(std::map<size_t, HRESULT> results) {
        store.results = std::move(results);
        return Move();
    }
    static Calls AllCalls() {
        return {L"find 'old one'",  L"get 7", L"set 7 " + kMoved, L"get 8",
                L"set 8 " + kMoved, L"get 9", L"set 9 " + kMoved};
    }
};

TEST_F(MoveResult, IsSuccessWhenNothingFails) {
    EXPECT_EQ(S_OK, Move());
    EXPECT_EQ(AllCalls(), store.calls);
}

TEST_F(MoveResult, IsTheFailureToFindItems) {
    EXPECT_EQ(kRefused, MoveWith({{1, kRefused}}));
    EXPECT_EQ(Calls{L"find 'old one'"}, store.calls);
}

TEST_F(MoveResult, ForgetsAFailureToWrite) {
    EXPECT_EQ(S_OK, MoveWith({{3, kRefused}, {5, E_FAIL}}));
    EXPECT_EQ(AllCalls(), store.calls);
}

TEST_F(MoveResult, ForgetsAFailureToRead) {
    EXPECT_EQ(S_OK, MoveWith({{2, kRefused}, {3, E_FAIL}}));
    EXPECT_EQ((Calls{L"find 'old one'", L"get 7", L"get 8", L"get 9", L"set 9 " + kMoved}),
              store.calls);
}

TEST_F(MoveResult, IsTheFailureToWriteTheLastItem) {
    EXPECT_EQ(kRefused, MoveWith({{3, E_FAIL}, {7, kRefused}}));
    EXPECT_EQ(AllCalls(), store.calls);
}

TEST_F(MoveResult, IsTheFailureToReadTheLastItem) {
    EXPECT_EQ(kRefused, MoveWith({{6, kRefused}}));
    EXPECT_EQ(6u, store.calls.size());
}

TEST_F(MoveResult, IsTheSuccessOfTheLastStepAsItCame) {
    EXPECT_EQ(kOtherSuccess, MoveWith({{7, kOtherSuccess}}));
    EXPECT_EQ(AllCalls(), store.calls);
}

TEST_F(MoveResult, GoesOnAfterAnySuccess) {
    EXPECT_EQ(S_OK, MoveWith({{1, S_FALSE}, {2, kOtherSuccess}, {3, S_FALSE}}));
    EXPECT_EQ(AllCalls(), store.calls);
}

TEST_F(MoveResult, IsNoFailureForALastItemWithoutProperties) {
    store.Hold(10, {});
    const HRESULT result = Move();
    EXPECT_TRUE(SUCCEEDED(result)) << std::hex << result;
    EXPECT_EQ(L"get 10", store.calls.back());
}

TEST_F(MoveResult, IsTheSameWithTheNextMove) {
    EXPECT_EQ(kRefused, MoveWith({{7, kRefused}}));
    store.calls.clear();
    EXPECT_EQ(S_OK, MoveWith({}));
    EXPECT_EQ(L"set 9 " + kMoved, store.calls.back());
}

} // namespace tsl::test
