// A host process: COM, the host's classes, the component and one plug-in object of it. Used
// by one thread.
#pragma once

#include "component/host/Identities.h"
#include "console/ComInitialization.h"
#include "console/HostClass.h"
#include "console/ParamContainer.h"
#include "console/PluginLibrary.h"

namespace tsl::bench {

// Whatever is measured must work: throws the failure as a CHresultError.
void Require(HRESULT result);

class CHost {
public:
    // Loads the component that lies beside the program. The host's containers are made by create.
    explicit CHost(HostObjectCreator create = CreateParamContainer);

    ITslPluginDb2& Plugin() const noexcept { return *m_plugin; }
    const CPluginLibrary& Library() const noexcept { return m_library; }

    // What the host asks for, which must succeed.
    CVariant Ask(UINT64 commandCode, CTslParamContainer& arguments) const;

private:
    CComInitialization m_com;
    CHostClassRegistration m_containerClass;
    CHostClassRegistration m_sinkClass;
    CPluginLibrary m_library;
    CComPtr<ITslPluginDb2> m_plugin;
};

} // namespace tsl::bench
