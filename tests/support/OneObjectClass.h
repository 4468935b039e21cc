// A host's class whose creations all give the one object that a test made for it. It may refuse,
// and it may call back before it answers.
#pragma once

#include <windows.h>

#include <unknwn.h>

#include <functional>

namespace tsl::test {

// References to it are not counted: whoever registers it owns it.
class OneObjectClass : public IClassFactory {
public:
    // A failure here is what a creation answers.
    HRESULT creationResult = S_OK;
    // How often an object was asked for.
    int creations = 0;
    // Runs inside each creation, before the object is given.
    std::function<void()> onCreation;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID asked, void** result) override {
        const bool known = asked == IID_IUnknown || asked == IID_IClassFactory;
        *result = known ? this : nullptr;
        return known ? S_OK : E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID asked,
                                             void** result) override {
        *result = nullptr;
        if (outer) return CLASS_E_NOAGGREGATION;
        ++creations;
        if (onCreation) onCreation();
        return FAILED(creationResult) ? creationResult : TheObject().QueryInterface(asked, result);
    }
    HRESULT STDMETHODCALLTYPE LockServer(BOOL /*lock*/) override { return S_OK; }

protected:
    virtual IUnknown& TheObject() = 0;
};

} // namespace tsl::test
