// Which places of the content store's virtual table the component calls. The table here is made by
// hand, as another compiler would lay it out.
#include <array>
#include <bit>
#include <utility>

#include "tests/content_move/ContentMoveFixture.h"

namespace tsl::test {

namespace {

constexpr size_t kSlots = 31;
constexpr size_t kFindItems = 19;
constexpr size_t kGetItemProperties = 29;
constexpr size_t kSetItemProperties = 30;

// An object of which the component knows its table alone.
struct BareStore {
    void* const* table;
    ContentStoreDouble& store;
    std::vector<size_t> slots;
};

template <size_t kSlot>
HRESULT STDMETHODCALLTYPE Stray(BareStore* self) {
    self->slots.push_back(kSlot);
    return E_NOTIMPL;
}

HRESULT STDMETHODCALLTYPE QueryBare(BareStore* self, REFIID iid, void** result) {
    const HRESULT known = self->store.QueryInterface(iid, result);
    if (SUCCEEDED(known)) *result = self;
    return known;
}
ULONG STDMETHODCALLTYPE AddRefBare(BareStore* self) {
    return self->store.AddRef();
}
ULONG STDMETHODCALLTYPE ReleaseBare(BareStore* self) {
    return self->store.Release();
}
HRESULT STDMETHODCALLTYPE FindBare(BareStore* self, BSTR text, VARIANT* itemIds) {
    self->slots.push_back(kFindItems);
    return self->store.FindItems(text, itemIds);
}
HRESULT STDMETHODCALLTYPE GetBare(BareStore* self, UINT64 itemId, VARIANT* properties) {
    self->slots.push_back(kGetItemProperties);
    return self->store.GetItemProperties(itemId, properties);
}
HRESULT STDMETHODCALLTYPE SetBare(BareStore* self, UINT64 itemId, VARIANT* properties) {
    self->slots.push_back(kSetItemProperties);
    return self->store.SetItemProperties(itemId, properties);
}

template <size_t... kSlot>
std::array<void*, kSlots> StrayTable(std::index_sequence<kSlot...>) {
    return {std::bit_cast<void*>(&Stray<kSlot>)...};
}

std::array<void*, kSlots> MakeTable() {
    auto table = StrayTable(std::make_index_sequence<kSlots>());
    table[0] = std::bit_cast<void*>(&QueryBare);
    table[1] = std::bit_cast<void*>(&AddRefBare);
    table[2] = std::bit_cast<void*>(&ReleaseBare);
    table[kFindItems] = std::bit_cast<void*>(&FindBare);
    table[kGetItemProperties] = std::bit_cast<void*>(&GetBare);
    table[kSetItemProperties] = std::bit_cast<void*>(&SetBare);
    return table;
}

} // namespace

class ContentStoreSlots : public testing::Test {};

TEST_F(ContentStoreSlots, AreThreeOfAll) {
    const CComInitialization com;
    const auto table = MakeTable();
    ContentStoreDouble store;
    BareStore bare{table.data(), store, {}};
    ContentStoreClass storeClass{*reinterpret_cast<IUnknown*>(&bare)};
    const ClassRegistration storeRegistration(CLSID_TslContentStore, &storeClass);
    HostContainers containers;
    const ClassRegistration containerRegistration(CLSID_TslParamContainer, &containers);
    store.Hold(7, {Property(L"old one", L"old two", 1)});
    store.Hold(8, {Property(L"x", L"y", 1)});

    const CVariant texts[] = {CVariant::FromText(L"old one"), CVariant::FromText(L"old two")};
    const CVariant number = CVariant::FromI4(9);
    const BSTR one = texts[0].Get().bstrVal;
    const BSTR two = texts[1].Get().bstrVal;
    {
        CHostContentStore kept;
        EXPECT_EQ(S_OK, UpdateContentItems(kept, {{one, two}, {two, one}, number.Get()}));
    }
    EXPECT_EQ((std::vector<size_t>{19, 29, 30, 29, 30}), bare.slots);
    EXPECT_EQ((Calls{L"find 'old one'", L"get 7", L"set 7 " + Written(L"old two", L"old one", 9),
                     L"get 8", L"set 8 " + Written(L"x", L"y", 1)}),
              store.calls);
    EXPECT_EQ(0u, store.Held());
}

} // namespace tsl::test
