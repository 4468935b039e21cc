// Owner of an activation context that is made from a manifest resource and stays active while the
// owner lives. Used and destroyed on one thread.
#pragma once

#include <windows.h>

#include <string>

namespace tsl {

class CActivationContext {
public:
    // The manifest resource of the module whose file is at modulePath.
    CActivationContext(HMODULE module, const std::wstring& modulePath,
                       int manifestResource) noexcept {
        ACTCTXW request{};
        request.cbSize = sizeof request;
        request.dwFlags = ACTCTX_FLAG_RESOURCE_NAME_VALID | ACTCTX_FLAG_HMODULE_VALID;
        request.lpSource = modulePath.c_str();
        request.lpResourceName = MAKEINTRESOURCEW(manifestResource);
        request.hModule = module;
        m_context = CreateActCtxW(&request);
        if (m_context != INVALID_HANDLE_VALUE) m_active = ActivateActCtx(m_context, &m_cookie) != 0;
    }
    CActivationContext(const CActivationContext&) = delete;
    CActivationContext& operator=(const CActivationContext&) = delete;
    ~CActivationContext() {
        if (m_active) DeactivateActCtx(0, m_cookie);
        if (m_context != INVALID_HANDLE_VALUE) ReleaseActCtx(m_context);
    }

    bool IsActive() const noexcept { return m_active; }

private:
    HANDLE m_context = INVALID_HANDLE_VALUE;
    ULONG_PTR m_cookie = 0;
    bool m_active = false;
};

} // namespace tsl
