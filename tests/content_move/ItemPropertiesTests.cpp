// What the content store answers when it is asked for the properties of an item. What cannot be
// used is passed over.
#include "tests/content_move/ContentMoveFixture.h"
#include "tests/support/RawContainer.h"

namespace tsl::test {

namespace {

// Anything but a container; the query for one fails and leaves a pointer behind that is none.
class NoContainer final : public IUnknown {
public:
    ULONG references = 1;
    void* leftBehind = nullptr;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** result) override {
        *result = leftBehind;
        if (iid != IID_IUnknown) return E_NOINTERFACE;
        AddRef();
        *result = this;
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++references; }
    ULONG STDMETHODCALLTYPE Release() override { return --references; }
};

} // namespace

// Item 7 answers as the test says; item 8 is an ordinary one.
class ItemProperties : public ContentMoveTest {
protected:
    void MoveBoth() {
        store.calls.clear();
        store.items.clear();
        store.Hold(7, {Property(L"old one", L"old two", 1)});
        store.Hold(8, {Property(L"old one", L"old two", 1)});
        EXPECT_EQ(S_OK, Move());
    }
    void ExpectPassedOver(ContentStoreDouble::Answer answer) {
        store.itemProperties[7] = std::move(answer);
        MoveBoth();
        EXPECT_EQ((Calls{L"find 'old one'", L"get 7", L"get 8", L"set 8 " + kMoved}), store.calls);
    }
    // Item 7 holds just these; what is written of it.
    void ExpectWritten(const std::wstring& written, std::initializer_list<IUnknown*> properties) {
        store.items.clear();
        store.Hold(7, properties);
        EXPECT_EQ(S_OK, Move());
        EXPECT_EQ((Calls{L"find 'old one'", L"get 7", L"set 7 " + written}), store.calls);
        store.items.clear();
    }
};

TEST_F(ItemProperties, ThatCannotBeReadLeaveTheOtherItems) {
    ExpectPassedOver([](VARIANT&) { return E_ACCESSDENIED; });
}

TEST_F(ItemProperties, ThatAreNoAnswerLeaveTheOtherItems) {
    ExpectPassedOver([](VARIANT&) { return S_OK; });
}

TEST_F(ItemProperties, OfAnotherTypeLeaveTheOtherItems) {
    ScriptedContainer property(Property(L"old one", L"old two", 1).Get());
    ExpectPassedOver([&](VARIANT& answer) {
        property.AddRef();
        CVariant::FromOwnedUnknown(&property).MoveTo(&answer);
        return S_OK;
    });
    EXPECT_EQ(1u, property.References());
    ExpectPassedOver([](VARIANT& answer) {
        answer.vt = VT_ARRAY | VT_VARIANT;
        answer.parray = SafeArrayCreateVector(VT_VARIANT, 0, 2);
        return S_OK;
    });
}

TEST_F(ItemProperties, InAnArrayThatIsNoneOfObjectsLeaveTheOtherItems) {
    ExpectPassedOver([](VARIANT& answer) {
        MakeArray<ULONGLONG>(std::vector<ULONGLONG>{0x1234, 0x5678}).MoveTo(&answer);
        answer.vt = VT_ARRAY | VT_UNKNOWN;
        return S_OK;
    });
    ExpectPassedOver([](VARIANT& answer) {
        MakeTextArray(std::vector<std::wstring>{L"old one"}).MoveTo(&answer);
        answer.vt = VT_ARRAY | VT_UNKNOWN;
        return S_OK;
    });
}

TEST_F(ItemProperties, OfANullArrayAreNotWritten) {
    ExpectPassedOver([](VARIANT& answer) {
        answer.vt = VT_ARRAY | VT_UNKNOWN;
        answer.parray = nullptr;
        return S_OK;
    });
}

TEST_F(ItemProperties, ThatAreNoneAreNotWritten) {
    ExpectPassedOver([](VARIANT& answer) {
        answer.vt = VT_ARRAY | VT_UNKNOWN;
        answer.parray = SafeArrayCreateVector(VT_UNKNOWN, 0, 0);
        return S_OK;
    });
}

TEST_F(ItemProperties, OfWhichNoneIsAContainerAreNotWritten) {
    NoContainer other;
    ExpectPassedOver([&](VARIANT& answer) {
        MakeFilledArray<IUnknown*>(2, [&](std::span<IUnknown*> made) {
            other.AddRef();
            made[1] = &other;
        }).MoveTo(&answer);
        return S_OK;
    });
    EXPECT_EQ(1u, other.references);
}

TEST_F(ItemProperties, LeftByAFailureAreGivenBack) {
    ScriptedContainer property(Property(L"old one", L"old two", 1).Get());
    store.itemProperties[7] = [&](VARIANT& answer) {
        MakeFilledArray<IUnknown*>(1, [&](std::span<IUnknown*> made) {
            property.AddRef();
            made[0] = &property;
        }).MoveTo(&answer);
        return E_FAIL;
    };
    MoveBoth();
    EXPECT_EQ(1u, property.References());
    EXPECT_EQ(L"set 8 " + kMoved, store.calls.back());
}

TEST_F(ItemProperties, ThatAreNullAreSkipped) {
    ExpectWritten(Written(L"a", L"b", 1) + kMoved,
                  {nullptr, Property(L"a", L"b", 1), nullptr, nullptr,
                   Property(L"old one", L"old two", 2), nullptr});
}

TEST_F(ItemProperties, ThatAreNoContainersAreSkipped) {
    NoContainer first;
    NoContainer second;
    second.leftBehind = reinterpret_cast<void*>(1);
    ExpectWritten(Written(L"a", L"b", 1) + kMoved,
                  {&first, Property(L"a", L"b", 1), &second, Property(L"old one", L"old two", 2)});
    EXPECT_EQ(1u, first.references);
    EXPECT_EQ(1u, second.references);
}

TEST_F(ItemProperties, AreAskedForTheirThreeValues) {
    ScriptedContainer property(Property(L"old one", L"old two", 1).Get());
    ExpectWritten(kMoved, {&property});
    EXPECT_EQ((std::vector<UINT64>{kFirstText, kSecondText, kNumber}), property.keysRead);
    EXPECT_EQ(1u, property.References());
}

TEST_F(ItemProperties, ThatCannotBeAskedAreAbsent) {
    for (const HRESULT absent : {S_FALSE, E_FAIL}) {
        store.calls.clear();
        ScriptedContainer property(Property(L"a", L"b", 1).Get());
        property.getResults = {{kFirstText, absent}, {kSecondText, absent}, {kNumber, absent}};
        ExpectWritten(WrittenValues(L"", L"", L""), {&property});
    }
}

TEST_F(ItemProperties, AreAbsentUnlessTheirReadingSaysSOk) {
    for (const HRESULT absent : {S_FALSE, E_FAIL}) {
        store.calls.clear();
        RawContainer property(Property(L"old one", L"old two", 1).Get());
        property.Make(kFirstText, [=](VARIANT& value) {
            CVariant::FromText(L"old one").MoveTo(&value);
            return absent;
        });
        ExpectWritten(WrittenValues(L"", L"'old two'", L"1"), {&property});
    }
}

} // namespace tsl::test
