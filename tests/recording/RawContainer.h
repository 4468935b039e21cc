// A container that hands out VARIANTs exactly as a test makes them: careless hosts do too.
#pragma once

#include <functional>
#include <map>
#include <vector>

#include "component/host/Identities.h"
#include "tests/support/Containers.h"

namespace tsl::test {

// Lives on the stack of the test; references are not counted.
class RawContainer final : public ITslParamContainer {
public:
    // Fills the value, which is empty, and says what GetValue returns. The caller clears the value.
    using Maker = std::function<HRESULT(VARIANT&)>;

    // Keys without a maker are answered by the other container.
    explicit RawContainer(CComPtr<CTslParamContainer> others) : m_others(std::move(others)) {}

    RawContainer& Make(UINT64 key, Maker maker) {
        m_makers[key] = std::move(maker);
        return *this;
    }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** result) override {
        const bool known = iid == IID_IUnknown || iid == IID_ITslParamContainer;
        *result = known ? this : nullptr;
        return known ? S_OK : E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
    HRESULT STDMETHODCALLTYPE GetCommandCode(UINT64* commandCode) override {
        return m_others->GetCommandCode(commandCode);
    }
    HRESULT STDMETHODCALLTYPE SetCommandCode(UINT64 commandCode) override {
        return m_others->SetCommandCode(commandCode);
    }
    HRESULT STDMETHODCALLTYPE GetValue(UINT64 key, VARIANT* value) override {
        const auto maker = m_makers.find(key);
        return maker == m_makers.end() ? m_others->GetValue(key, value) : maker->second(*value);
    }
    HRESULT STDMETHODCALLTYPE SetValue(UINT64 key, VARIANT* value) override {
        return m_others->SetValue(key, value);
    }
    HRESULT STDMETHODCALLTYPE RemoveValue(UINT64 key) override {
        return m_others->RemoveValue(key);
    }
    HRESULT STDMETHODCALLTYPE GetKeys(VARIANT* keys) override { return m_others->GetKeys(keys); }

private:
    CComPtr<CTslParamContainer> m_others;
    std::map<UINT64, Maker> m_makers;
};

} // namespace tsl::test
