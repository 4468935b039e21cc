// Which records the two range deletions remove: bounds, defaults, user and log kind.
#include "tests/deletion/DeletionFixture.h"

namespace tsl::test {

class DeletionRange : public DeletionTest {
protected:
    std::string LeftOfFour(IUnknown* container) {
        Prepare(kFourDays);
        EXPECT_EQ(S_OK, Delete(container));
        return Left();
    }
};

TEST_F(DeletionRange, OfIdsTakesBothBoundsIn) {
    EXPECT_EQ("1 4", LeftOfFour(IdRange(2).Ui4(kKeyLastRecordId, 3)));
    EXPECT_EQ("1 3 4", LeftOfFour(IdRange(2).Ui4(kKeyLastRecordId, 2)));
    EXPECT_EQ("1 2 3 4", LeftOfFour(IdRange(3).Ui4(kKeyLastRecordId, 2)));
}

TEST_F(DeletionRange, OfIdsWithAFirstIdAloneGoesUpToTheHighest) {
    Prepare({{1, 1, 1, 1}, {2, 1, 1, 1}, {0xFFFFFFFF, 1, 1, 1}, {0x100000000, 1, 1, 1}});
    EXPECT_EQ(S_OK, Delete(IdRange(2)));
    EXPECT_EQ("1 4294967296", Left());
}

TEST_F(DeletionRange, OfIdsWithALastIdAloneStartsAtOne) {
    Prepare({{0, 1, 1, 1}, {1, 1, 1, 1}, {2, 1, 1, 1}, {3, 1, 1, 1}});
    EXPECT_EQ(S_OK, Delete(ContainerBuilder().Ui4(kKeyLastRecordId, 2).Ui4(kKeyUserId, 1)));
    EXPECT_EQ("0 3", Left());
}

TEST_F(DeletionRange, OfIdsComparesThemUnsigned) {
    Prepare({{0x7FFFFFFF, 1, 1, 1}, {0x80000000, 1, 1, 1}, {0xFFFFFFFF, 1, 1, 1}});
    EXPECT_EQ(S_OK, Delete(IdRange(0x80000000)));
    EXPECT_EQ("2147483647", Left());
}

TEST_F(DeletionRange, OfIdsDoesNotLookAtTheTimes) {
    EXPECT_EQ("1", LeftOfFour(IdRange(2).Date(kKeyStartTime, 1).Date(kKeyEndTime, 2)));
}

TEST_F(DeletionRange, OfIdsTakesTheDefaultForABoundOfAnotherType) {
    EXPECT_EQ("", LeftOfFour(IdRange().Text(kKeyFirstRecordId, L"3").I4(kKeyLastRecordId, 2)));
    EXPECT_EQ("1", LeftOfFour(IdRange(2).Ui8(kKeyLastRecordId, 3)));
}

TEST_F(DeletionRange, OfIdsTakesTheDefaultForABoundThatCannotBeRead) {
    for (const HRESULT result : {HRESULT{E_FAIL}, HRESULT{S_FALSE}}) {
        ScriptedContainer first(IdRange(3).Ui4(kKeyLastRecordId, 3).Get());
        first.getResults[kKeyFirstRecordId] = result;
        EXPECT_EQ("4", LeftOfFour(&first));
        ScriptedContainer last(IdRange(3).Ui4(kKeyLastRecordId, 3).Get());
        last.getResults[kKeyLastRecordId] = result;
        EXPECT_EQ("1 2", LeftOfFour(&last));
    }
}

TEST_F(DeletionRange, OfTimesTakesBothBoundsIn) {
    EXPECT_EQ("1 4", LeftOfFour(TimeRange().Date(kKeyStartTime, 40002).Date(kKeyEndTime, 40003)));
    EXPECT_EQ("1 3 4",
              LeftOfFour(TimeRange().Date(kKeyStartTime, 40001.5).Date(kKeyEndTime, 40002.5)));
    EXPECT_EQ("1 2 3 4",
              LeftOfFour(TimeRange().Date(kKeyStartTime, 40002.1).Date(kKeyEndTime, 40002.9)));
}

TEST_F(DeletionRange, OfTimesWithAUserAloneTakesAllTimes) {
    Prepare({{1, 1, 1, 0.0},
             {2, 1, 1, 4294967295.0},
             {3, 1, 1, -0.5},
             {4, 1, 1, 4294967295.5},
             {5, 2, 1, 40000},
             {6, 1, 1, 40000}});
    EXPECT_EQ(S_OK, Delete(TimeRange()));
    EXPECT_EQ("3 4 5", Left());
}

TEST_F(DeletionRange, OfTimesWithOneBoundTakesTheDefaultForTheOther) {
    EXPECT_EQ("1 2", LeftOfFour(TimeRange().Date(kKeyStartTime, 40003)));
    EXPECT_EQ("4", LeftOfFour(TimeRange().Date(kKeyEndTime, 40003)));
}

TEST_F(DeletionRange, OfTimesTakesTheDefaultForABoundOfAnotherType) {
    EXPECT_EQ("4", LeftOfFour(TimeRange().Ui8(kKeyStartTime, 40003).Date(kKeyEndTime, 40003)));
    EXPECT_EQ("1 2", LeftOfFour(TimeRange().Date(kKeyStartTime, 40003).Ui4(kKeyEndTime, 40003)));
}

TEST_F(DeletionRange, OfTimesTakesTheDefaultForAStartThatCannotBeRead) {
    for (const HRESULT result : {HRESULT{E_FAIL}, HRESULT{S_FALSE}}) {
        ScriptedContainer container(
            TimeRange().Date(kKeyStartTime, 40003).Date(kKeyEndTime, 40003).Get());
        container.getResults[kKeyStartTime] = result;
        EXPECT_EQ("4", LeftOfFour(&container));
    }
}

TEST_F(DeletionRange, OfTimesTakesTheDefaultForAnAbsentEnd) {
    ScriptedContainer container(TimeRange().Date(kKeyEndTime, 40001).Get());
    container.getResults[kKeyEndTime] = S_FALSE;
    EXPECT_EQ("", LeftOfFour(&container));
}

TEST_F(DeletionRange, OfTimesWhoseEndCannotBeReadFails) {
    Prepare(kFourDays);
    ScriptedContainer container(TimeRange().Date(kKeyEndTime, 50000).Get());
    container.getResults[kKeyEndTime] = E_ACCESSDENIED;
    EXPECT_EQ(E_ACCESSDENIED, Delete(&container));
    EXPECT_EQ("1 2 3 4", Left());
}

TEST_F(DeletionRange, TouchesTheLogKindOfTheObjectOnly) {
    const auto leftOfKinds = [&](IUnknown* container) {
        Prepare({{1, 1, 1, 1}, {2, 1, 2, 1}, {3, 1, 4, 1}, {4, 1, 0, 1}, {5, 1, 0xFFFFFFFF, 1}});
        EXPECT_EQ(S_OK, Delete(container));
        return Left();
    };
    const struct {
        UINT32 kind;
        const char* left;
    } cases[] = {
        {1, "2 3 4 5"}, {2, "1 3 4 5"}, {4, "1 2 4 5"}, {0, "1 2 3 5"}, {0xFFFFFFFF, "1 2 3 4"}};
    for (const auto& each : cases) {
        SCOPED_TRACE(each.kind);
        SetLogKind(each.kind);
        EXPECT_EQ(each.left, leftOfKinds(IdRange()));
        EXPECT_EQ(each.left, leftOfKinds(TimeRange()));
    }
    SetLogKind(0);
}

TEST_F(DeletionRange, TouchesTheUserOfTheContainerOnly) {
    const auto leftOfUsers = [&](IUnknown* container) {
        Prepare({{1, 1, 1, 1}, {2, 7, 1, 1}, {3, 0xFFFFFFFF, 1, 1}, {4, 0, 1, 1}});
        EXPECT_EQ(S_OK, Delete(container));
        return Left();
    };
    const struct {
        UINT32 user;
        const char* left;
    } cases[] = {{1, "2 3 4"}, {7, "1 3 4"}, {0xFFFFFFFF, "1 2 4"}, {0, "1 2 3"}, {5, "1 2 3 4"}};
    for (const auto& each : cases) {
        SCOPED_TRACE(each.user);
        EXPECT_EQ(each.left, leftOfUsers(IdRange(1, each.user)));
        EXPECT_EQ(each.left, leftOfUsers(TimeRange(each.user)));
    }
}

TEST_F(DeletionRange, WithoutAMatchIsASuccess) {
    EXPECT_EQ("1 2 3 4", LeftOfFour(IdRange(100)));
    EXPECT_EQ("1 2 3 4", LeftOfFour(TimeRange().Date(kKeyStartTime, 50000)));
    EXPECT_EQ("1 2 3 4", LeftOfFour(OneRecord(100)));
}

} // namespace tsl::test
