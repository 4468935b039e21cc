#include "files/AccessRights.h"

#include <windows.h>

#include <aclapi.h>

#include <cstddef>
#include <memory>
#include <type_traits>
#include <vector>

#include "base/LocalMemory.h"
#include "files/AccessList.h"
#include "files/Paths.h"

namespace tsl {

namespace {

struct SidDeleter {
    void operator()(void* sid) const noexcept { FreeSid(sid); }
};
using OwnedSid = std::unique_ptr<void, SidDeleter>;

OwnedSid EveryoneSid() noexcept {
    SID_IDENTIFIER_AUTHORITY world = {SECURITY_WORLD_SID_AUTHORITY};
    PSID sid = nullptr;
    AllocateAndInitializeSid(&world, 1, SECURITY_WORLD_RID, 0, 0, 0, 0, 0, 0, 0, &sid);
    return OwnedSid(sid);
}

DWORD WriteList(const std::wstring& path, const CAccessList& entries) {
    std::vector<std::byte> storage;
    const DWORD error = entries.Build(storage);
    if (error != ERROR_SUCCESS) return error;
    std::wstring name(path);
    return SetNamedSecurityInfoW(name.data(), SE_FILE_OBJECT, DACL_SECURITY_INFORMATION,
                                 /*owner=*/nullptr, /*group=*/nullptr,
                                 reinterpret_cast<ACL*>(storage.data()), /*sacl=*/nullptr);
}

bool GrantAccess(const std::wstring& path) {
    PACL list = nullptr;
    PSECURITY_DESCRIPTOR read = nullptr;
    const DWORD error = GetNamedSecurityInfoW(path.c_str(), SE_FILE_OBJECT,
                                              DACL_SECURITY_INFORMATION, /*owner=*/nullptr,
                                              /*group=*/nullptr, &list, /*sacl=*/nullptr, &read);
    LocalMemory<std::remove_pointer_t<PSECURITY_DESCRIPTOR>> descriptor(read);
    if (error != ERROR_SUCCESS) {
        SetLastError(error);
        return false;
    }
    if (!list) return false;
    CAccessList entries;
    if (!entries.Read(list)) return false;
    descriptor.reset();

    const OwnedSid everyone = EveryoneSid();
    if (!everyone) return false;
    if (entries.Names(everyone.get())) return true;
    // Full access, handed down to what a folder holds.
    if (!entries.Allow(everyone.get(), GENERIC_ALL, OBJECT_INHERIT_ACE | CONTAINER_INHERIT_ACE)) {
        return false;
    }
    const DWORD written = WriteList(path, entries);
    SetLastError(written);
    return written == ERROR_SUCCESS;
}

} // namespace

bool GrantFolderAccess(const std::wstring& path) {
    if (!FolderExists(path)) {
        CreateFolderTree(path);
        if (!FolderExists(path)) return false;
    }
    return GrantAccess(path);
}

bool GrantFileAccess(const std::wstring& path) {
    return FileExists(path) && GrantAccess(path);
}

} // namespace tsl
