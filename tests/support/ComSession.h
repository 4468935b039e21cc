// COM on the test's thread, with the host's container class registered.
#pragma once

#include <objbase.h>

#include "base/Hresult.h"
#include "console/ContainerClass.h"

namespace tsl::test {

// Initialises COM while it lives.
class ComInitialization {
public:
    ComInitialization() {
        const HRESULT result = CoInitializeEx(nullptr, COINIT_MULTITHREADED);
        if (FAILED(result)) throw CHresultError(result);
    }
    ComInitialization(const ComInitialization&) = delete;
    ComInitialization& operator=(const ComInitialization&) = delete;
    ~ComInitialization() { CoUninitialize(); }
};

struct ComSession {
    ComInitialization com;
    CContainerClassRegistration containerClass;
};

} // namespace tsl::test
