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

void CNamedMutex::Acquire(DWORD timeoutMilliseconds) noexcept {
    if (m_held || !m_handle) return;
    m_held = WaitForSingleObject(m_handle.Get(), timeoutMilliseconds) == WAIT_OBJECT_0;
}

void CNamedMutex::Release() noexcept {
    if (!m_held) return;
    ReleaseMutex(m_handle.Get());
    m_held = false;
}

} // namespace tsl
