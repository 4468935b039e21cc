// How long the component's engine would sleep while others use a file.
#pragma once

#include <functional>

#include "tests/support/ImportHook.h"

namespace tsl::test {

// How long the engine waits each time for those who are in a file, by what its connection is for.
inline constexpr DWORD kStatementWait = 700;
inline constexpr DWORD kWriteWait = 900;
inline constexpr DWORD kConvertWait = 350;

// While it lives, the loaded engine does not sleep. It tries as often as ever: what it counts is
// the time that it asked for, and hands that, all together, to a test that changes what the engine
// meets. For one thread, one at a time.
class EngineSleeps {
public:
    explicit EngineSleeps(std::function<void(DWORD milliseconds)> onSleep = nullptr) {
        s_asked = 0;
        s_onSleep = std::move(onSleep);
    }
    EngineSleeps(const EngineSleeps&) = delete;
    EngineSleeps& operator=(const EngineSleeps&) = delete;
    ~EngineSleeps() { s_onSleep = nullptr; }

    DWORD Milliseconds() const { return s_asked; }

    // How many whole waits of this length were asked for so far: each try of a busy file may take
    // some milliseconds beside its wait.
    DWORD Waits(DWORD milliseconds) const { return s_asked / milliseconds; }

private:
    static void WINAPI Note(DWORD milliseconds) {
        s_asked += milliseconds;
        if (s_onSleep) s_onSleep(s_asked);
    }

    static inline DWORD s_asked = 0;
    static inline std::function<void(DWORD)> s_onSleep;

    ImportHook m_hook{GetModuleHandleW(L"SQLite3.dll"), "Sleep", &Note};
};

} // namespace tsl::test
