// The host's property sink for a test: notes what it is given, or fails.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "component/host/ITslContentPropertySink.h"
#include "component/host/Identities.h"
#include "tests/support/OneObjectClass.h"

namespace tsl::test {

// The class of the sink, with the sink. Counts the references to the sink.
class SinkClass final : public OneObjectClass {
public:
    HRESULT putResult = S_OK;
    std::vector<std::pair<UINT64, std::wstring>> texts;

    ULONG Held() const { return m_sink.references; }

protected:
    IUnknown& TheObject() override { return m_sink; }

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
