// The plug-in object: what a host creates and drives. Each object has a store of its own; the
// recording switch is one for the process. Threading model "Both": callable from any apartment, by
// any number of threads at once, and by a host that is itself being called. Each call works on what
// was so when it came in: its own table, and the log kind of the object at that moment.
#pragma once

#include <optional>

#include "base/ComPtr.h"
#include "component/CommandTable.h"
#include "component/com/ComCoClass.h"
#include "component/host/ITslHost.h"
#include "component/host/ITslPluginDb.h"
#include "component/host/Identities.h"

namespace tsl {

class CPluginDb : public CComObjectRootEx<CComMultiThreadModel>,
                  public CComCoClass<CPluginDb, &CLSID_PluginDb>,
                  public ITslPluginDb2 {
public:
    using ThreadModel = CComMultiThreadModel;

    // Builds the store. Throws when memory is exhausted; a missing engine is no failure.
    HRESULT FinalConstruct();
    // Tears the store down, then lets go of the host.
    void FinalRelease() noexcept;
    IUnknown* FindInterface(REFIID iid) noexcept;

    HRESULT STDMETHODCALLTYPE Notify(UINT64 commandCode, IUnknown* parameters) override;
    HRESULT STDMETHODCALLTYPE Request(UINT64 commandCode, IUnknown* parameters, IUnknown* unused,
                                      VARIANT* result) override;
    HRESULT STDMETHODCALLTYPE Delete(UINT64 commandCode, IUnknown* parameters) override;
    HRESULT STDMETHODCALLTYPE Reserved1() override { return DoNothing(); }
    HRESULT STDMETHODCALLTYPE Reserved2() override { return DoNothing(); }
    HRESULT STDMETHODCALLTYPE SetHost(IUnknown* host) override;
    HRESULT STDMETHODCALLTYPE SetRecordingEnabled(UINT32 flag) override;

private:
    HRESULT Run(CommandMethod method, UINT64 commandCode, IUnknown* parameters, VARIANT* result);
    static HRESULT DoNothing() noexcept { return S_OK; }

    // There from the construction to the destruction.
    std::optional<CActionLogStore> m_store;
    // Under the object's lock, which is never held while the host is called: the flag that this
    // object was given last, 0 before that, and the host.
    UINT32 m_logKind = 0;
    CComPtr<ITslHost> m_host;
};

} // namespace tsl
