#include "tests/calls/CallingHost.h"

#include "base/ArrayView.h"
#include "component/host/ITslContentPropertySink.h"
#include "component/host/Identities.h"
#include "console/ParamContainer.h"
#include "console/Text.h"
#include "tests/support/Containers.h"
#include "tests/support/ForwardingContainer.h"

namespace tsl::test {

namespace {

class CallingContainer final : public CountedForwardingContainer {
public:
    CallingContainer(CallingHost& host, CComPtr<CTslParamContainer> values)
        : CountedForwardingContainer(std::move(values)), m_host(host) {}

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** result) override {
        m_host.Enter(HostMethod::QueryInterface);
        return CountedForwardingContainer::QueryInterface(iid, result);
    }
    HRESULT STDMETHODCALLTYPE SetCommandCode(UINT64 code) override {
        m_host.Enter(HostMethod::SetCommandCode);
        return CountedForwardingContainer::SetCommandCode(code);
    }
    HRESULT STDMETHODCALLTYPE GetValue(UINT64 key, VARIANT* value) override {
        m_host.Enter(HostMethod::GetValue);
        return CountedForwardingContainer::GetValue(key, value);
    }
    HRESULT STDMETHODCALLTYPE SetValue(UINT64 key, VARIANT* value) override {
        m_host.Enter(HostMethod::SetValue);
        return CountedForwardingContainer::SetValue(key, value);
    }
    HRESULT STDMETHODCALLTYPE GetKeys(VARIANT* keys) override {
        m_host.Enter(HostMethod::GetKeys);
        return CountedForwardingContainer::GetKeys(keys);
    }

private:
    CallingHost& m_host;
};

class CallingSink final : public ITslContentPropertySink {
public:
    explicit CallingSink(CallingHost& host) : m_host(host) {}

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** result) override {
        const bool known = iid == IID_IUnknown || iid == IID_ITslContentPropertySink;
        *result = known ? this : nullptr;
        return known ? S_OK : E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
    HRESULT STDMETHODCALLTYPE PutText(UINT64 itemId, BSTR text) override {
        m_host.Enter(HostMethod::PutText);
        m_host.sunk += std::to_string(itemId) + "=" + ToUtf8(text) + ";";
        return S_OK;
    }

private:
    CallingHost& m_host;
};

class CallingHostObject final : public ITslHost {
public:
    explicit CallingHostObject(CallingHost& host) : m_host(host) {}

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** result) override {
        m_host.Enter(HostMethod::QueryInterface);
        const bool known = iid == IID_IUnknown || iid == IID_ITslHost;
        *result = known ? this : nullptr;
        if (known) AddRef();
        return known ? S_OK : E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++m_references; }
    ULONG STDMETHODCALLTYPE Release() override {
        const ULONG references = --m_references;
        if (references > 0) return references;
        m_host.Enter(HostMethod::ReleaseHost);
        delete this;
        return 0;
    }

private:
    ~CallingHostObject() = default;

    CallingHost& m_host;
    ULONG m_references = 1;
};

std::string ValueText(const VARIANT& value) {
    const std::optional<std::wstring> text = TextOf(value);
    return text ? ToUtf8(*text) : "type " + std::to_string(value.vt);
}

std::string ContainerText(IUnknown* object) {
    const auto container = QueryFor<ITslParamContainer>(object, IID_ITslParamContainer);
    if (!container) return "no container";
    CVariant keys;
    CValueView<ULONGLONG> list;
    if (FAILED(container->GetKeys(keys.Address())) || FAILED(list.Open(*keys.Address()))) {
        return "no keys";
    }
    std::string text = "{";
    for (const ULONGLONG key : list.Values()) {
        CVariant value;
        container->GetValue(key, value.Address());
        char name[24];
        std::snprintf(name, sizeof name, " %llx=", key);
        text += name + ValueText(value.Get());
    }
    return text + " }";
}

} // namespace

const char* NameOf(HostMethod method) noexcept {
    constexpr const char* kNames[] = {
        "QueryInterface",    "GetValue",          "GetKeys",     "SetCommandCode",
        "SetValue",          "CreateInstance",    "PutText",     "FindItems",
        "GetItemProperties", "SetItemProperties", "ReleaseHost",
    };
    return kNames[static_cast<size_t>(method)];
}

// One factory for the three classes: the interface that is asked for tells them apart.
class CallingHost::Factory final : public IClassFactory {
public:
    Factory(CallingHost& host, IUnknown* object) : m_host(host), m_object(object) {}

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID asked, void** result) override {
        const bool known = asked == IID_IUnknown || asked == IID_IClassFactory;
        *result = known ? this : nullptr;
        return known ? S_OK : E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* /*outer*/, REFIID asked,
                                             void** result) override {
        m_host.Enter(HostMethod::CreateInstance);
        *result = nullptr;
        if (m_host.givesNoObject) return S_OK;
        return m_object ? m_object->QueryInterface(asked, result)
                        : m_host.CreateContainer(asked, result);
    }
    HRESULT STDMETHODCALLTYPE LockServer(BOOL /*lock*/) override { return S_OK; }

private:
    CallingHost& m_host;
    IUnknown* m_object; // null for new containers
};

struct CallingHost::Classes {
    explicit Classes(CallingHost& host)
        : sink(host), containers(host, nullptr), sinks(host, &sink),
          stores(host, &host.contentStore) {}

    CallingSink sink;
    Factory containers;
    Factory sinks;
    Factory stores;
    ClassRegistration containerClass{CLSID_TslParamContainer, &containers};
    ClassRegistration sinkClass{CLSID_TslContentPropertySink, &sinks};
    ClassRegistration storeClass{CLSID_TslContentStore, &stores};
};

CallingHost::CallingHost() : m_classes(std::make_shared<Classes>(*this)) {
    contentStore.Hold(7, {ContainerBuilder().Text(kKeyPropertyFirstText, L"old one").Get().Get()});
    contentStore.onCall = [this] {
        const wchar_t first = contentStore.calls.back().front();
        Enter(first == L'f'   ? HostMethod::FindItems
              : first == L'g' ? HostMethod::GetItemProperties
                              : HostMethod::SetItemProperties);
    };
}

void CallingHost::Enter(HostMethod method) {
    if (m_isInside || s_quiet > 0 || !onCall) return;
    m_isInside = true;
    const struct Leaver {
        bool& isInside;
        ~Leaver() { isInside = false; } // also when it raises
    } leaver{m_isInside};
    onCall(method);
}

CComPtr<ITslParamContainer> CallingHost::Argument(CComPtr<CTslParamContainer> values) {
    return CComPtr<ITslParamContainer>::FromOwned(new CallingContainer(*this, std::move(values)));
}

CComPtr<ITslHost> CallingHost::HostObject() {
    return CComPtr<ITslHost>::FromOwned(new CallingHostObject(*this));
}

HRESULT CallingHost::CreateContainer(REFIID iid, void** result) {
    return Argument(CTslParamContainer::Create())->QueryInterface(iid, result);
}

std::string AnswerText(const VARIANT& answer) {
    const CallingHost::Quiet quiet;
    if (answer.vt == VT_EMPTY) return "nothing";
    if (answer.vt == VT_UNKNOWN) return ContainerText(answer.punkVal);
    VARIANT shared = answer; // a view only reads it
    CValueView<IUnknown*> list;
    if (FAILED(list.Open(shared))) return ValueText(answer);
    std::string text = std::to_string(list.Values().size()) + ":";
    for (IUnknown* const container : list.Values())
        text += " " + ContainerText(container);
    return text;
}

} // namespace tsl::test
