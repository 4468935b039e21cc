#include "tslhost/Hardening.h"

#include <windows.h>

#include <bit>

namespace tsl {

namespace {

// Null where this version of the system does not have it.
template <class Function>
Function FindInKernel(const char* name) noexcept {
    return std::bit_cast<Function>(GetProcAddress(GetModuleHandleW(L"kernel32.dll"), name));
}

} // namespace

void HardenProcess() noexcept {
    SetDllDirectoryW(L""); // not in the current folder
    using SetDirectories = BOOL(WINAPI*)(DWORD);
    if (const auto set = FindInKernel<SetDirectories>("SetDefaultDllDirectories"))
        set(LOAD_LIBRARY_SEARCH_SYSTEM32);

    using SetPolicy = BOOL(WINAPI*)(PROCESS_MITIGATION_POLICY, void*, SIZE_T);
    if (const auto set = FindInKernel<SetPolicy>("SetProcessMitigationPolicy")) {
        PROCESS_MITIGATION_REDIRECTION_TRUST_POLICY links{};
        links.EnforceRedirectionTrust = 1;
        set(ProcessRedirectionTrustPolicy, &links, sizeof links);
    }
}

} // namespace tsl
