#include "query/AnswerContainer.h"

#include "base/Variant.h"
#include "component/host/Identities.h"

namespace tsl {

HRESULT CreateContainer(UINT64 commandCode, CComPtr<ITslParamContainer>& container) {
    CComPtr<ITslParamContainer> created;
    HRESULT result = CoCreateInstance(CLSID_TslParamContainer, /*outer=*/nullptr, CLSCTX_ALL,
                                      IID_ITslParamContainer, created.PutVoid());
    if (SUCCEEDED(result)) result = created->SetCommandCode(commandCode);
    if (SUCCEEDED(result)) container = std::move(created);
    return result;
}

HRESULT SetUi4(ITslParamContainer& container, UINT64 key, UINT32 number) {
    CVariant value = CVariant::FromUi4(number);
    return container.SetValue(key, value.Address());
}

HRESULT PutContainer(ITslParamContainer& container, VARIANT* result) {
    container.AddRef();
    CVariant answer = CVariant::FromOwnedUnknown(&container);
    return VariantCopy(result, answer.Address());
}

} // namespace tsl
