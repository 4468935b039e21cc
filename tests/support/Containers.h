// Parameter containers for tests: plain ones that are quickly filled, and one that fails on demand
// and counts its references.
#pragma once

#include <initializer_list>
#include <map>
#include <string>
#include <vector>

#include "component/host/ParamKeys.h"
#include "console/Arrays.h"
#include "console/ParamContainer.h"

namespace tsl::test {

// Fills a container, call by call. Every value is stored under the key given, whatever its type.
class ContainerBuilder {
public:
    ContainerBuilder() : m_container(CTslParamContainer::Create()) {}

    ContainerBuilder& Set(UINT64 key, CVariant value);
    ContainerBuilder& Ui4(UINT64 key, UINT32 value) { return Set(key, CVariant::FromUi4(value)); }
    ContainerBuilder& I4(UINT64 key, INT32 value);
    ContainerBuilder& Ui8(UINT64 key, UINT64 value);
    ContainerBuilder& Date(UINT64 key, DATE value);
    ContainerBuilder& Text(UINT64 key, std::wstring_view value);
    ContainerBuilder& Texts(UINT64 key, std::initializer_list<std::wstring> values);
    ContainerBuilder& Unknown(UINT64 key, IUnknown* value);
    template <class T>
    ContainerBuilder& Array(UINT64 key, std::initializer_list<T> values) {
        return Set(key, MakeArray<T>(std::span<const T>(values.begin(), values.size())));
    }

    CComPtr<CTslParamContainer> Get() const { return m_container; }
    operator CTslParamContainer*() const { return m_container.Get(); }

private:
    CComPtr<CTslParamContainer> m_container;
};

// An action with everything that a record needs: id, name, user 7, application 3, no time.
ContainerBuilder Action(UINT32 recordId, std::wstring_view name);

// Forwards to a plain container but answers chosen keys, and chosen calls, with an HRESULT of the
// test's. Counts its references: one is the test's own.
class ScriptedContainer final : public ITslParamContainer {
public:
    explicit ScriptedContainer(CComPtr<CTslParamContainer> inner) : m_inner(std::move(inner)) {}

    // GetValue of the key returns this and leaves the value untouched.
    std::map<UINT64, HRESULT> getResults;
    // What SetCommandCode, SetValue and GetKeys return instead of working; S_OK lets them work.
    HRESULT setCommandCodeResult = S_OK;
    HRESULT setValueResult = S_OK;
    HRESULT getKeysResult = S_OK;
    // Keys that were read, in order.
    std::vector<UINT64> keysRead;

    ULONG References() const { return m_references; }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** result) override;
    ULONG STDMETHODCALLTYPE AddRef() override { return ++m_references; }
    ULONG STDMETHODCALLTYPE Release() override { return --m_references; }
    HRESULT STDMETHODCALLTYPE GetCommandCode(UINT64* commandCode) override;
    HRESULT STDMETHODCALLTYPE SetCommandCode(UINT64 commandCode) override;
    HRESULT STDMETHODCALLTYPE GetValue(UINT64 key, VARIANT* value) override;
    HRESULT STDMETHODCALLTYPE SetValue(UINT64 key, VARIANT* value) override;
    HRESULT STDMETHODCALLTYPE RemoveValue(UINT64 key) override;
    HRESULT STDMETHODCALLTYPE GetKeys(VARIANT* keys) override;

private:
    CComPtr<CTslParamContainer> m_inner;
    ULONG m_references = 1;
};

} // namespace tsl::test
