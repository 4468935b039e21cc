// What a move makes of the properties of each item: those that match are replaced, the others and
// the order of all stay, and every item found is written back.
#include "tests/content_move/ContentMoveFixture.h"

namespace tsl::test {

class Rewrite : public ContentMoveTest {
protected:
    // What one property becomes.
    void ExpectBecomes(const std::wstring& written, IUnknown* property) {
        store.calls.clear();
        store.items.clear();
        store.Hold(7, {property});
        EXPECT_EQ(S_OK, Move());
        EXPECT_EQ((Calls{L"find 'old one'", L"get 7", L"set 7 " + written}), store.calls);
    }
};

TEST_F(Rewrite, ReplacesAllThreeValuesOfAMatch) {
    ExpectBecomes(kMoved, Property(L"old one", L"old two", 1));
    ExpectBecomes(kMoved, Property(L"OLD One", L"oLD TWO", 1));
}

TEST_F(Rewrite, GivesAMatchTheValuesThatItLacked) {
    ExpectBecomes(kMoved, ContainerBuilder().Text(kFirstText, L"old one").I4(kNumber, 1));
    ExpectBecomes(kMoved,
                  ContainerBuilder().Text(kFirstText, L"old one").Text(kSecondText, L"old two"));
    ExpectBecomes(kMoved, ContainerBuilder().Text(kFirstText, L"old one"));
}

TEST_F(Rewrite, ReplacesANumberOfAnotherType) {
    ExpectBecomes(kMoved, ContainerBuilder()
                              .Text(kFirstText, L"old one")
                              .Text(kSecondText, L"old two")
                              .Text(kNumber, L"1"));
}

TEST_F(Rewrite, MatchesInTheLettersOfAnyAlphabet) {
    oldTexts[0] = L"\u00dcBUNG";
    store.Hold(7, {Property(L"\u00fcbung", L"old two", 1), Property(L"ubung", L"old two", 2)});
    EXPECT_EQ(S_OK, Move());
    EXPECT_EQ(L"set 7 " + kMoved + Written(L"ubung", L"old two", 2), store.calls.back());
}

TEST_F(Rewrite, LeavesOthersAsTheyAre) {
    ExpectBecomes(Written(L"Old One", L"other", 1), Property(L"Old One", L"other", 1));
    ExpectBecomes(Written(L"other", L"Old Two", -7), Property(L"other", L"Old Two", -7));
    ExpectBecomes(Written(L"old one", L"", 1), Property(L"old one", L"", 1));
    ExpectBecomes(Written(L"", L"", 0), Property(L"", L"", 0));
    ExpectBecomes(Written(L"new one", L"new two", 1), Property(L"new one", L"new two", 1));
}

TEST_F(Rewrite, LeavesAbsentValuesOfOthersAbsent) {
    ExpectBecomes(WrittenValues(L"'other'", L"", L"1"),
                  ContainerBuilder().Text(kFirstText, L"other").I4(kNumber, 1));
    ExpectBecomes(WrittenValues(L"", L"'old two'", L"1"),
                  ContainerBuilder().Text(kSecondText, L"old two").I4(kNumber, 1));
    ExpectBecomes(WrittenValues(L"'other'", L"'old two'", L""),
                  ContainerBuilder().Text(kFirstText, L"other").Text(kSecondText, L"old two"));
    ExpectBecomes(WrittenValues(L"", L"", L""), ContainerBuilder());
}

TEST_F(Rewrite, LeavesValuesOfOtherTypesAsTheyAre) {
    ExpectBecomes(
        WrittenValues(L"'old one'", L"5", L"(type 19)"),
        ContainerBuilder().Text(kFirstText, L"old one").I4(kSecondText, 5).Ui4(kNumber, 1));
    ExpectBecomes(
        WrittenValues(L"5", L"'old two'", L"'1'"),
        ContainerBuilder().I4(kFirstText, 5).Text(kSecondText, L"old two").Text(kNumber, L"1"));
}

TEST_F(Rewrite, KeepsLongTextsWhole) {
    const std::wstring longText(50000, L'\u00e9');
    ExpectBecomes(Written(longText, longText, 1), Property(longText, longText, 1));
}

TEST_F(Rewrite, WritesNothingButTheThreeValues) {
    ContainerBuilder property = Property(L"old one", L"old two", 1);
    property.Text(kKeyActionName, L"more").Ui4(kKeyUserId, 3);
    property.Get()->SetCommandCode(0x1234);
    ExpectBecomes(kMoved, property);
    ContainerBuilder other = Property(L"other", L"old two", 1);
    other.Text(kKeyActionName, L"more");
    other.Get()->SetCommandCode(0x1234);
    ExpectBecomes(Written(L"other", L"old two", 1), other);
}

TEST_F(Rewrite, WritesNewContainersAndLeavesTheOldOnes) {
    const ContainerBuilder matching = Property(L"old one", L"old two", 1);
    const ContainerBuilder other = Property(L"other", L"old two", 2);
    store.Hold(7, {matching, other});
    EXPECT_EQ(S_OK, Move());
    EXPECT_EQ(2, containers.created);
    EXPECT_EQ(2, containers.live) << "only the store has them";
    EXPECT_EQ((std::vector<UINT64>{0, kFirstText, kSecondText, kNumber, //
                                   0, kFirstText, kSecondText, kNumber}),
              containers.calls)
        << "the command code comes first";
    CVariant oldNumber;
    EXPECT_EQ(S_OK, matching.Get()->GetValue(kNumber, oldNumber.Address()));
    EXPECT_EQ(1, oldNumber.Get().lVal);
}

TEST_F(Rewrite, KeepsTheOrderOfProperties) {
    store.Hold(7, {Property(L"c", L"1", 3), Property(L"old one", L"old two", 2),
                   Property(L"a", L"3", 1), Property(L"b", L"2", 2),
                   Property(L"old one", L"OLD TWO", 3), Property(L"a", L"3", 1)});
    EXPECT_EQ(S_OK, Move());
    EXPECT_EQ(L"set 7 " + Written(L"c", L"1", 3) + kMoved + Written(L"a", L"3", 1) +
                  Written(L"b", L"2", 2) + kMoved + Written(L"a", L"3", 1),
              store.calls.back());
}

TEST_F(Rewrite, WritesEveryItemThatWasFound) {
    store.Hold(30, {Property(L"x", L"y", 1)});
    store.Hold(10, {Property(L"old one", L"old two", 1)});
    store.Hold(20, {Property(L"old one", L"z", 2), Property(L"old one", L"old two", 3)});
    EXPECT_EQ(S_OK, Move());
    EXPECT_EQ(
        (Calls{L"find 'old one'", L"get 30", L"set 30 " + Written(L"x", L"y", 1), L"get 10",
               L"set 10 " + kMoved, L"get 20", L"set 20 " + Written(L"old one", L"z", 2) + kMoved}),
        store.calls);
}

TEST_F(Rewrite, MovesThereAndBack) {
    const std::wstring before = Written(L"old one", L"old two", 1);
    store.Hold(7, {Property(L"old one", L"old two", 1), Property(L"x", L"y", 2)});
    ASSERT_EQ(S_OK, Move());
    std::swap(oldTexts, newTexts);
    number = CVariant::FromI4(1);
    ASSERT_EQ(S_OK, Move());
    EXPECT_EQ(L"set 7 " + before + Written(L"x", L"y", 2), store.calls.back());
    EXPECT_EQ(1, storeClass.creations);
}

TEST_F(Rewrite, MovesManyItemsWithManyProperties) {
    for (UINT64 id = 1; id <= 500; ++id) {
        store.items.push_back({.id = id, .properties = {}});
        for (INT32 index = 0; index < 20; ++index) {
            const ContainerBuilder property =
                Property(index % 2 ? L"old one" : L"other", L"old two", index);
            store.items.back().properties.push_back(QueryFor<IUnknown>(property, IID_IUnknown));
        }
    }
    EXPECT_EQ(S_OK, Move());
    ASSERT_EQ(1u + 2 * 500, store.calls.size());
    std::wstring expected;
    for (INT32 index = 0; index < 20; ++index)
        expected += index % 2 ? kMoved : Written(L"other", L"old two", index);
    for (size_t item = 0; item < 500; ++item)
        EXPECT_EQ(L"set " + std::to_wstring(item + 1) + L" " + expected, store.calls[2 + 2 * item]);
    EXPECT_EQ(500 * 20, containers.live);
}

} // namespace tsl::test
