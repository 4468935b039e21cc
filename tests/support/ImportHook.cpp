// The import table of a module.
#include "tests/support/ImportHook.h"

#include <stdexcept>

namespace tsl::test {

namespace {

template <class T>
T* At(HMODULE module, size_t offset) {
    return reinterpret_cast<T*>(reinterpret_cast<char*>(module) + offset);
}

// Calls visit with the name and the slot of each function that is imported by name, until it
// returns true.
template <class Visit>
void VisitImports(HMODULE module, Visit visit) {
    const auto offset = static_cast<size_t>(At<IMAGE_DOS_HEADER>(module, 0)->e_lfanew);
    const IMAGE_OPTIONAL_HEADER64& header = At<IMAGE_NT_HEADERS64>(module, offset)->OptionalHeader;
    const DWORD imports = header.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress;
    for (auto* library = At<IMAGE_IMPORT_DESCRIPTOR>(module, imports); library->Name != 0;
         ++library) {
        auto* entry = At<IMAGE_THUNK_DATA64>(module, library->OriginalFirstThunk);
        auto* slot = At<void*>(module, library->FirstThunk);
        for (; entry->u1.AddressOfData != 0; ++entry, ++slot) {
            if (IMAGE_SNAP_BY_ORDINAL64(entry->u1.Ordinal)) continue;
            if (visit(At<IMAGE_IMPORT_BY_NAME>(module, entry->u1.AddressOfData)->Name, slot))
                return;
        }
    }
}

// Null when the function is not imported.
void** SlotOf(HMODULE module, const std::string& name) {
    void** found = nullptr;
    VisitImports(module, [&](const char* imported, void** slot) {
        if (imported == name) found = slot;
        return found != nullptr;
    });
    return found;
}

} // namespace

void* ImportHook::Imported(HMODULE module, const char* name) {
    void** const slot = SlotOf(module, name);
    return slot ? *slot : nullptr;
}

std::vector<std::string> ImportHook::ImportedNames(HMODULE module) {
    std::vector<std::string> names;
    VisitImports(module, [&](const char* imported, void**) {
        names.emplace_back(imported);
        return false;
    });
    return names;
}

void** ImportHook::FindSlot(HMODULE module, const char* name) {
    void** const slot = SlotOf(module, name);
    if (!slot) throw std::runtime_error(std::string(name) + " is not imported");
    return slot;
}

void ImportHook::Write(void* function) const {
    DWORD protection = 0;
    VirtualProtect(m_slot, sizeof *m_slot, PAGE_READWRITE, &protection);
    *m_slot = function;
    VirtualProtect(m_slot, sizeof *m_slot, protection, &protection);
}

} // namespace tsl::test
