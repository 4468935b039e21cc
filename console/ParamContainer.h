// The console host's parameter container: keeps deep copies of values under 64-bit keys. Reference
// counted from any thread; the values are used by one thread at a time.
#pragma once

#include <atomic>
#include <map>

#include "base/ComPtr.h"
#include "base/Variant.h"
#include "component/host/ITslParamContainer.h"

namespace tsl {

class CTslParamContainer final : public ITslParamContainer {
public:
    static CComPtr<CTslParamContainer> Create();

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** result) override;
    ULONG STDMETHODCALLTYPE AddRef() override;
    ULONG STDMETHODCALLTYPE Release() override;

    HRESULT STDMETHODCALLTYPE GetCommandCode(UINT64* commandCode) override;
    HRESULT STDMETHODCALLTYPE SetCommandCode(UINT64 commandCode) override;
    HRESULT STDMETHODCALLTYPE GetValue(UINT64 key, VARIANT* value) override;
    // References to values are followed: what is stored never depends on the caller's memory.
    HRESULT STDMETHODCALLTYPE SetValue(UINT64 key, VARIANT* value) override;
    // S_FALSE when the key is absent.
    HRESULT STDMETHODCALLTYPE RemoveValue(UINT64 key) override;
    // In ascending order.
    HRESULT STDMETHODCALLTYPE GetKeys(VARIANT* keys) override;

private:
    CTslParamContainer() = default;
    ~CTslParamContainer() = default;

    std::atomic<ULONG> m_references = 1;
    UINT64 m_commandCode = 0;
    std::map<UINT64, CVariant> m_values;
};

// Stores a value. Throws the container's failure as a CHresultError.
void SetValue(CTslParamContainer& container, UINT64 key, CVariant value);

// Creates a container for the class factory of its class.
HRESULT CreateParamContainer(REFIID iid, void** result);

} // namespace tsl
