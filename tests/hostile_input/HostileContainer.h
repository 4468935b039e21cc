// A host's container that answers some keys, and the request for its keys, with nonsense, and the
// others like any container. It does so again and again in the same way while it lives.
#pragma once

#include "console/Arrays.h"
#include "tests/hostile_input/HostileValues.h"
#include "tests/support/Containers.h"

namespace tsl::test {

// What it fails with.
inline constexpr HRESULT kHostFailures[] = {E_ACCESSDENIED, E_UNEXPECTED, RPC_E_DISCONNECTED};

class HostileContainer final : public ITslParamContainer {
public:
    // The values, and the object inside them, must outlive it.
    HostileContainer(ContainerBuilder others, HostileValues& values, Chance& chance)
        : m_others(others.Get()), m_values(values), m_seed(chance.Bits()),
          m_keysAnswer(chance.Below(16)), m_queryAnswer(chance.Below(32)),
          m_spoiledAmong(2 + chance.Below(8)) {}

    // References that others hold.
    ULONG Held() const { return m_references - 1; }
    // Whether it says that it is no container.
    bool IsNone() const { return m_queryAnswer < 2; }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** result) override;
    ULONG STDMETHODCALLTYPE AddRef() override { return ++m_references; }
    ULONG STDMETHODCALLTYPE Release() override { return --m_references; }
    HRESULT STDMETHODCALLTYPE GetCommandCode(UINT64*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE SetCommandCode(UINT64) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetValue(UINT64 key, VARIANT* value) override;
    HRESULT STDMETHODCALLTYPE SetValue(UINT64, VARIANT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE RemoveValue(UINT64) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetKeys(VARIANT* keys) override;

private:
    CComPtr<CTslParamContainer> m_others;
    HostileValues& m_values;
    const UINT64 m_seed;
    const size_t m_keysAnswer;
    const size_t m_queryAnswer;
    const size_t m_spoiledAmong; // one key in so many
    ULONG m_references = 1;
};

} // namespace tsl::test
