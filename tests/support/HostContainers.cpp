#include "tests/support/HostContainers.h"

#include "base/Hresult.h"
#include "tests/support/ForwardingContainer.h"

namespace tsl::test {

namespace {

class CountedContainer final : public CountedForwardingContainer {
public:
    explicit CountedContainer(HostContainers& owner)
        : CountedForwardingContainer(CTslParamContainer::Create()), m_owner(owner) {
        ++m_owner.live;
    }

    HRESULT STDMETHODCALLTYPE SetCommandCode(UINT64 code) override {
        m_owner.calls.push_back(0);
        const HRESULT step = m_owner.TakeStep();
        return FAILED(step) ? step : CountedForwardingContainer::SetCommandCode(code);
    }
    HRESULT STDMETHODCALLTYPE SetValue(UINT64 key, VARIANT* value) override {
        m_owner.calls.push_back(key);
        const HRESULT step = m_owner.TakeStep();
        return FAILED(step) ? step : CountedForwardingContainer::SetValue(key, value);
    }

private:
    ~CountedContainer() override { --m_owner.live; }

    HostContainers& m_owner;
};

} // namespace

ClassRegistration::ClassRegistration(REFCLSID clsid, IUnknown* factory) {
    const HRESULT registered =
        CoRegisterClassObject(clsid, factory, CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, &m_cookie);
    if (FAILED(registered)) throw CHresultError(registered);
}

ClassRegistration::~ClassRegistration() {
    CoRevokeClassObject(m_cookie);
}

void HostContainers::Restart(std::map<int, HRESULT> chosenFailures) {
    failures = std::move(chosenFailures);
    steps = 0;
    created = 0;
    calls.clear();
}

HRESULT HostContainers::TakeStep() {
    const auto failure = failures.find(++steps);
    return failure == failures.end() ? S_OK : failure->second;
}

HRESULT HostContainers::QueryInterface(REFIID asked, void** result) {
    const bool known = asked == IID_IUnknown || asked == IID_IClassFactory;
    *result = known ? this : nullptr;
    return known ? S_OK : E_NOINTERFACE;
}

HRESULT HostContainers::CreateInstance(IUnknown* outerObject, REFIID asked, void** result) {
    *result = nullptr;
    outer = outerObject;
    iid = asked;
    const HRESULT step = TakeStep();
    if (FAILED(step)) return step;
    ++created;
    return CComPtr<CountedContainer>::FromOwned(new CountedContainer(*this))
        ->QueryInterface(asked, result);
}

} // namespace tsl::test
