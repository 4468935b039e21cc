// Makes a class of the console host creatable inside this process, so that the component finds it
// where every host has its own: by CoCreateInstance.
#pragma once

#include <windows.h>

#include <unknwn.h>

namespace tsl {

// Gives a new object, or one that is there, with a reference of the caller's.
using HostObjectCreator = HRESULT (*)(REFIID iid, void** result);

// The class factory of a class. References to it are not counted: whoever registers it owns it.
class CHostClassFactory final : public IClassFactory {
public:
    explicit CHostClassFactory(HostObjectCreator create) noexcept : m_create(create) {}

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** result) override;
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID iid, void** result) override;
    HRESULT STDMETHODCALLTYPE LockServer(BOOL /*lock*/) override { return S_OK; }

private:
    HostObjectCreator m_create;
};

// Registers the class while it lives. REQUIRES: COM is initialised on the thread. Throws the
// failure of the registration.
class CHostClassRegistration {
public:
    CHostClassRegistration(REFCLSID clsid, HostObjectCreator create);
    CHostClassRegistration(const CHostClassRegistration&) = delete;
    CHostClassRegistration& operator=(const CHostClassRegistration&) = delete;
    ~CHostClassRegistration() { CoRevokeClassObject(m_cookie); }

private:
    CHostClassFactory m_factory;
    DWORD m_cookie = 0;
};

} // namespace tsl
