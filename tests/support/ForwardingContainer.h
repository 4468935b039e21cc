// Base of containers that answer a few calls in their own way and leave the rest to a plain one.
#pragma once

#include "component/host/Identities.h"
#include "console/ParamContainer.h"

namespace tsl::test {

// Lives on the stack of the test; references are not counted.
class ForwardingContainer : public ITslParamContainer {
public:
    explicit ForwardingContainer(CComPtr<CTslParamContainer> values)
        : m_values(std::move(values)) {}

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** result) override {
        const bool known = iid == IID_IUnknown || iid == IID_ITslParamContainer;
        *result = known ? this : nullptr;
        return known ? S_OK : E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
    HRESULT STDMETHODCALLTYPE GetCommandCode(UINT64* commandCode) override {
        return m_values->GetCommandCode(commandCode);
    }
    HRESULT STDMETHODCALLTYPE SetCommandCode(UINT64 commandCode) override {
        return m_values->SetCommandCode(commandCode);
    }
    HRESULT STDMETHODCALLTYPE GetValue(UINT64 key, VARIANT* value) override {
        return m_values->GetValue(key, value);
    }
    HRESULT STDMETHODCALLTYPE SetValue(UINT64 key, VARIANT* value) override {
        return m_values->SetValue(key, value);
    }
    HRESULT STDMETHODCALLTYPE RemoveValue(UINT64 key) override {
        return m_values->RemoveValue(key);
    }
    HRESULT STDMETHODCALLTYPE GetKeys(VARIANT* keys) override { return m_values->GetKeys(keys); }

private:
    CComPtr<CTslParamContainer> m_values;
};

// On the heap: counts its references and goes with the last.
class CountedForwardingContainer : public ForwardingContainer {
public:
    using ForwardingContainer::ForwardingContainer;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** result) override {
        const HRESULT found = ForwardingContainer::QueryInterface(iid, result);
        if (found == S_OK) AddRef();
        return found;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++m_references; }
    ULONG STDMETHODCALLTYPE Release() override {
        const ULONG references = --m_references;
        if (references == 0) delete this;
        return references;
    }

protected:
    virtual ~CountedForwardingContainer() = default;

private:
    ULONG m_references = 1;
};

} // namespace tsl::test
