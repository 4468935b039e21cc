#include "query/AnswerContainer.h"

#include "component/host/Identities.h"

namespace tsl {

HRESULT CreateContainer(UINT64 commandCode, CComPtr<ITslParamContainer>& container) {
    CComPtr<ITslParamContainer> created;
    HRESULT result = CreateHostObject(CLSID_TslParamContainer, IID_ITslParamContainer, created);
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
