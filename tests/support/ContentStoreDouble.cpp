#include "tests/support/ContentStoreDouble.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iomanip>
#include <sstream>

#include "component/host/ITslParamContainer.h"
#include "component/host/Identities.h"
#include "console/Arrays.h"

namespace tsl::test {

namespace {

std::wstring Hex(UINT64 number) {
    std::wostringstream text;
    text << std::hex << std::setw(16) << std::setfill(L'0') << number;
    return text.str();
}

std::wstring Quoted(BSTR text) {
    return text ? L"'" + std::wstring(text, SysStringLen(text)) + L"'" : L"null";
}

std::wstring ValueText(const VARIANT& value) {
    if (value.vt == VT_BSTR) return Quoted(value.bstrVal);
    if (value.vt == VT_I4) return std::to_wstring(value.lVal);
    return L"(type " + std::to_wstring(value.vt) + L")";
}

std::wstring PropertyText(IUnknown* property) {
    const auto container = QueryFor<ITslParamContainer>(property, IID_ITslParamContainer);
    if (!container) return L"{no container}";
    UINT64 code = 0;
    CVariant keys;
    CValueView<ULONGLONG> present;
    if (FAILED(container->GetCommandCode(&code)) || FAILED(container->GetKeys(keys.Address())) ||
        FAILED(present.Open(*keys.Address()))) {
        return L"{unreadable}";
    }
    std::wstring text = L"{" + Hex(code) + L":";
    for (const ULONGLONG key : present.Values()) {
        CVariant value;
        container->GetValue(key, value.Address());
        text += L" " + Hex(key) + L"=" + ValueText(value.Get());
    }
    return text + L"}";
}

} // namespace

void ContentStoreDouble::Hold(UINT64 id, std::initializer_list<IUnknown*> properties) {
    Item item{.id = id, .properties = {}};
    for (IUnknown* const property : properties) {
        if (property) property->AddRef();
        item.properties.push_back(CComPtr<IUnknown>::FromOwned(property));
    }
    items.push_back(std::move(item));
}

HRESULT ContentStoreDouble::QueryInterface(REFIID iid, void** result) {
    *result = nullptr;
    const bool isStore = iid == IID_ITslContentStore;
    if (!isStore && iid != IID_IUnknown) return E_NOINTERFACE;
    if (isStore && FAILED(queryResult)) return queryResult;
    AddRef();
    *result = static_cast<ITslContentStore*>(this);
    return S_OK;
}

ULONG ContentStoreDouble::Release() {
    if (onRelease) onRelease();
    EXPECT_GT(m_references, 1u) << "a reference was given back that nobody had";
    return --m_references;
}

HRESULT ContentStoreDouble::FindItems(BSTR text, VARIANT* itemIds) {
    EXPECT_EQ(VT_EMPTY, itemIds->vt);
    const HRESULT result = Note(L"find " + Quoted(text));
    if (FAILED(result)) return result;
    if (foundItems) return foundItems(*itemIds);
    std::vector<ULONGLONG> ids;
    for (const Item& item : items)
        ids.push_back(item.id);
    MakeArray<ULONGLONG>(ids).MoveTo(itemIds);
    return result;
}

HRESULT ContentStoreDouble::GetItemProperties(UINT64 itemId, VARIANT* properties) {
    EXPECT_EQ(VT_EMPTY, properties->vt);
    const HRESULT result = Note(L"get " + std::to_wstring(itemId));
    if (FAILED(result)) return result;
    const auto answer = itemProperties.find(itemId);
    if (answer != itemProperties.end()) return answer->second(*properties);
    const Item* const item = Find(itemId);
    if (!item) return E_INVALIDARG;
    CVariant list =
        MakeFilledArray<IUnknown*>(item->properties.size(), [&](std::span<IUnknown*> made) {
            std::ranges::transform(item->properties, made.begin(),
                                   [](CComPtr<IUnknown> property) { return property.Detach(); });
        });
    list.MoveTo(properties);
    return result;
}

HRESULT ContentStoreDouble::SetItemProperties(UINT64 itemId, VARIANT* properties) {
    std::wstring call = L"set " + std::to_wstring(itemId) + L" ";
    CValueView<IUnknown*> view;
    if (properties->vt != (VT_ARRAY | VT_UNKNOWN) || FAILED(view.Open(*properties))) {
        call += ValueText(*properties);
    }
    Item written{.id = itemId, .properties = {}};
    for (IUnknown* const property : view.Values()) {
        call += PropertyText(property);
        written.properties.push_back(QueryFor<IUnknown>(property, IID_IUnknown));
    }
    const HRESULT result = Note(std::move(call));
    Item* const item = Find(itemId);
    if (SUCCEEDED(result) && item) *item = std::move(written);
    return result;
}

HRESULT ContentStoreDouble::Note(std::wstring call) {
    calls.push_back(std::move(call));
    const auto result = results.find(calls.size());
    const HRESULT chosen = result == results.end() ? S_OK : result->second;
    if (onCall) onCall();
    return chosen;
}

ContentStoreDouble::Item* ContentStoreDouble::Find(UINT64 itemId) {
    const auto found = std::ranges::find(items, itemId, &Item::id);
    return found == items.end() ? nullptr : &*found;
}

} // namespace tsl::test
