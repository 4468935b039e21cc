// Packing properties for the content store: whole lists of new containers, or none.
#include "recording/ContentProperties.h"
#include "tests/content_move/ContentMoveFixture.h"
#include "tests/support/Failures.h"

namespace tsl::test {

namespace {

constexpr int kStepsOfOne = 5; // creation, stamping, three values

} // namespace

class Packing : public ContentMoveTest {
protected:
    static std::vector<ContentProperty> Properties(int count) {
        std::vector<ContentProperty> properties;
        for (int index = 0; index < count; ++index) {
            properties.push_back({CVariant::FromText(L"first"), CVariant::FromText(L"second"),
                                  CVariant::FromI4(index)});
        }
        return properties;
    }
    HRESULT Pack(int count) { return PackContentProperties(Properties(count), packed.Address()); }

    // Packs two properties, each of which fails at one step; nothing may be left of them.
    void ExpectFailure(int step) {
        SCOPED_TRACE(step);
        containers.Restart({{step, kRefused}});
        packed = CVariant::FromUi4(42);
        EXPECT_EQ(kRefused, Pack(2));
        EXPECT_EQ(VT_UI4, packed.Type());
        EXPECT_EQ(0, containers.live);
    }

    CVariant packed;
};

TEST_F(Packing, MakesAnArrayOfAsManyContainers) {
    packed = CVariant::FromText(L"replaced");
    ASSERT_EQ(S_OK, Pack(3));
    ASSERT_EQ(VT_ARRAY | VT_UNKNOWN, packed.Type());
    SAFEARRAY* const array = packed.Get().parray;
    VARTYPE type = VT_EMPTY;
    EXPECT_EQ(S_OK, SafeArrayGetVartype(array, &type));
    EXPECT_EQ(VT_UNKNOWN, type);
    EXPECT_EQ(1u, SafeArrayGetDim(array));
    EXPECT_EQ(0, array->rgsabound[0].lLbound);
    EXPECT_EQ(3u, array->rgsabound[0].cElements);
    EXPECT_EQ(3, containers.created);
    EXPECT_EQ(3, containers.live);
    packed = CVariant();
    EXPECT_EQ(0, containers.live) << "the array has the only references";
}

TEST_F(Packing, MakesNothingOfNoProperties) {
    packed = CVariant::FromUi4(42);
    EXPECT_EQ(S_FALSE, Pack(0));
    EXPECT_EQ(VT_UI4, packed.Type());
    EXPECT_EQ(42u, packed.Get().ulVal);
    EXPECT_EQ(0, containers.steps);
}

TEST_F(Packing, FailsAsAWholeAtEveryStep) {
    for (int step = 1; step <= 2 * kStepsOfOne; ++step)
        ExpectFailure(step);
    containers.Restart({{2 * kStepsOfOne + 1, kRefused}});
    EXPECT_EQ(S_OK, Pack(2)) << "there are no more steps";
    packed = CVariant();
}

TEST_F(Packing, LeavesItemsThatCannotBePackedUnwritten) {
    for (int step = 1; step <= 2 * kStepsOfOne; ++step) {
        SCOPED_TRACE(step);
        store.items.clear();
        store.calls.clear();
        store.Hold(7, {Property(L"a", L"b", 1), Property(L"old one", L"old two", 1)});
        store.Hold(8, {Property(L"old one", L"old two", 1)});
        containers.Restart({{step, kRefused}});
        EXPECT_EQ(S_OK, Move());
        EXPECT_EQ((Calls{L"find 'old one'", L"get 7", L"get 8", L"set 8 " + kMoved}), store.calls);
        EXPECT_EQ(1, containers.live) << "the store has that of the second item";
    }
}

TEST_F(Packing, FailsTheMoveInTheLastItem) {
    for (int step = 1; step <= kStepsOfOne; ++step) {
        SCOPED_TRACE(step);
        store.items.clear();
        store.calls.clear();
        store.Hold(7, {Property(L"old one", L"old two", 1)});
        store.Hold(8, {Property(L"old one", L"old two", 1)});
        containers.Restart({{kStepsOfOne + step, kRefused}});
        EXPECT_EQ(kRefused, Move());
        EXPECT_EQ((Calls{L"find 'old one'", L"get 7", L"set 7 " + kMoved, L"get 8"}), store.calls);
        EXPECT_EQ(1, containers.live);
    }
}

// A host that has no container class registered.
TEST(PackingWithoutClass, Fails) {
    const CComInitialization com;
    ContentStoreDouble store;
    ContentStoreClass storeClass{store};
    const ClassRegistration registration(CLSID_TslContentStore, &storeClass);
    for (const UINT64 id : {7, 8})
        store.Hold(id, {Property(L"old one", L"old two", 1)});
    const CVariant texts[] = {CVariant::FromText(L"old one"), CVariant::FromText(L"old two")};
    const CVariant number = CVariant::FromI4(9);
    const BSTR one = texts[0].Get().bstrVal;
    const BSTR two = texts[1].Get().bstrVal;
    {
        CHostContentStore kept;
        EXPECT_EQ(REGDB_E_CLASSNOTREG,
                  UpdateContentItems(kept, {{one, two}, {two, one}, number.Get()}));
    }
    EXPECT_EQ((Calls{L"find 'old one'", L"get 7", L"get 8"}), store.calls);
    EXPECT_EQ(0u, store.Held());
}

} // namespace tsl::test
