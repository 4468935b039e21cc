#include "console/HostClass.h"

#include "base/Hresult.h"

namespace tsl {

HRESULT CHostClassFactory::QueryInterface(REFIID iid, void** result) {
    if (!result) return E_POINTER;
    const bool known = iid == IID_IUnknown || iid == IID_IClassFactory;
    *result = known ? this : nullptr;
    return known ? S_OK : E_NOINTERFACE;
}

HRESULT CHostClassFactory::CreateInstance(IUnknown* outer, REFIID iid, void** result) {
    return AtBoundary([&] {
        if (!result) return E_POINTER;
        *result = nullptr;
        if (outer) return CLASS_E_NOAGGREGATION;
        return m_create(iid, result);
    });
}

CHostClassRegistration::CHostClassRegistration(REFCLSID clsid, HostObjectCreator create)
    : m_factory(create) {
    const HRESULT registered = CoRegisterClassObject(clsid, &m_factory, CLSCTX_INPROC_SERVER,
                                                     REGCLS_MULTIPLEUSE, &m_cookie);
    if (FAILED(registered)) throw CHresultError(registered);
}

} // namespace tsl
