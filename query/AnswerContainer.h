// Makes the host's parameter containers that answers and forwarded requests travel in. Needs COM
// initialised on the calling thread, which a host has done.
#pragma once

#include "base/ComPtr.h"
#include "base/Variant.h"
#include "component/host/ITslParamContainer.h"

namespace tsl {

// Creates an object of a class of the host's. The failure of the creation; E_NOINTERFACE when the
// class answers success and no object. The object is null then.
template <class Interface>
HRESULT CreateHostObject(REFCLSID clsid, REFIID iid, CComPtr<Interface>& object) {
    CComPtr<Interface> created;
    const HRESULT result =
        CoCreateInstance(clsid, /*outer=*/nullptr, CLSCTX_ALL, iid, created.PutVoid());
    if (FAILED(result)) {
        created.Detach(); // what a failing class leaves behind is no reference
        return result;
    }
    if (!created) return E_NOINTERFACE;
    object = std::move(created);
    return S_OK;
}

// Creates an empty container stamped with the command code. Failures of the creation and of the
// stamping are returned unchanged; the container is null then.
HRESULT CreateContainer(UINT64 commandCode, CComPtr<ITslParamContainer>& container);

// Sets values in their order and stops at the first that the container refuses.
class CContainerFiller {
public:
    explicit CContainerFiller(ITslParamContainer& container) noexcept : m_container(container) {}

    CContainerFiller& Set(UINT64 key, CVariant value) {
        if (SUCCEEDED(m_result)) m_result = m_container.SetValue(key, value.Address());
        return *this;
    }

    // What the container returned last.
    HRESULT Result() const noexcept { return m_result; }

private:
    ITslParamContainer& m_container;
    HRESULT m_result = S_OK;
};

// Hands a container to the caller of the interface, as VT_UNKNOWN with a reference of its own.
// Replaces what the result holds. REQUIRES: the result is not null.
HRESULT PutContainer(ITslParamContainer& container, VARIANT* result);

} // namespace tsl
