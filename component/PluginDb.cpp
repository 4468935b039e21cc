#include "component/PluginDb.h"

#include <atomic>

#include "component/Module.h"
#include "store/Maintenance.h"

namespace tsl {

namespace {

// The flag that any object of the process was given last; 0 keeps every object from recording.
constinit std::atomic<UINT32> g_recordingSwitch = 0;

} // namespace

HRESULT CPluginDb::FinalConstruct() {
    m_store.emplace(ComponentModule());
    return S_OK;
}

void CPluginDb::FinalRelease() noexcept {
    m_store.reset();
    m_host.Reset();
}

IUnknown* CPluginDb::FindInterface(REFIID iid) noexcept {
    const bool known = iid == IID_IUnknown || iid == IID_ITslPluginDb || iid == IID_ITslPluginDb2;
    return known ? static_cast<ITslPluginDb2*>(this) : nullptr;
}

HRESULT CPluginDb::Run(CommandMethod method, UINT64 commandCode, IUnknown* parameters,
                       VARIANT* result) {
    Lock();
    const bool isRecording = g_recordingSwitch != 0;
    const UINT32 logKind = m_logKind;
    Unlock();
    if (method == CommandMethod::Notify && !isRecording) return E_NOTIMPL;
    const Command* const command = FindCommand(method, commandCode);
    if (!command) return E_NOTIMPL;
    if (!m_store) return E_POINTER; // a host calls back while the object ends
    return RunCommand(*command, *m_store, logKind, parameters, result);
}

HRESULT STDMETHODCALLTYPE CPluginDb::Notify(UINT64 commandCode, IUnknown* parameters) {
    return AtBoundary(
        [&] { return Run(CommandMethod::Notify, commandCode, parameters, /*result=*/nullptr); });
}

HRESULT STDMETHODCALLTYPE CPluginDb::Request(UINT64 commandCode, IUnknown* parameters,
                                             IUnknown* /*unused*/, VARIANT* result) {
    return AtBoundary([&] { return Run(CommandMethod::Request, commandCode, parameters, result); });
}

HRESULT STDMETHODCALLTYPE CPluginDb::Delete(UINT64 commandCode, IUnknown* parameters) {
    return AtBoundary(
        [&] { return Run(CommandMethod::Delete, commandCode, parameters, /*result=*/nullptr); });
}

HRESULT STDMETHODCALLTYPE CPluginDb::SetHost(IUnknown* host) {
    return AtBoundary([&] {
        Lock();
        const bool isHeld = host && host == m_host.Get();
        Unlock();
        if (isHeld) return S_OK;
        CComPtr<ITslHost> held = QueryFor<ITslHost>(host, IID_ITslHost);
        Lock();
        m_host.Swap(held);
        Unlock();
        // The old host is let go last: it may call back into this object.
        return host ? S_OK : S_FALSE;
    });
}

HRESULT STDMETHODCALLTYPE CPluginDb::SetRecordingEnabled(UINT32 flag) {
    return AtBoundary([&] {
        // Both at once: an action that comes meanwhile has the old kind or the new one.
        Lock();
        g_recordingSwitch = flag;
        m_logKind = flag;
        Unlock();
        if (!m_store) return S_OK; // a host calls back while the object ends
        // What cannot be converted now is tried again next time.
        AtBoundary([&] { return MaintainStore(*m_store); });
        return S_OK;
    });
}

} // namespace tsl
