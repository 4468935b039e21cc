#include "console/HostSession.h"

#include "base/ArrayView.h"
#include "base/Variant.h"
#include "component/host/CommandCodes.h"
#include "component/host/Identities.h"
#include "component/host/ParamKeys.h"
#include "console/Failure.h"
#include "console/RegisteredPlugins.h"
#include "console/StorePlace.h"
#include "console/Text.h"
#include "files/Paths.h"

namespace tsl {

namespace {

constexpr UINT32 kOrdinaryLogKind = 1;
constexpr wchar_t kPluginFileName[] = L"TslIfDbActionLog.dll";

// Full path: a relative one would be searched for elsewhere than the user means.
std::wstring FullPluginPath(const std::wstring& pluginPath) {
    return pluginPath.empty() ? ProgramFolder() + kPluginFileName : FullPath(pluginPath);
}

// The first enabled plug-in of the engine's list that can be created.
CComPtr<ITslPluginDb2> CreateFirstRegistered() {
    std::optional<CFailure> failure;
    for (const RegisteredPlugin& plugin : ReadRegisteredPlugins()) {
        if (!plugin.IsEnabled()) continue;
        CComPtr<ITslPluginDb2> created;
        const HRESULT result = CreateRegisteredPlugin(plugin, created);
        if (SUCCEEDED(result)) return created;
        if (!failure) {
            failure.emplace("cannot load plug-in", plugin.classText, result);
        }
    }
    if (failure) throw *failure;
    throw CFailure(ExitCode::Denied, "there is no TslIfDbActionLog.dll beside tslhost, and no "
                                     "enabled database plug-in is registered");
}

UINT32 RecordIdOf(const CVariant& answer) {
    CComPtr<ITslParamContainer> container;
    CVariant id;
    if (answer.Type() == VT_UNKNOWN) {
        container = QueryFor<ITslParamContainer>(answer.Get().punkVal, IID_ITslParamContainer);
    }
    if (!container || container->GetValue(kKeyRecordId, id.Address()) != S_OK ||
        id.Type() != VT_UI4) {
        throw CFailure(ExitCode::Denied, "the component's answer holds no record id");
    }
    return id.Get().ulVal;
}

} // namespace

CHostSession::CHostSession(const std::wstring& pluginPath) {
    // Where there is none, the component would work in the current directory.
    StoreFolderPath();
    LoadPlugin(pluginPath);
    // First of all: an older store must be converted before it hands out ids.
    SetLogKind(kOrdinaryLogKind);
}

void CHostSession::LoadPlugin(const std::wstring& pluginPath) {
    const std::wstring path = FullPluginPath(pluginPath);
    if (pluginPath.empty() && !FileExists(path)) {
        m_plugin = CreateFirstRegistered();
        return;
    }
    try {
        m_library.emplace(path);
        m_plugin = m_library->CreatePlugin();
    } catch (const CHresultError& error) {
        throw CFailure("cannot load", path, error.Result());
    }
}

UINT32 CHostSession::NextRecordId() {
    const CComPtr<CTslParamContainer> request = CTslParamContainer::Create();
    CVariant answer;
    const HRESULT result = m_plugin->Request(kCommandNextRecordId, request.Get(),
                                             /*unused=*/nullptr, answer.Address());
    if (FAILED(result)) throw CFailure("cannot take an id from", CounterFilePath(), result);
    return RecordIdOf(answer);
}

UINT32 CHostSession::Record(const HostAction& action) {
    // The counter wraps around, and a record of id 0 would be skipped.
    UINT32 id = NextRecordId();
    if (id == 0) id = NextRecordId();
    RecordAs(action, id);
    return id;
}

void CHostSession::RecordAs(const HostAction& action, UINT32 id) {
    m_plugin->SetRecordingEnabled(action.kind);
    const HRESULT result = m_plugin->Notify(kCommandRecordAction, MakeContainer(action, id).Get());
    if (FAILED(result)) {
        // What became of the action log is not told; the record may be in it.
        throw CFailure("cannot record action " + std::to_string(id) + " (" +
                           Abridged(ToUtf8(action.name)) + ") in",
                       ReplayLogPath(), result);
    }
}

CHostSession::Answer CHostSession::Query(UINT64 commandCode, ITslParamContainer& arguments) {
    CVariant answer;
    const HRESULT result =
        m_plugin->Request(commandCode, &arguments, /*unused=*/nullptr, answer.Address());
    Answer containers;
    // How an empty list of ids is answered.
    const bool asksForIds = commandCode == kCommandQueryIds || commandCode == kCommandQueryAllIds;
    if (asksForIds && result == E_INVALIDARG) return containers;
    if (FAILED(result)) throw CFailure("cannot read", ActionLogPath(), result);
    CValueView<IUnknown*> view;
    if (FAILED(view.Open(*answer.Address()))) {
        throw CFailure(ExitCode::Denied, "the component's answer is no list of containers");
    }
    for (IUnknown* const element : view.Values()) {
        auto container = QueryFor<ITslParamContainer>(element, IID_ITslParamContainer);
        if (container) containers.push_back(std::move(container));
    }
    return containers;
}

void CHostSession::Delete(ITslParamContainer& arguments) {
    const HRESULT result = m_plugin->Delete(kCommandDeleteRecords, &arguments);
    if (FAILED(result)) throw CFailure("cannot delete from", ActionLogPath(), result);
}

} // namespace tsl
