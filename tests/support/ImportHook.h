// Puts a function of the test's in the place of a system function, to watch the calls or make them
// fail.
#pragma once

#include <windows.h>

#include <bit>

namespace tsl::test {

// Replaces the function in the import table of this program, and of no other module, while it
// lives. Not for functions that several threads are calling meanwhile.
class ImportHook {
public:
    // Throws std::runtime_error when this program does not import the function.
    template <class Function>
    ImportHook(const char* name, Function* replacement)
        : m_slot(FindSlot(name)), m_original(*m_slot) {
        Write(std::bit_cast<void*>(replacement));
    }
    ImportHook(const ImportHook&) = delete;
    ImportHook& operator=(const ImportHook&) = delete;
    ~ImportHook() { Write(m_original); }

private:
    static void** FindSlot(const char* name);
    void Write(void* function) const;

    void** m_slot;
    void* m_original;
};

} // namespace tsl::test
