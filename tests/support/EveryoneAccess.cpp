#include "tests/support/EveryoneAccess.h"

#include <windows.h>

#include <aclapi.h>
#include <sddl.h>

#include <optional>
#include <stdexcept>

#include "base/LocalMemory.h"

namespace tsl::test {

namespace {

// The mask of the first entry for Everyone; nothing without one.
std::optional<DWORD> EntryOfEveryone(const std::wstring& path) {
    PACL list = nullptr;
    PSECURITY_DESCRIPTOR read = nullptr;
    const DWORD error =
        GetNamedSecurityInfoW(path.c_str(), SE_FILE_OBJECT, DACL_SECURITY_INFORMATION, nullptr,
                              nullptr, &list, nullptr, &read);
    const LocalMemory<std::remove_pointer_t<PSECURITY_DESCRIPTOR>> descriptor(read);
    if (error != ERROR_SUCCESS || !list) throw std::runtime_error("no access list");
    PSID found = nullptr;
    if (!ConvertStringSidToSidW(L"S-1-1-0", &found)) throw std::runtime_error("no SID");
    const LocalMemory<void> everyone(found);
    for (WORD index = 0; index < list->AceCount; ++index) {
        void* ace = nullptr;
        if (!GetAce(list, index, &ace)) throw std::runtime_error("no entry");
        auto* const allowed = static_cast<ACCESS_ALLOWED_ACE*>(ace);
        if (EqualSid(&allowed->SidStart, everyone.get())) return allowed->Mask;
    }
    return std::nullopt;
}

} // namespace

bool NamesEveryone(const std::wstring& path) {
    return EntryOfEveryone(path).has_value();
}

DWORD MaskOfEveryone(const std::wstring& path) {
    return EntryOfEveryone(path).value_or(0);
}

} // namespace tsl::test
