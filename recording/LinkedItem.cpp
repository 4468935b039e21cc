#include "recording/LinkedItem.h"

#include <algorithm>
#include <string_view>

#include "base/ComPtr.h"
#include "component/host/Identities.h"

namespace tsl {

namespace {

constexpr ULONGLONG kNoId = 0xFFFFFFFFFFFFFFFF;
constexpr std::wstring_view kChannelMarker = L"VELLORA_CHANNEL";

// False when the text is not there. An empty one is there, but nothing is appended.
bool AppendText(ITslParamContainer& item, UINT64 key, CVariant& value,
                std::vector<std::wstring_view>& texts) {
    if (ReadValue(item, key, value) != S_OK || value.Type() == VT_EMPTY) return false;
    const std::wstring_view text = BstrView(value.Get().bstrVal);
    if (!text.empty()) texts.push_back(text);
    return true;
}

CComPtr<ITslParamContainer> LinkedItem(ITslParamContainer& container) {
    CVariant value;
    ReadValue(container, kKeyLinkedItem, value);
    if (value.Type() != VT_UNKNOWN) return {};
    return QueryFor<ITslParamContainer>(value.Get().punkVal, IID_ITslParamContainer);
}

} // namespace

HRESULT AppendLinkedItemValues(ITslParamContainer& container, LinkedItemValues& gathered) {
    const CComPtr<ITslParamContainer> item = LinkedItem(container);
    if (!item) return S_OK;
    if (!AppendText(*item, kKeyText44, gathered.firstText, gathered.texts)) return E_INVALIDARG;
    if (!AppendText(*item, kKeyText48, gathered.secondText, gathered.texts)) return E_INVALIDARG;

    if (!gathered.names.ReadRequired(*item, kKeyStringValues)) return E_INVALIDARG;
    const std::span<const BSTR> names = gathered.names.Values();
    if (std::ranges::any_of(names, [](BSTR name) { return BstrView(name).empty(); })) {
        return E_INVALIDARG;
    }
    if (!gathered.details.ReadRequired(*item, kKeyMoreStringValues)) return E_INVALIDARG;
    const std::span<const BSTR> details = gathered.details.Values();
    CValueList<ULONGLONG> ids;
    if (!ids.ReadPresent(*item, kKeyUllValues)) return E_INVALIDARG;
    gathered.ids.assign(ids.Values().begin(), ids.Values().end());

    // Missing ids are padded to the number of details, missing details to the number of names; the
    // paddings come in this order, so details that were padded do not ask for ids.
    gathered.ids.resize(std::max(gathered.ids.size(), details.size()), kNoId);
    const size_t detailCount = std::max(details.size(), names.size());
    if (!names.empty() && BstrView(names.front()) == kChannelMarker) {
        std::ranges::replace(gathered.ids, ULONGLONG{0}, kNoId);
    }
    if (names.size() != detailCount || gathered.ids.size() != detailCount) return E_INVALIDARG;
    gathered.texts.reserve(gathered.texts.size() + 2 * names.size());
    for (size_t index = 0; index < names.size(); ++index) {
        gathered.texts.push_back(BstrView(names[index]));
        gathered.texts.push_back(index < details.size() ? BstrView(details[index])
                                                        : std::wstring_view());
    }
    return S_OK;
}

} // namespace tsl
