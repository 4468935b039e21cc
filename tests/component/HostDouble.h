// A host object for SetHost: counts its references and queries, and may call back when it is let
// go.
#pragma once

#include <functional>

#include "component/host/ITslHost.h"
#include "component/host/Identities.h"

namespace tsl::test {

// One reference is the test's own, which keeps it; it is never deleted.
class HostDouble final : public ITslHost {
public:
    ULONG references = 1;
    int queries = 0;
    // What the query for the host interface answers.
    HRESULT queryResult = S_OK;
    // Left in the out-pointer of a query that fails.
    void* leftByFailedQuery = nullptr;
    // Runs inside each Release, before the count goes down.
    std::function<void()> onRelease;

    // References that others hold.
    ULONG Held() const { return references - 1; }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** result) override {
        ++queries;
        const bool known = iid == IID_IUnknown || iid == IID_ITslHost;
        const HRESULT answer = known ? queryResult : E_NOINTERFACE;
        *result = leftByFailedQuery;
        if (FAILED(answer)) return answer;
        *result = static_cast<ITslHost*>(this);
        AddRef();
        return answer;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++references; }
    ULONG STDMETHODCALLTYPE Release() override {
        if (onRelease) onRelease();
        return --references;
    }
};

// Another interface pointer to a host: forwards every call to it.
class HostFace final : public IUnknown {
public:
    explicit HostFace(HostDouble& host) : m_host(host) {}

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** result) override {
        return m_host.QueryInterface(iid, result);
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return m_host.AddRef(); }
    ULONG STDMETHODCALLTYPE Release() override { return m_host.Release(); }

private:
    HostDouble& m_host;
};

} // namespace tsl::test
