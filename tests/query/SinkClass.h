// The host's property sink for a test: notes what it is given, or fails.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "component/host/ITslContentPropertySink.h"
#include "component/host/Identities.h"

namespace tsl::test {

// The one sink that its own class object gives out. Counts the references to the sink.
class SinkClass final : public IClassFactory {
public:
    HRESULT creationResult = S_OK;
    HRESULT putResult = S_OK;
    std::vector<std::pair<UINT64, std::wstring>> texts;

    ULONG Held() const { return m_sink.references; }

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
        return FAILED(creationResult) ? creationResult : m_sink.QueryInterface(asked, result);
    }
    HRESULT STDMETHODCALLTYPE LockServer(BOOL /*lock*/) override { return S_OK; }

private:
    struct Sink final : public ITslContentPropertySink {
        explicit Sink(SinkClass& sinkClass) : owner(sinkClass) {}

        HRESULT STDMETHODCALLTYPE QueryInterface(REFIID asked, void** result) override {
            const bool known = asked == IID_IUnknown || asked == IID_ITslContentPropertySink;
            *result = known ? this : nullptr;
            if (known) AddRef();
            return known ? S_OK : E_NOINTERFACE;
        }
        ULONG STDMETHODCALLTYPE AddRef() override { return ++references; }
        ULONG STDMETHODCALLTYPE Release() override { return --references; }
        HRESULT STDMETHODCALLTYPE PutText(UINT64 itemId, BSTR text) override {
            owner.texts.emplace_back(itemId, std::wstring(text, SysStringLen(text)));
            return owner.putResult;
        }

        SinkClass& owner;
        ULONG references = 0;
    };

    Sink m_sink{*this};
};

} // namespace tsl::test
