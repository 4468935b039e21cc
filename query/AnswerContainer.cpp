#include "query/AnswerContainer.h"

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

HRESULT PutContainer(ITslParamContainer& container, VARIANT* result) {
    container.AddRef();
    CVariant answer = CVariant::FromOwnedUnknown(&container);
    return VariantCopy(result, answer.Address());
}

} // namespace tsl
