// The critical section of an object. Initialise once before use; any thread may enter it.
#pragma once

#include "base/Hresult.h"

namespace tsl {

class CComCriticalSection {
public:
    CComCriticalSection() noexcept = default;
    CComCriticalSection(const CComCriticalSection&) = delete;
    CComCriticalSection& operator=(const CComCriticalSection&) = delete;
    ~CComCriticalSection() {
        if (m_initialized) DeleteCriticalSection(&m_section);
    }

    // S_OK, or the Win32 error as an HRESULT.
    HRESULT Initialize() noexcept {
        if (!InitializeCriticalSectionAndSpinCount(&m_section, /*spinCount=*/0)) {
            return HresultFromLastError();
        }
        m_initialized = true;
        return S_OK;
    }

    void Lock() noexcept { EnterCriticalSection(&m_section); }
    void Unlock() noexcept { LeaveCriticalSection(&m_section); }

private:
    CRITICAL_SECTION m_section{};
    bool m_initialized = false;
};

} // namespace tsl
