#include "console/ContentStore.h"

#include <algorithm>

#include "base/Hresult.h"
#include "base/SameWords.h"
#include "component/host/Identities.h"
#include "component/host/ParamKeys.h"
#include "console/Arrays.h"
#include "console/ParamContainer.h"

namespace tsl {

namespace {

CComPtr<CTslParamContainer> ToContainer(const ContentItemProperty& property) {
    CComPtr<CTslParamContainer> container = CTslParamContainer::Create();
    if (property.first) {
        SetValue(*container, kKeyPropertyFirstText, CVariant::FromText(*property.first));
    }
    if (property.second) {
        SetValue(*container, kKeyPropertySecondText, CVariant::FromText(*property.second));
    }
    if (property.number)
        SetValue(*container, kKeyPropertyNumber, CVariant::FromI4(*property.number));
    return container;
}

std::optional<std::wstring> ReadText(ITslParamContainer& container, UINT64 key) {
    CVariant text;
    if (container.GetValue(key, text.Address()) != S_OK || text.Type() != VT_BSTR) return {};
    return std::wstring(BstrView(text.Get().bstrVal));
}

ContentItemProperty ToProperty(ITslParamContainer& container) {
    ContentItemProperty property;
    property.first = ReadText(container, kKeyPropertyFirstText);
    property.second = ReadText(container, kKeyPropertySecondText);
    CVariant number;
    if (container.GetValue(kKeyPropertyNumber, number.Address()) == S_OK &&
        number.Type() == VT_I4) {
        property.number = number.Get().lVal;
    }
    return property;
}

} // namespace

HRESULT CContentStore::QueryInterface(REFIID iid, void** result) {
    if (!result) return E_POINTER;
    const bool known = iid == IID_IUnknown || iid == IID_ITslContentStore;
    *result = known ? this : nullptr;
    return known ? S_OK : E_NOINTERFACE;
}

ContentItem* CContentStore::Find(UINT64 itemId) {
    const auto found = std::ranges::find(m_items, itemId, &ContentItem::id);
    return found == m_items.end() ? nullptr : &*found;
}

HRESULT CContentStore::FindItems(BSTR text, VARIANT* itemIds) {
    return AtBoundary([&] {
        const std::wstring wanted(BstrView(text));
        std::vector<ULONGLONG> ids;
        for (const ContentItem& item : m_items) {
            const bool named = std::ranges::any_of(item.properties, [&](const auto& property) {
                return property.first && SameWords(*property.first, wanted);
            });
            if (named) ids.push_back(item.id);
        }
        return MakeArray<ULONGLONG>(ids).MoveTo(itemIds);
    });
}

HRESULT CContentStore::GetItemProperties(UINT64 itemId, VARIANT* properties) {
    return AtBoundary([&] {
        const ContentItem* const item = Find(itemId);
        if (!item) return E_INVALIDARG;
        CVariant list =
            MakeFilledArray<IUnknown*>(item->properties.size(), [&](std::span<IUnknown*> made) {
                std::ranges::transform(item->properties, made.begin(), [](const auto& property) {
                    return ToContainer(property).Detach();
                });
            });
        return list.MoveTo(properties);
    });
}

HRESULT CContentStore::SetItemProperties(UINT64 itemId, VARIANT* properties) {
    return AtBoundary([&] {
        ContentItem* const item = Find(itemId);
        CValueView<IUnknown*> elements;
        if (!item || FAILED(elements.Open(*properties))) return E_INVALIDARG;
        std::vector<ContentItemProperty> replaced;
        for (IUnknown* const element : elements.Values()) {
            const auto container = QueryFor<ITslParamContainer>(element, IID_ITslParamContainer);
            if (!container) return E_INVALIDARG;
            replaced.push_back(ToProperty(*container));
        }
        item->properties = std::move(replaced);
        return S_OK;
    });
}

} // namespace tsl
