// Owner of a kernel handle. Not shared between threads without a lock of the caller's.
#pragma once

#include <windows.h>

#include <utility>

namespace tsl {

// Closes its handle when it goes. Null and INVALID_HANDLE_VALUE both mean that there is none.
class CHandle {
public:
    CHandle() noexcept = default;
    explicit CHandle(HANDLE handle) noexcept
        : m_handle(handle == INVALID_HANDLE_VALUE ? nullptr : handle) {}
    CHandle(CHandle&& other) noexcept : m_handle(std::exchange(other.m_handle, nullptr)) {}
    CHandle& operator=(CHandle&& other) noexcept {
        CHandle taken(std::move(other));
        std::swap(m_handle, taken.m_handle);
        return *this;
    }
    ~CHandle() {
        if (m_handle) CloseHandle(m_handle);
    }

    HANDLE Get() const noexcept { return m_handle; }
    explicit operator bool() const noexcept { return m_handle != nullptr; }

private:
    HANDLE m_handle = nullptr;
};

} // namespace tsl
