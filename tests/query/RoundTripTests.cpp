// Random actions, ten thousand in the full form, recorded and fetched back by their ids, field by
// field.
#include <algorithm>
#include <map>

#include "tests/query/QueryFixture.h"
#include "tests/query/RandomAction.h"
#include "tests/support/FullForm.h"

namespace tsl::test {

namespace {

constexpr std::uint32_t kSeed = 20240607;
#ifdef _GLIBCXX_ASSERTIONS
const int kActions = 1'000; // the checked build takes several times as long for each
#else
const int kActions = InForm(2'000, 10'000);
#endif

CVariant IdArray(std::span<const UINT32> ids) {
    CVariant array = MakeFilledArray<LONG>(ids.size(), [&](std::span<LONG> made) {
        for (size_t index = 0; index < ids.size(); ++index)
            made[index] = static_cast<LONG>(ids[index]);
    });
    array.Address()->vt = VT_ARRAY | VT_UI4;
    return array;
}

} // namespace

class RoundTrip : public QueryTest {};

TEST_F(RoundTrip, GivesBackWhatWasHandedIn) {
    RandomActions random(kSeed);
    std::map<UINT32, RandomAction> actions;
    std::vector<UINT32> ids;
    UINT32 id = 0;
    for (int count = 0; count < kActions; ++count) {
        id += 1 + random.Below(400000);
        RandomAction action = random.Make(id);
        ASSERT_EQ(S_OK, Plugin().Notify(kCommandRecordAction, action.container));
        // The action's container is not kept: only what it held.
        action.container = ContainerBuilder();
        actions.emplace(id, std::move(action));
        ids.push_back(id);
    }
    ASSERT_EQ(kActions, CountRows(ActionLogPath(), kActionLogRows));

    for (size_t index = ids.size() - 1; index > 0; --index)
        std::swap(ids[index], ids[random.Below(static_cast<std::uint32_t>(index) + 1)]);
    std::span<const UINT32> left = ids;
    while (!left.empty()) {
        const size_t count = std::min<size_t>(left.size(), 1 + random.Below(1500));
        CVariant answer;
        ASSERT_EQ(S_OK, Ask(0x0400000901000000,
                            ContainerBuilder().Set(0x0200002300002013, IdArray(left.first(count))),
                            answer.Address()));
        const AnswerContainers records = Unpack(answer.Get());
        ASSERT_EQ(count, records.size());
        for (const auto& record : records) {
            const UINT32 recordId = ValueOf(*record, 0x0200002200000013).Get().ulVal;
            SCOPED_TRACE(recordId);
            const auto found = actions.find(recordId);
            ASSERT_NE(actions.end(), found) << "unknown, or handed out twice";
            const RandomAction& action = found->second;
            ASSERT_EQ(action.user, ValueOf(*record, 0x0200002100000013).Get().ulVal);
            ASSERT_EQ(action.app, ValueOf(*record, 0x0200002000000003).Get().lVal);
            ASSERT_EQ(action.time, ValueOf(*record, 0x0200002400000007).Get().date);
            ASSERT_EQ(action.name, TextOf(*record, 0x0200002500000008));
            ASSERT_EQ(action.parameters, TextOf(*record, 0x0200002600000008));
            ASSERT_EQ(VARIANT_TRUE, ValueOf(*record, 0x050020000000000b).Get().boolVal);
            actions.erase(found);
        }
        left = left.subspan(count);
    }
    EXPECT_TRUE(actions.empty());
}

} // namespace tsl::test
