// Reading a move from its action: two lists of texts, and a number.
#include "store/ActionLogStore.h"
#include "tests/content_move/ContentMoveFixture.h"
#include "tests/support/RawContainer.h"

namespace tsl::test {

namespace {

constexpr UINT64 kOldTexts = 0x0200003400002008;
constexpr UINT64 kNewTexts = 0x0200005100002008;
constexpr UINT64 kMoveNumber = 0x0200004200000003;

RawContainer::Maker Gives(HRESULT result, std::vector<std::wstring> texts) {
    return [=](VARIANT& value) {
        MakeTextArray(texts).MoveTo(&value);
        return result;
    };
}

} // namespace

class MoveAction : public ContentMoveTest {
protected:
    void SetUp() override {
        action.Texts(kOldTexts, {L"old one", L"old two"})
            .Texts(kNewTexts, {L"new one", L"new two"})
            .I4(kMoveNumber, 9);
        store.Hold(7, {Property(L"old one", L"old two", 1)});
    }
    HRESULT MoveAs(ITslParamContainer& container) {
        CHostContentStore kept;
        return MoveContent(kept, container);
    }
    HRESULT MoveAsAction() { return MoveAs(*action.Get()); }

    void ExpectRefused(ITslParamContainer& container) {
        EXPECT_EQ(E_INVALIDARG, MoveAs(container));
        EXPECT_EQ(0, storeClass.creations);
        EXPECT_EQ(Calls{}, store.calls);
    }
    // The list is refused under each of the two keys.
    void ExpectListRefused(const RawContainer::Maker& list) {
        for (const UINT64 key : {kOldTexts, kNewTexts})
            ExpectRefused(RawContainer(action.Get()).Make(key, list));
    }

    ContainerBuilder action;
};

TEST_F(MoveAction, IsCarriedOut) {
    EXPECT_EQ(S_OK, MoveAsAction());
    EXPECT_EQ((Calls{L"find 'old one'", L"get 7", L"set 7 " + kMoved}), store.calls);
}

TEST_F(MoveAction, MayHaveMoreTextsThanTwo) {
    action.Texts(kOldTexts, {L"old one", L"old two", L"x", L""});
    action.Texts(kNewTexts, {L"new one", L"new two", L"y"});
    EXPECT_EQ(S_OK, MoveAsAction());
    EXPECT_EQ((Calls{L"find 'old one'", L"get 7", L"set 7 " + kMoved}), store.calls);
}

TEST_F(MoveAction, DoesNotLookAtANullThirdText) {
    for (const UINT64 key : {kOldTexts, kNewTexts}) {
        CVariant texts = MakeFilledArray<BSTR>(3, [](std::span<BSTR> made) {
            made[0] = AllocateBstr(L"one");
            made[1] = AllocateBstr(L"two");
        });
        action.Set(key, std::move(texts));
    }
    EXPECT_EQ(S_OK, MoveAsAction());
    EXPECT_EQ(L"find 'one'", store.calls.at(0));
}

TEST_F(MoveAction, NeedsTwoTextsOfEach) {
    ExpectListRefused(Gives(S_OK, {}));
    ExpectListRefused(Gives(S_OK, {L"alone"}));
}

TEST_F(MoveAction, RefusesNullTexts) {
    for (const size_t missing : {0, 1}) {
        ExpectListRefused([=](VARIANT& value) {
            MakeFilledArray<BSTR>(2, [=](std::span<BSTR> made) {
                made[1 - missing] = AllocateBstr(L"there");
            }).MoveTo(&value);
            return S_OK;
        });
    }
}

TEST_F(MoveAction, NeedsBothLists) {
    for (const HRESULT absent : {S_FALSE, E_FAIL})
        ExpectListRefused([=](VARIANT&) { return absent; });
    ExpectListRefused([](VARIANT&) { return S_OK; });
}

TEST_F(MoveAction, TakesOnlySOkForAList) {
    for (const HRESULT result : {S_FALSE, E_FAIL})
        ExpectListRefused(Gives(result, {L"one", L"two"}));
}

TEST_F(MoveAction, RefusesListsOfOtherTypes) {
    ExpectListRefused([](VARIANT& value) {
        CVariant::FromText(L"text").MoveTo(&value);
        return S_OK;
    });
    ExpectListRefused([](VARIANT& value) {
        MakeArray<ULONGLONG>(std::vector<ULONGLONG>{1, 2}).MoveTo(&value);
        return S_OK;
    });
    ExpectListRefused([](VARIANT& value) {
        value.vt = VT_ARRAY | VT_VARIANT;
        value.parray = SafeArrayCreateVector(VT_VARIANT, 0, 2);
        return S_OK;
    });
}

TEST_F(MoveAction, RefusesAReferenceToAList) {
    CVariant texts = MakeTextArray(std::vector<std::wstring>{L"one", L"two"});
    ExpectListRefused([&](VARIANT& value) {
        value.vt = VT_ARRAY | VT_BSTR | VT_BYREF;
        value.pparray = &texts.Address()->parray;
        return S_OK;
    });
}

TEST_F(MoveAction, RefusesListsThatAreNoneOfTexts) {
    ExpectListRefused([](VARIANT& value) {
        value.vt = VT_ARRAY | VT_BSTR;
        value.parray = nullptr;
        return S_OK;
    });
    ExpectListRefused([](VARIANT& value) {
        MakeArray<ULONGLONG>(std::vector<ULONGLONG>{1, 2}).MoveTo(&value);
        value.vt = VT_ARRAY | VT_BSTR;
        return S_OK;
    });
    ExpectListRefused([](VARIANT& value) {
        SAFEARRAYBOUND bounds[] = {{2, 0}, {2, 0}};
        value.vt = VT_ARRAY | VT_BSTR;
        value.parray = SafeArrayCreate(VT_BSTR, 2, bounds);
        return S_OK;
    });
}

TEST_F(MoveAction, NeedsItsNumber) {
    const auto gives = [](HRESULT result) {
        return [=](VARIANT& value) {
            CVariant::FromI4(9).MoveTo(&value);
            return result;
        };
    };
    ExpectRefused(RawContainer(action.Get()).Make(kMoveNumber, gives(S_FALSE)));
    ExpectRefused(RawContainer(action.Get()).Make(kMoveNumber, gives(E_FAIL)));
    ExpectRefused(RawContainer(action.Get()).Make(kMoveNumber, [](VARIANT& value) {
        CVariant::FromUi4(9).MoveTo(&value);
        return S_OK;
    }));
}

TEST_F(MoveAction, GivesTheFailureOfTheMove) {
    store.results[1] = E_ACCESSDENIED;
    EXPECT_EQ(E_ACCESSDENIED, MoveAsAction());
}

} // namespace tsl::test
