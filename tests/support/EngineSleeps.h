// How long the component's engine would sleep while others use a file.
#pragma once

#include "tests/support/ImportHook.h"

namespace tsl::test {

// While it lives, the loaded engine does not sleep. It tries as often as ever: what it counts is
// the time that it asked for. For one thread, one at a time.
class EngineSleeps {
public:
    EngineSleeps() { s_asked = 0; }
    EngineSleeps(const EngineSleeps&) = delete;
    EngineSleeps& operator=(const EngineSleeps&) = delete;

    // Asked for so far, all together, in whole seconds: a busy file is tried again for one, and
    // each try may take some milliseconds beside it.
    DWORD Seconds() const { return s_asked / 1000; }

private:
    static void WINAPI Note(DWORD milliseconds) { s_asked += milliseconds; }

    static inline DWORD s_asked = 0;

    ImportHook m_hook{GetModuleHandleW(L"SQLite3.dll"), "Sleep", &Note};
};

} // namespace tsl::test
