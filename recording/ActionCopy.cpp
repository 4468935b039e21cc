#include "recording/ActionCopy.h"

#include "base/Variant.h"
#include "component/host/CommandCodes.h"
#include "component/host/ParamKeys.h"
#include "query/AnswerContainer.h"

namespace tsl {

namespace {

// In the order in which they are copied.
constexpr UINT64 kCopiedKeys[] = {
    kKeyNestedContainer, kKeyUllValues,    kKeyUsValues,    kKeyNumber,
    kKeyBoolValues,      kKeyStringValues, kKeyFloatValues, kKeyActionName,
    kKeyRecordId,        kKeyActionTime,   kKeyAppId,       kKeyUserId,
};

} // namespace

HRESULT CopyDeleteAction(ITslParamContainer& action, CComPtr<ITslParamContainer>& copy) {
    CComPtr<ITslParamContainer> made;
    const HRESULT created = CreateContainer(kCommandRecordAction, made);
    if (FAILED(created)) return created;
    CContainerFiller filler(*made);
    for (const UINT64 key : kCopiedKeys) {
        CVariant value;
        if (action.GetValue(key, value.Address()) == S_OK) filler.Set(key, std::move(value));
    }
    if (SUCCEEDED(filler.Result())) copy = std::move(made);
    return filler.Result();
}

} // namespace tsl
