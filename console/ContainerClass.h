// Makes the console host's parameter container creatable inside this process, so that the component
// finds it where every host has its own: by CoCreateInstance.
#pragma once

#include <windows.h>

namespace tsl {

// Registers the class while it lives. REQUIRES: COM is initialised on the thread. Throws the
// failure of the registration.
class CContainerClassRegistration {
public:
    CContainerClassRegistration();
    CContainerClassRegistration(const CContainerClassRegistration&) = delete;
    CContainerClassRegistration& operator=(const CContainerClassRegistration&) = delete;
    ~CContainerClassRegistration();

private:
    DWORD m_cookie = 0;
};

} // namespace tsl
