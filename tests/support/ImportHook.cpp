// The import table of this program.
#include "tests/support/ImportHook.h"

#include <stdexcept>
#include <string>

namespace tsl::test {

namespace {

template <class T>
T* At(size_t offset) {
    return reinterpret_cast<T*>(reinterpret_cast<char*>(GetModuleHandleW(nullptr)) + offset);
}

} // namespace

void** ImportHook::FindSlot(const char* name) {
    const auto offset = static_cast<size_t>(At<IMAGE_DOS_HEADER>(0)->e_lfanew);
    const IMAGE_OPTIONAL_HEADER64& header = At<IMAGE_NT_HEADERS64>(offset)->OptionalHeader;
    const DWORD imports = header.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress;
    for (auto* library = At<IMAGE_IMPORT_DESCRIPTOR>(imports); library->Name != 0; ++library) {
        auto* entry = At<IMAGE_THUNK_DATA64>(library->OriginalFirstThunk);
        auto* slot = At<void*>(library->FirstThunk);
        for (; entry->u1.AddressOfData != 0; ++entry, ++slot) {
            if (IMAGE_SNAP_BY_ORDINAL64(entry->u1.Ordinal)) continue;
            const auto* const imported = At<IMAGE_IMPORT_BY_NAME>(entry->u1.AddressOfData);
            if (std::string(imported->Name) == name) return slot;
        }
    }
    throw std::runtime_error(std::string(name) + " is not imported");
}

void ImportHook::Write(void* function) const {
    DWORD protection = 0;
    VirtualProtect(m_slot, sizeof *m_slot, PAGE_READWRITE, &protection);
    *m_slot = function;
    VirtualProtect(m_slot, sizeof *m_slot, protection, &protection);
}

} // namespace tsl::test
