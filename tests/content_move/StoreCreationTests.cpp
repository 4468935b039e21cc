// The content store is created with the first move and kept for the next ones.
#include "tests/content_move/ContentMoveFixture.h"

namespace tsl::test {

class StoreCreation : public ContentMoveTest {
protected:
    void SetUp() override { store.Hold(7, {Property(L"old one", L"old two", 1)}); }
};

TEST_F(StoreCreation, HappensOnce) {
    EXPECT_EQ(S_OK, Move());
    EXPECT_EQ(1u, store.Held());
    EXPECT_EQ(S_OK, Move(L"new one", L"new two"));
    EXPECT_EQ(S_FALSE, (store.items.clear(), Move()));
    EXPECT_EQ(1, storeClass.creations);
    EXPECT_EQ(1u, store.Held());
}

TEST_F(StoreCreation, IsKeptAfterAFailedMove) {
    store.results[1] = E_FAIL;
    EXPECT_EQ(E_FAIL, Move());
    EXPECT_EQ(1u, store.Held());
    EXPECT_EQ(S_OK, Move());
    EXPECT_EQ(1, storeClass.creations);
}

TEST_F(StoreCreation, FailsTheMoveAndIsTriedAgain) {
    for (const HRESULT refused : {E_ACCESSDENIED, E_OUTOFMEMORY}) {
        storeClass.creationResult = refused;
        EXPECT_EQ(refused, Move());
    }
    EXPECT_EQ(0u, store.Held());
    EXPECT_EQ(Calls{}, store.calls);
    storeClass.creationResult = S_OK;
    EXPECT_EQ(S_OK, Move());
    EXPECT_EQ(3, storeClass.creations);
    EXPECT_EQ(L"set 7 " + kMoved, store.calls.back());
}

TEST_F(StoreCreation, FailsWithAnObjectThatIsNoContentStore) {
    store.queryResult = E_NOINTERFACE;
    EXPECT_EQ(E_NOINTERFACE, Move());
    EXPECT_EQ(0u, store.Held());
    EXPECT_EQ(Calls{}, store.calls);
    store.queryResult = S_OK;
    EXPECT_EQ(S_OK, Move());
}

TEST_F(StoreCreation, OfOneMoverIsNotThatOfAnother) {
    CHostContentStore other;
    const CVariant text = CVariant::FromText(L"old one");
    const BSTR one = text.Get().bstrVal;
    EXPECT_EQ(S_OK, Move());
    EXPECT_EQ(S_OK, UpdateContentItems(other, {{one, one}, {one, one}, number.Get()}));
    EXPECT_EQ(2, storeClass.creations);
    EXPECT_EQ(2u, store.Held());
}

TEST(StoreCreationWithoutClass, FailsTheMove) {
    const CComInitialization com;
    const CVariant text = CVariant::FromText(L"text");
    const BSTR one = text.Get().bstrVal;
    const CVariant number = CVariant::FromI4(9);
    CHostContentStore kept;
    EXPECT_EQ(REGDB_E_CLASSNOTREG,
              UpdateContentItems(kept, {{one, one}, {one, one}, number.Get()}));
    EXPECT_FALSE(kept.Get());
}

} // namespace tsl::test
