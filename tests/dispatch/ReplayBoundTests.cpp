// How large the replay log of one user grows over thousands of actions.
#include <algorithm>
#include <iostream>

#include "tests/dispatch/DispatchFixture.h"

namespace tsl::test {

namespace {

constexpr UINT32 kActions = 5000;

// Ids 1 to 1000 fill the log without a trim, as the thousandth finds only 999 records; the 99 after
// it find no hundredth id.
constexpr int kHighest = 1099;

// Rows as they must be after each action: at a hundredth id, a thousand of them give way.
class Model {
public:
    int RowsAfter(UINT32 id) {
        if (id % 100 == 0 && m_rows >= 1000) m_rows = 0;
        return ++m_rows;
    }

private:
    int m_rows = 0;
};

// Each action around a hundredth id, and some between.
bool IsLookedAt(UINT32 id) {
    const UINT32 rest = id % 100;
    return rest <= 2 || rest >= 98 || rest % 25 == 0;
}

} // namespace

class ReplayBound : public DispatchTest {};

TEST_F(ReplayBound, HoldsOverFiveThousandActionsOfOneUser) {
    Model model;
    int highest = 0;
    int looks = 0;
    for (UINT32 id = 1; id <= kActions; ++id) {
        // The action log does without it under log kind 1.
        ASSERT_EQ(S_OK, Report(Action(id, L"showExternalLink")));
        const int expected = model.RowsAfter(id);
        if (!IsLookedAt(id)) continue;
        const int rows = CountRowsOf(kReplayRows);
        ASSERT_EQ(expected, rows) << "after action " << id;
        highest = std::max(highest, rows);
        ++looks;
    }
    EXPECT_EQ(kHighest, highest);
    EXPECT_EQ(901, CountRowsOf(kReplayRows)) << "since the trim at 4100";
    EXPECT_EQ("", IdsIn(kActionLogRows));
    RecordProperty("HighestNumberOfReplayRows", highest);
    std::cout << "highest number of replay rows: " << highest << " (" << looks << " looks)\n";
}

} // namespace tsl::test
