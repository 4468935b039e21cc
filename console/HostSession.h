// A host of one plug-in object: loads the component, hands out ids and reports actions. Used by one
// thread. Every failure is a CFailure.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "component/host/Identities.h"
#include "console/ComInitialization.h"
#include "console/HostAction.h"
#include "console/HostClass.h"
#include "console/PluginLibrary.h"

namespace tsl {

class CHostSession {
public:
    // Loads the component from the path; where that is empty, from beside the executable, or, when
    // it does not lie there, the first plug-in of the engine's list that is enabled and can be
    // created.
    explicit CHostSession(const std::wstring& pluginPath);

    // The next record id.
    UINT32 NextRecordId();

    // Takes an id for the action, reports it and returns the id.
    UINT32 Record(const HostAction& action);

    // Reports the action under an id that the caller answers for; not 0.
    void RecordAs(const HostAction& action, UINT32 id);

    // The log kind that queries and deletions go by.
    void SetLogKind(UINT32 kind) { m_plugin->SetRecordingEnabled(kind); }

    // The containers that a query answers with; none for an empty answer.
    using Answer = std::vector<CComPtr<ITslParamContainer>>;
    Answer Query(UINT64 commandCode, ITslParamContainer& arguments);

    void Delete(ITslParamContainer& arguments);

private:
    void LoadPlugin(const std::wstring& pluginPath);

    // Objects go before the library, the library before COM.
    CComInitialization m_com;
    CHostClassRegistration m_containerClass{CLSID_TslParamContainer, CreateParamContainer};
    std::optional<CPluginLibrary> m_library;
    CComPtr<ITslPluginDb2> m_plugin;
};

} // namespace tsl
