// What the content store answers when it is asked for the items of a text.
#include "tests/content_move/ContentMoveFixture.h"

namespace tsl::test {

class FoundItems : public ContentMoveTest {
protected:
    // The store finds just one answer, and nothing more is asked of it.
    void ExpectNone(HRESULT expected, ContentStoreDouble::Answer answer) {
        store.calls.clear();
        store.foundItems = std::move(answer);
        EXPECT_EQ(expected, Move());
        EXPECT_EQ(Calls{L"find 'old one'"}, store.calls);
    }
    void ExpectNoIds(ContentStoreDouble::Answer answer) { ExpectNone(S_FALSE, std::move(answer)); }

    static ContentStoreDouble::Answer Gives(HRESULT result, std::vector<ULONGLONG> ids) {
        return [=](VARIANT& answer) {
            MakeArray<ULONGLONG>(ids).MoveTo(&answer);
            return result;
        };
    }
};

TEST_F(FoundItems, ThatAreNoneMakeItFalse) {
    ExpectNoIds(Gives(S_OK, {}));
}

TEST_F(FoundItems, ThatAreNoAnswerMakeItFalse) {
    ExpectNoIds([](VARIANT&) { return S_OK; });
}

TEST_F(FoundItems, OfANullArrayAreNone) {
    ExpectNoIds([](VARIANT& answer) {
        answer.vt = VT_ARRAY | VT_UI8;
        answer.parray = nullptr;
        return S_OK;
    });
}

TEST_F(FoundItems, OfAnotherTypeAreNone) {
    ExpectNoIds([](VARIANT& answer) {
        CVariant::FromUi8(7).MoveTo(&answer);
        return S_OK;
    });
    ExpectNoIds([](VARIANT& answer) {
        MakeTextArray(std::vector<std::wstring>{L"7"}).MoveTo(&answer);
        return S_OK;
    });
    ExpectNoIds([](VARIANT& answer) {
        MakeArray<ULONGLONG>(std::vector<ULONGLONG>{7}).MoveTo(&answer);
        answer.vt = VT_ARRAY | VT_I8;
        return S_OK;
    });
}

TEST_F(FoundItems, ThatAreAReferenceAreNone) {
    CVariant ids = MakeArray<ULONGLONG>(std::vector<ULONGLONG>{7});
    ExpectNoIds([&](VARIANT& answer) {
        answer.vt = VT_ARRAY | VT_UI8 | VT_BYREF;
        answer.pparray = &ids.Address()->parray;
        return S_OK;
    });
}

TEST_F(FoundItems, InAnArrayThatIsNoneOfIdsAreNone) {
    ExpectNoIds([](VARIANT& answer) {
        MakeArray<LONG>(std::vector<LONG>{7, 8}).MoveTo(&answer);
        answer.vt = VT_ARRAY | VT_UI8;
        return S_OK;
    });
    ExpectNoIds([](VARIANT& answer) {
        MakeTextArray(std::vector<std::wstring>{L"7"}).MoveTo(&answer);
        answer.vt = VT_ARRAY | VT_UI8;
        return S_OK;
    });
    ExpectNoIds([](VARIANT& answer) {
        SAFEARRAYBOUND bounds[] = {{2, 0}, {2, 0}};
        answer.vt = VT_ARRAY | VT_UI8;
        answer.parray = SafeArrayCreate(VT_UI8, 2, bounds);
        return S_OK;
    });
}

TEST_F(FoundItems, CannotBeAskedFor) {
    ExpectNone(E_ACCESSDENIED, [](VARIANT&) { return E_ACCESSDENIED; });
    ExpectNone(E_ACCESSDENIED, Gives(E_ACCESSDENIED, {7}));
}

TEST_F(FoundItems, AreClearedWhateverTheyAre) {
    ScriptedContainer held(CTslParamContainer::Create());
    for (const HRESULT result : {S_OK, E_FAIL}) {
        store.foundItems = [&](VARIANT& answer) {
            held.AddRef();
            CVariant::FromOwnedUnknown(&held).MoveTo(&answer);
            return result;
        };
        Move();
        EXPECT_EQ(1u, held.References());
    }
}

TEST_F(FoundItems, AreReadWithAnySuccess) {
    store.Hold(7, {Property(L"old one", L"old two", 1)});
    store.foundItems = Gives(S_FALSE, {7});
    EXPECT_EQ(S_OK, Move());
    EXPECT_EQ(3u, store.calls.size());
}

TEST_F(FoundItems, AreTakenInOrderAndAsOftenAsTheyComeUp) {
    for (const UINT64 id : {0, 5, 9})
        store.Hold(id, {Property(L"old one", L"old two", 1)});
    store.Hold(~UINT64{0}, {Property(L"old one", L"x", 1)});
    store.foundItems = Gives(S_OK, {9, ~UINT64{0}, 0, 9});
    EXPECT_EQ(S_OK, Move());
    const std::wstring largest = L"18446744073709551615";
    EXPECT_EQ((Calls{L"find 'old one'", L"get 9", L"set 9 " + kMoved, L"get " + largest,
                     L"set " + largest + L" " + Written(L"old one", L"x", 1), L"get 0",
                     L"set 0 " + kMoved, L"get 9", L"set 9 " + kMoved}),
              store.calls);
}

TEST_F(FoundItems, MayBeCountedFromAnyBound) {
    store.Hold(7, {Property(L"old one", L"old two", 1)});
    store.foundItems = [](VARIANT& answer) {
        answer.vt = VT_ARRAY | VT_UI8;
        answer.parray = SafeArrayCreateVector(VT_UI8, /*lowerBound=*/-3, 1);
        LONG index = -3;
        UINT64 id = 7;
        return SafeArrayPutElement(answer.parray, &index, &id);
    };
    EXPECT_EQ(S_OK, Move());
    EXPECT_EQ(L"set 7 " + kMoved, store.calls.back());
}

} // namespace tsl::test
