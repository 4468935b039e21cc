#include "console/HostAction.h"

#include "component/host/CommandCodes.h"
#include "component/host/ParamKeys.h"
#include "console/Arrays.h"

namespace tsl {

namespace {

template <class T>
void SetList(CTslParamContainer& container, UINT64 key, const std::optional<std::vector<T>>& list) {
    if (list) SetValue(container, key, MakeArray<T>(*list));
}

void SetTexts(CTslParamContainer& container, UINT64 key,
              const std::optional<std::vector<std::wstring>>& list) {
    if (list) SetValue(container, key, MakeTextArray(*list));
}

void SetText(CTslParamContainer& container, UINT64 key, const std::optional<std::wstring>& text) {
    if (text) SetValue(container, key, CVariant::FromText(*text));
}

void SetValues(CTslParamContainer& container, const ActionValues& values) {
    SetList(container, kKeyUllValues, values.ullValues);
    SetList(container, kKeyUsValues, values.usValues);
    SetList(container, kKeyIntValues, values.intValues);
    SetList(container, kKeyBoolValues, values.boolValues);
    SetTexts(container, kKeyStringValues, values.stringValues);
    SetTexts(container, kKeyMoreStringValues, values.moreStringValues);
    SetList(container, kKeyFloatValues, values.floatValues);
}

void SetLinkedItem(CTslParamContainer& container, const LinkedItem& linked) {
    CComPtr<CTslParamContainer> item = CTslParamContainer::Create();
    SetText(*item.Get(), kKeyText44, linked.text44);
    SetText(*item.Get(), kKeyText48, linked.text48);
    SetValues(*item.Get(), linked.values);
    SetValue(container, kKeyLinkedItem, CVariant::FromOwnedUnknown(item.Detach()));
}

} // namespace

CComPtr<CTslParamContainer> MakeContainer(const HostAction& action, UINT32 recordId) {
    const CComPtr<CTslParamContainer> container = CTslParamContainer::Create();
    container->SetCommandCode(kCommandRecordAction);
    SetValue(*container.Get(), kKeyRecordId, CVariant::FromUi4(recordId));
    SetValue(*container.Get(), kKeyActionName, CVariant::FromText(action.name));
    SetValue(*container.Get(), kKeyAppId, CVariant::FromI4(action.app));
    SetValue(*container.Get(), kKeyUserId, CVariant::FromUi4(action.user));
    if (action.time) SetValue(*container.Get(), kKeyActionTime, CVariant::FromDate(*action.time));
    if (action.number) SetValue(*container.Get(), kKeyNumber, CVariant::FromI4(*action.number));
    SetValues(*container.Get(), action.values);
    if (action.linked) SetLinkedItem(*container.Get(), *action.linked);
    return container;
}

} // namespace tsl
