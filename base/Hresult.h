// HRESULTs: turning Win32 codes into them, carrying them as exceptions inside the component, and
// the one boundary that no exception crosses. Callable from any thread; holds nothing.
#pragma once

#include <windows.h>

#include <exception>
#include <new>
#include <utility>

namespace tsl {

// Carries an HRESULT from a helper that cannot return one. Never leaves the component.
class CHresultError : public std::exception {
public:
    explicit CHresultError(HRESULT result) noexcept : m_result(result) {}

    HRESULT Result() const noexcept { return m_result; }
    const char* what() const noexcept override { return "HRESULT"; }

private:
    HRESULT m_result;
};

// Maps a Win32 error code: 0 stays S_OK, any other code c gives 0x80070000 | (c & 0xFFFF).
constexpr HRESULT HresultFromWin32(DWORD error) noexcept {
    return HRESULT_FROM_WIN32(error);
}

// The thread's last error as an HRESULT; S_OK when there is none.
inline HRESULT HresultFromLastError() noexcept {
    return HresultFromWin32(GetLastError());
}

// Runs body, which returns an HRESULT, and turns whatever it throws into one: a carried HRESULT,
// E_OUTOFMEMORY for exhausted memory, E_FAIL for the rest. Every interface method and exported
// function consists of one call of it.
template <class Body>
HRESULT AtBoundary(Body&& body) noexcept {
    try {
        return std::forward<Body>(body)();
    } catch (const CHresultError& error) {
        return error.Result();
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    } catch (...) {
        return E_FAIL;
    }
}

} // namespace tsl
