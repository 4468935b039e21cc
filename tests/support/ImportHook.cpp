// The import table of a module.
#include "tests/support/ImportHook.h"

#include <cstddef>
#include <cstring>
#include <stdexcept>

namespace tsl::test {

namespace {

template <class T>
T* At(HMODULE module, size_t offset) {
    return reinterpret_cast<T*>(reinterpret_cast<char*>(module) + offset);
}

// A copy: linkers lay the tables out as they like, not as the compiler aligns such structures.
template <class T>
T Read(HMODULE module, size_t offset) {
    T value;
    std::memcpy(&value, At<char>(module, offset), sizeof value);
    return value;
}

// Calls visit with the name and the slot of each function that is imported by name, until it
// returns true.
template <class Visit>
void VisitImports(HMODULE module, Visit visit) {
    const auto headers = static_cast<size_t>(Read<IMAGE_DOS_HEADER>(module, 0).e_lfanew);
    const auto header = Read<IMAGE_NT_HEADERS64>(module, headers).OptionalHeader;
    size_t descriptor = header.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress;
    for (;; descriptor += sizeof(IMAGE_IMPORT_DESCRIPTOR)) {
        const auto library = Read<IMAGE_IMPORT_DESCRIPTOR>(module, descriptor);
        if (library.Name == 0) return;
        for (size_t index = 0;; ++index) {
            const auto entry = Read<IMAGE_THUNK_DATA64>(
                module, library.OriginalFirstThunk + index * sizeof(IMAGE_THUNK_DATA64));
            if (entry.u1.AddressOfData == 0) break;
            if (IMAGE_SNAP_BY_ORDINAL64(entry.u1.Ordinal)) continue;
            const char* const name =
                At<char>(module, entry.u1.AddressOfData + offsetof(IMAGE_IMPORT_BY_NAME, Name));
            if (visit(name, At<char>(module, library.FirstThunk + index * sizeof(void*)))) return;
        }
    }
}

// Null when the function is not imported.
void* SlotOf(HMODULE module, const std::string& name) {
    void* found = nullptr;
    VisitImports(module, [&](const char* imported, void* slot) {
        if (imported == name) found = slot;
        return found != nullptr;
    });
    return found;
}

} // namespace

void* ImportHook::Imported(HMODULE module, const char* name) {
    void* const slot = SlotOf(module, name);
    return slot ? ReadSlot(slot) : nullptr;
}

std::vector<std::string> ImportHook::ImportedNames(HMODULE module) {
    std::vector<std::string> names;
    VisitImports(module, [&](const char* imported, void*) {
        names.emplace_back(imported);
        return false;
    });
    return names;
}

void* ImportHook::FindSlot(HMODULE module, const char* name) {
    if (!module) throw std::runtime_error(std::string("no module is loaded that imports ") + name);
    void* const slot = SlotOf(module, name);
    if (!slot) throw std::runtime_error(std::string(name) + " is not imported");
    return slot;
}

void* ImportHook::ReadSlot(const void* slot) {
    void* function = nullptr;
    std::memcpy(&function, slot, sizeof function);
    return function;
}

void ImportHook::WriteSlot(void* function) const {
    DWORD protection = 0;
    VirtualProtect(m_slot, sizeof function, PAGE_READWRITE, &protection);
    std::memcpy(m_slot, &function, sizeof function);
    VirtualProtect(m_slot, sizeof function, protection, &protection);
}

} // namespace tsl::test
