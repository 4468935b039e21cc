// How long the component's engine would sleep while others use a file.
#pragma once

#include "tests/support/ImportHook.h"

namespace tsl::test {

// How long the engine waits each time for those who are in a file, by what its connection is for.
inline constexpr DWORD kStatementWait = 700;
inline constexpr DWORD kWriteWait = 900;
inline constexpr DWORD kConvertWait = 350;

// While it lives, the loaded engine does not sleep. It tries as often as ever: what it counts is
// the time that it asked for. For one thread, one at a time.
class EngineSleeps {
public:
    EngineSleeps() { s_asked = 0; }
    EngineSleeps(const EngineSleeps&) = delete;
    EngineSleeps& operator=(const EngineSleeps&) = delete;

    // How many whole waits of this length were asked for so far: each try of a busy file may take
    // some milliseconds beside its wait.
    DWORD Waits(DWORD milliseconds) const { return s_asked / milliseconds; }

private:
    static void WINAPI Note(DWORD milliseconds) { s_asked += milliseconds; }

    static inline DWORD s_asked = 0;

    ImportHook m_hook{GetModuleHandleW(L"SQLite3.dll"), "Sleep", &Note};
};

} // namespace tsl::test
