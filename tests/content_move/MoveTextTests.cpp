// What a move is made of: two old texts, two new ones, and a number.
#include "tests/content_move/ContentMoveFixture.h"

namespace tsl::test {

class MoveTexts : public ContentMoveTest {
protected:
    // The move is refused before anything is created.
    void ExpectRefused() {
        EXPECT_EQ(E_INVALIDARG, Move());
        EXPECT_EQ(0, storeClass.creations);
        EXPECT_EQ(Calls{}, store.calls);
    }
};

TEST_F(MoveTexts, MustAllBeThere) {
    for (std::optional<std::wstring>* const text :
         {&oldTexts[0], &oldTexts[1], &newTexts[0], &newTexts[1]}) {
        const auto there = std::exchange(*text, std::nullopt);
        ExpectRefused();
        *text = there;
    }
}

TEST_F(MoveTexts, MayBeEmpty) {
    store.Hold(7, {Property(L"", L"", 1)});
    for (auto* const texts : {oldTexts, newTexts})
        texts[0] = texts[1] = L"";
    EXPECT_EQ(S_OK, Move());
    EXPECT_EQ((Calls{L"find ''", L"get 7", L"set 7 " + Written(L"", L"", 9)}), store.calls);
}

TEST_F(MoveTexts, AreWrittenAsTheyAre) {
    store.Hold(7, {Property(L"old one", L"old two", 1)});
    newTexts[0] = L"  \u00dcber%20Gr\u00f6\u00dfe \U0001F600 ";
    newTexts[1] = std::wstring(100000, L'x');
    EXPECT_EQ(S_OK, Move());
    EXPECT_EQ(L"set 7 " + Written(*newTexts[0], *newTexts[1], 9), store.calls.back());
}

TEST_F(MoveTexts, FindTheItemsByTheFirstOldText) {
    EXPECT_EQ(S_FALSE, Move(L"C:\\Some \u00dcbung\\Film.mp4", L"other"));
    EXPECT_EQ(Calls{L"find 'C:\\Some \u00dcbung\\Film.mp4'"}, store.calls);
}

class MoveNumber : public MoveTexts {};

TEST_F(MoveNumber, OfAnotherTypeIsRefused) {
    LONG referenced = 9;
    for (const VARTYPE type : {VT_EMPTY, VT_NULL, VT_I2, VT_UI4, VT_INT, VT_I8, VT_R8, VT_BOOL}) {
        number = CVariant::FromI4(9);
        number.Address()->vt = type;
        ExpectRefused();
    }
    number = CVariant::FromText(L"9");
    ExpectRefused();
    number = CVariant::FromI4(0);
    number.Address()->vt = VT_I4 | VT_BYREF;
    number.Address()->plVal = &referenced;
    ExpectRefused();
    number = MakeArray<LONG>(std::vector<LONG>{9});
    ExpectRefused();
}

TEST_F(MoveNumber, MayBeAny) {
    for (const INT32 value : {0, -1, INT32_MIN, INT32_MAX}) {
        store.items.clear();
        store.Hold(7, {Property(L"old one", L"old two", 1)});
        number = CVariant::FromI4(value);
        EXPECT_EQ(S_OK, Move());
        EXPECT_EQ(L"set 7 " + Written(L"new one", L"new two", value), store.calls.back());
    }
}

} // namespace tsl::test
