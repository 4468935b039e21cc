#include "recording/ContentMove.h"

#include "component/host/Identities.h"
#include "query/AnswerContainer.h"
#include "recording/ContentProperties.h"
#include "recording/ValueList.h"

namespace tsl {

namespace {

bool HasAllTexts(const ContentMove& move) noexcept {
    return move.oldTexts[0] && move.oldTexts[1] && move.newTexts[0] && move.newTexts[1];
}

ContentProperty MovedProperty(const ContentMove& move) {
    ContentProperty property;
    property.firstText = CVariant::FromText(move.newTexts[0]);
    property.secondText = CVariant::FromText(move.newTexts[1]);
    property.number = CVariant::FromI4(move.number.lVal);
    return property;
}

// The content store that is kept; created if there is none.
HRESULT UseContentStore(CHostContentStore& kept, CComPtr<ITslContentStore>& contentStore) {
    contentStore = kept.Get();
    if (contentStore) return S_OK;
    const HRESULT created =
        CreateHostObject(CLSID_TslContentStore, IID_ITslContentStore, contentStore);
    if (SUCCEEDED(created)) contentStore = kept.Keep(contentStore);
    return created;
}

// What is no container of a property is left out.
std::vector<ContentProperty> MovedProperties(std::span<IUnknown* const> elements,
                                             const ContentMove& move) {
    const std::wstring oldFirst(BstrView(move.oldTexts[0]));
    const std::wstring oldSecond(BstrView(move.oldTexts[1]));
    std::vector<ContentProperty> moved;
    for (IUnknown* const element : elements) {
        const auto container = QueryFor<ITslParamContainer>(element, IID_ITslParamContainer);
        if (!container) continue;
        ContentProperty property = ReadContentProperty(*container);
        const bool matches = MatchesTexts(property, oldFirst, oldSecond);
        moved.push_back(matches ? MovedProperty(move) : std::move(property));
    }
    return moved;
}

HRESULT MoveItem(ITslContentStore& contentStore, UINT64 itemId, const ContentMove& move) {
    CVariant properties;
    const HRESULT read = contentStore.GetItemProperties(itemId, properties.Address());
    CValueView<IUnknown*> elements;
    const bool listed = properties.Type() == (VT_ARRAY | VT_UNKNOWN) &&
                        SUCCEEDED(elements.Open(*properties.Address()));
    if (FAILED(read) || !listed) return read;
    CVariant packed;
    const HRESULT result =
        PackContentProperties(MovedProperties(elements.Values(), move), packed.Address());
    return result == S_OK ? contentStore.SetItemProperties(itemId, packed.Address()) : result;
}

// The first two texts of a list; null where there are fewer.
void TakeTexts(std::span<const BSTR> list, BSTR (&texts)[2]) noexcept {
    texts[0] = list.size() >= 2 ? list[0] : nullptr;
    texts[1] = list.size() >= 2 ? list[1] : nullptr;
}

} // namespace

HRESULT MoveContent(CHostContentStore& contentStore, ITslParamContainer& action) {
    CValueList<BSTR> oldTexts;
    CValueList<BSTR> newTexts;
    if (!oldTexts.ReadRequired(action, kKeyStringValues)) return E_INVALIDARG;
    if (!newTexts.ReadRequired(action, kKeyMoreStringValues)) return E_INVALIDARG;
    CVariant number;
    ReadValue(action, kKeyNumber, number);
    ContentMove move{{}, {}, number.Get()};
    TakeTexts(oldTexts.Values(), move.oldTexts);
    TakeTexts(newTexts.Values(), move.newTexts);
    return UpdateContentItems(contentStore, move);
}

HRESULT UpdateContentItems(CHostContentStore& contentStore, const ContentMove& move) {
    if (!HasAllTexts(move) || move.number.vt != VT_I4) return E_INVALIDARG;
    // With a reference of its own: the host may call back and end what is kept.
    CComPtr<ITslContentStore> held;
    const HRESULT used = UseContentStore(contentStore, held);
    if (FAILED(used)) return used;
    CVariant found;
    const HRESULT asked = held->FindItems(move.oldTexts[0], found.Address());
    if (FAILED(asked)) return asked;
    CValueView<ULONGLONG> itemIds;
    const bool listed =
        found.Type() == (VT_ARRAY | VT_UI8) && SUCCEEDED(itemIds.Open(*found.Address()));
    HRESULT result = S_FALSE;
    if (!listed) return result;
    for (const ULONGLONG itemId : itemIds.Values()) {
        result = MoveItem(*held, itemId, move);
    }
    return result;
}

} // namespace tsl
