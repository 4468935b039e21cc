// Puts a function of the test's in the place of a system function, to watch the calls or make them
// fail.
#pragma once

#include <windows.h>

#include <bit>
#include <string>
#include <vector>

namespace tsl::test {

// Replaces the function in the import table of one module, and of no other, while it lives. The
// module stays loaded meanwhile. Not for functions that several threads are calling meanwhile.
class ImportHook {
public:
    // In this program. Throws std::runtime_error when the function is not imported.
    template <class Function>
    ImportHook(const char* name, Function* replacement)
        : ImportHook(GetModuleHandleW(nullptr), name, replacement) {}
    // In another module; null, as of one that is not loaded, throws too.
    template <class Function>
    ImportHook(HMODULE module, const char* name, Function* replacement)
        : m_slot(FindSlot(module, name)), m_original(ReadSlot(m_slot)) {
        WriteSlot(std::bit_cast<void*>(replacement));
    }
    ImportHook(const ImportHook&) = delete;
    ImportHook& operator=(const ImportHook&) = delete;
    ~ImportHook() { WriteSlot(m_original); }

    // The function that a module imports; null when it does not import it.
    static void* Imported(HMODULE module, const char* name);
    // All functions that a module imports by name.
    static std::vector<std::string> ImportedNames(HMODULE module);

private:
    // A slot is where the linker put it, which need not be where a pointer may lie.
    static void* FindSlot(HMODULE module, const char* name);
    static void* ReadSlot(const void* slot);
    void WriteSlot(void* function) const;

    void* m_slot;
    void* m_original;
};

} // namespace tsl::test
