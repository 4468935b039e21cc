// COM on the test's thread, with the host's container class registered.
#pragma once

#include "component/host/Identities.h"
#include "console/ComInitialization.h"
#include "console/HostClass.h"
#include "console/ParamContainer.h"

namespace tsl::test {

struct ComSession {
    CComInitialization com;
    CHostClassRegistration containerClass{CLSID_TslParamContainer, CreateParamContainer};
};

} // namespace tsl::test
