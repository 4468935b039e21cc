// The class factory of one class. There is one per class, made with the module and never destroyed,
// so the same factory answers every request. Each reference to it keeps the module loaded. Callable
// from any thread.
#pragma once

#include <unknwn.h>

#include "component/com/ComModule.h"
#include "component/com/ComObjectRoot.h"

namespace tsl {

class CComClassFactory final : public IClassFactory {
public:
    using Creator = HRESULT (*)(IUnknown* outer, REFIID iid, void** result);

    explicit constexpr CComClassFactory(Creator creator) noexcept : m_creator(creator) {}

    IUnknown* FindInterface(REFIID iid) noexcept {
        return iid == IID_IUnknown || iid == IID_IClassFactory ? this : nullptr;
    }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** result) override {
        return QueryInterfaceOf(*this, iid, result);
    }
    ULONG STDMETHODCALLTYPE AddRef() override {
        g_comModule.Lock();
        return CComMultiThreadModel::Increment(&m_references);
    }
    ULONG STDMETHODCALLTYPE Release() override {
        const ULONG references = CComMultiThreadModel::Decrement(&m_references);
        g_comModule.Unlock();
        return references;
    }

    // CLASS_E_NOAGGREGATION when an outer object asks for anything but IUnknown; otherwise what the
    // creation gives. The out-pointer is null after a failure.
    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID iid, void** result) override {
        return AtBoundary([&] {
            if (!result) return E_POINTER;
            *result = nullptr;
            if (outer && iid != IID_IUnknown) return CLASS_E_NOAGGREGATION;
            return m_creator(outer, iid, result);
        });
    }

    HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) override {
        lock ? g_comModule.Lock() : g_comModule.Unlock();
        return S_OK;
    }

private:
    Creator m_creator;
    LONG m_references = 0;
};

} // namespace tsl
