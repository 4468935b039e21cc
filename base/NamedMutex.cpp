#include "base/NamedMutex.h"

namespace tsl {

CHandle OpenSharedMutex(const wchar_t* name) noexcept {
    SECURITY_DESCRIPTOR descriptor;
    InitializeSecurityDescriptor(&descriptor, SECURITY_DESCRIPTOR_REVISION);
    SetSecurityDescriptorDacl(&descriptor, /*daclPresent=*/TRUE, /*dacl=*/nullptr,
                              /*daclDefaulted=*/FALSE);
    SECURITY_ATTRIBUTES attributes{};
    attributes.nLength = 1; // the length that all versions hand in; the system does not read it
    attributes.lpSecurityDescriptor = &descriptor;
    attributes.bInheritHandle = FALSE;
    return CHandle(CreateMutexW(&attributes, /*initialOwner=*/FALSE, name));
}

CNamedMutex::CNamedMutex(const wchar_t* name) noexcept : m_handle(OpenSharedMutex(name)) {}

CMutexGuard::CMutexGuard(const CNamedMutex& mutex, DWORD timeoutMilliseconds) noexcept {
    const HANDLE handle = mutex.Handle();
    if (!handle) return;
    if (WaitForSingleObject(handle, timeoutMilliseconds) == WAIT_OBJECT_0) m_held = handle;
}

void CMutexGuard::Release() noexcept {
    if (m_held) ReleaseMutex(m_held);
    m_held = nullptr;
}

} // namespace tsl
