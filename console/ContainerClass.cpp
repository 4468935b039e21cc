#include "console/ContainerClass.h"

#include "component/host/Identities.h"
#include "console/ParamContainer.h"

namespace tsl {

namespace {

// There is one, for the life of the process; its references are not counted.
class CContainerFactory final : public IClassFactory {
public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** result) override {
        if (!result) return E_POINTER;
        const bool known = iid == IID_IUnknown || iid == IID_IClassFactory;
        *result = known ? this : nullptr;
        return known ? S_OK : E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }

    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID iid, void** result) override {
        return AtBoundary([&] {
            if (!result) return E_POINTER;
            *result = nullptr;
            if (outer) return CLASS_E_NOAGGREGATION;
            return CTslParamContainer::Create()->QueryInterface(iid, result);
        });
    }
    HRESULT STDMETHODCALLTYPE LockServer(BOOL /*lock*/) override { return S_OK; }
};

constinit CContainerFactory g_factory;

} // namespace

CContainerClassRegistration::CContainerClassRegistration() {
    const HRESULT registered = CoRegisterClassObject(
        CLSID_TslParamContainer, &g_factory, CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, &m_cookie);
    if (FAILED(registered)) throw CHresultError(registered);
}

CContainerClassRegistration::~CContainerClassRegistration() {
    CoRevokeClassObject(m_cookie);
}

} // namespace tsl
