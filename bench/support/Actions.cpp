#include "bench/support/Actions.h"

#include <array>
#include <vector>

#include "component/host/ParamKeys.h"
#include "console/Arrays.h"

namespace tsl::bench {

namespace {

CVariant Texts(std::initializer_list<std::wstring> texts) {
    return MakeTextArray(std::span(texts.begin(), texts.size()));
}

std::vector<std::wstring> NumberedTexts(std::wstring_view start, size_t count) {
    std::vector<std::wstring> texts;
    for (size_t index = 0; index < count; ++index)
        texts.push_back(std::wstring(start) + std::to_wstring(index));
    return texts;
}

CComPtr<CTslParamContainer> MakeLinkedItem(size_t entries) {
    CComPtr<CTslParamContainer> item = CTslParamContainer::Create();
    SetValue(*item, kKeyText44, CVariant::FromText(L"A list of items"));
    SetValue(*item, kKeyText48, CVariant::FromText(L"What the list is about"));
    SetValue(*item, kKeyStringValues, MakeTextArray(NumberedTexts(L"Name of item ", entries)));
    SetValue(*item, kKeyMoreStringValues, MakeTextArray(NumberedTexts(L"Detail: ", entries)));
    std::vector<ULONGLONG> ids;
    for (size_t index = 0; index < entries; ++index)
        ids.push_back(1'000'000'007 * (index + 1));
    SetValue(*item, kKeyUllValues, MakeArray<ULONGLONG>(ids));
    return item;
}

} // namespace

CComPtr<CTslParamContainer> MakeAction(std::wstring_view name) {
    CComPtr<CTslParamContainer> action = CTslParamContainer::Create();
    SetValue(*action, kKeyAppId, CVariant::FromI4(3));
    SetValue(*action, kKeyUserId, CVariant::FromUi4(kUser));
    SetValue(*action, kKeyActionTime, CVariant::FromDate(45'000.5));
    SetValue(*action, kKeyActionName, CVariant::FromText(name));
    SetValue(*action, kKeyUllValues, MakeArray<ULONGLONG>(std::array{4'711ULL, 815ULL}));
    SetValue(*action, kKeyUsValues, MakeArray<USHORT>(std::array<USHORT, 2>{7, 12}));
    SetValue(*action, kKeyIntValues, MakeArray<LONG>(std::array{-1L, 2L, 30L}));
    SetValue(*action, kKeyBoolValues, MakeArray<VARIANT_BOOL>(std::array{VARIANT_TRUE}));
    SetValue(*action, kKeyFloatValues, MakeArray<FLOAT>(std::array{0.5F}));
    SetValue(*action, kKeyStringValues, Texts({L"A title of usual length", L"Its maker", L"2026"}));
    return action;
}

CComPtr<CTslParamContainer> MakeActionWithLinkedItem(std::wstring_view name, size_t entries) {
    CComPtr<CTslParamContainer> action = MakeAction(name);
    SetValue(*action, kKeyLinkedItem, CVariant::FromOwnedUnknown(MakeLinkedItem(entries).Detach()));
    return action;
}

void SetRecordId(CTslParamContainer& action, UINT32 recordId) {
    SetValue(action, kKeyRecordId, CVariant::FromUi4(recordId));
}

} // namespace tsl::bench
