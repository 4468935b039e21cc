// COM on the test's thread, with the host's container class registered.
#pragma once

#include "console/ComInitialization.h"
#include "console/ContainerClass.h"

namespace tsl::test {

struct ComSession {
    CComInitialization com;
    CContainerClassRegistration containerClass;
};

} // namespace tsl::test
