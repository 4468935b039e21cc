#include "console/ParamContainer.h"

#include <vector>

#include "base/Hresult.h"
#include "component/host/Identities.h"
#include "console/Arrays.h"

namespace tsl {

CComPtr<CTslParamContainer> CTslParamContainer::Create() {
    return CComPtr<CTslParamContainer>::FromOwned(new CTslParamContainer);
}

void SetValue(CTslParamContainer& container, UINT64 key, CVariant value) {
    const HRESULT result = container.SetValue(key, value.Address());
    if (FAILED(result)) throw CHresultError(result);
}

HRESULT CreateParamContainer(REFIID iid, void** result) {
    return CTslParamContainer::Create()->QueryInterface(iid, result);
}

HRESULT CTslParamContainer::QueryInterface(REFIID iid, void** result) {
    if (!result) return E_POINTER;
    *result = nullptr;
    if (iid != IID_IUnknown && iid != IID_ITslParamContainer) return E_NOINTERFACE;
    AddRef();
    *result = static_cast<ITslParamContainer*>(this);
    return S_OK;
}

ULONG CTslParamContainer::AddRef() {
    return ++m_references;
}

ULONG CTslParamContainer::Release() {
    const ULONG references = --m_references;
    if (references == 0) delete this;
    return references;
}

HRESULT CTslParamContainer::GetCommandCode(UINT64* commandCode) {
    if (!commandCode) return E_POINTER;
    *commandCode = m_commandCode;
    return S_OK;
}

HRESULT CTslParamContainer::SetCommandCode(UINT64 commandCode) {
    m_commandCode = commandCode;
    return S_OK;
}

HRESULT CTslParamContainer::GetValue(UINT64 key, VARIANT* value) {
    if (!value) return E_POINTER;
    const auto found = m_values.find(key);
    return found == m_values.end() ? S_FALSE : VariantCopy(value, found->second.Address());
}

HRESULT CTslParamContainer::SetValue(UINT64 key, VARIANT* value) {
    return AtBoundary([&] {
        if (!value) return E_POINTER;
        CVariant copy;
        const HRESULT copied = VariantCopyInd(copy.Address(), value);
        if (SUCCEEDED(copied)) m_values[key] = std::move(copy);
        return copied;
    });
}

HRESULT CTslParamContainer::RemoveValue(UINT64 key) {
    return m_values.erase(key) > 0 ? S_OK : S_FALSE;
}

HRESULT CTslParamContainer::GetKeys(VARIANT* keys) {
    return AtBoundary([&] {
        if (!keys) return E_POINTER;
        std::vector<ULONGLONG> present;
        present.reserve(m_values.size());
        for (const auto& [key, value] : m_values)
            present.push_back(key);
        CVariant made = MakeArray<ULONGLONG>(present);
        VariantClear(keys);
        return VariantCopy(keys, made.Address());
    });
}

} // namespace tsl
