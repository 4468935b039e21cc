#include "bench/calls/ModuleCalls.h"

namespace tsl::bench {

namespace {

bool IsCode(const void* address) {
    MEMORY_BASIC_INFORMATION region{};
    VirtualQuery(address, &region, sizeof region);
    constexpr DWORD kExecutable =
        PAGE_EXECUTE | PAGE_EXECUTE_READ | PAGE_EXECUTE_READWRITE | PAGE_EXECUTE_WRITECOPY;
    return (region.Protect & kExecutable) != 0;
}

} // namespace

CModuleCalls::CModuleCalls(HMODULE module) {
    using test::ImportHook;
    for (const std::string& name : ImportHook::ImportedNames(module)) {
        void* const function = ImportHook::Imported(module, name.c_str());
        if (!IsCode(function)) continue;
        // The hook takes any function pointer.
        const auto counted = reinterpret_cast<void (*)()>(m_calls.Count(name, function));
        m_hooks.emplace_back(module, name.c_str(), counted);
    }
}

} // namespace tsl::bench
