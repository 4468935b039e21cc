#include "bench/support/Host.h"

#include "component/host/ITslContentPropertySink.h"
#include "console/StorePlace.h"

namespace tsl::bench {

namespace {

// Takes the texts of taken records and does nothing with them. There is one, for good.
struct Sink final : ITslContentPropertySink {
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** result) override {
        const bool known = iid == IID_IUnknown || iid == IID_ITslContentPropertySink;
        *result = known ? this : nullptr;
        return known ? S_OK : E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
    HRESULT STDMETHODCALLTYPE PutText(UINT64 /*itemId*/, BSTR /*text*/) override { return S_OK; }
};

HRESULT GiveSink(REFIID iid, void** result) {
    static Sink sink;
    return sink.QueryInterface(iid, result);
}

} // namespace

void Require(HRESULT result) {
    if (FAILED(result)) throw CHresultError(result);
}

CHost::CHost(HostObjectCreator create)
    : m_containerClass(CLSID_TslParamContainer, create),
      m_sinkClass(CLSID_TslContentPropertySink, GiveSink),
      m_library(ProgramFolder() + L"TslIfDbActionLog.dll"), m_plugin(m_library.CreatePlugin()) {}

CVariant CHost::Ask(UINT64 commandCode, CTslParamContainer& arguments) const {
    CVariant answer;
    Require(m_plugin->Request(commandCode, &arguments, /*unused=*/nullptr, answer.Address()));
    return answer;
}

} // namespace tsl::bench
