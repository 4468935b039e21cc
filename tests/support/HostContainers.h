// The host's container class for a test: counts what is alive, notes each call, and fails at chosen
// steps. A step is a creation, a stamping or a setting; steps are counted from 1 over all
// containers.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "base/ComPtr.h"
#include "component/host/ITslParamContainer.h"

namespace tsl::test {

// Registers a class object of the process while it lives.
class ClassRegistration {
public:
    // Throws the failure of the registration.
    ClassRegistration(REFCLSID clsid, IUnknown* factory);
    ClassRegistration(const ClassRegistration&) = delete;
    ClassRegistration& operator=(const ClassRegistration&) = delete;
    ~ClassRegistration();

private:
    DWORD m_cookie = 0;
};

// References to it are not counted; it must outlive its containers.
class HostContainers final : public IClassFactory {
public:
    std::map<int, HRESULT> failures;
    int steps = 0;
    int created = 0;
    int live = 0;
    // What was set on all containers, in order: 0 for a stamping, else the key.
    std::vector<UINT64> calls;
    // What the last creation was asked for.
    IUnknown* outer = nullptr;
    IID iid{};

    // Forgets what was counted, but for what is alive, and fails as told from now on.
    void Restart(std::map<int, HRESULT> chosenFailures = {});

    // Counts a step and returns what becomes of it.
    HRESULT TakeStep();

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID asked, void** result) override;
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outerObject, REFIID asked,
                                             void** result) override;
    HRESULT STDMETHODCALLTYPE LockServer(BOOL /*lock*/) override { return S_OK; }
};

} // namespace tsl::test
