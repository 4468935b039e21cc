#include "files/AccessRights.h"

#include <windows.h>

#include <cstddef>
#include <memory>
#include <vector>

#include "base/Hresult.h"
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

// Writes the list to this object alone: an entry that is handed down would reach what others have
// put into a folder.
DWORD WriteList(const CHandle& opened, const CAccessList& entries,
                SECURITY_DESCRIPTOR_CONTROL control) {
    std::vector<std::byte> storage;
    const DWORD error = entries.Build(storage);
    if (error != ERROR_SUCCESS) return error;
    const CHandle writable(ReOpenFile(opened.Get(), READ_CONTROL | WRITE_DAC,
                                      FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                      FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_OPEN_REPARSE_POINT));
    if (!writable) return GetLastError();
    SECURITY_DESCRIPTOR descriptor{};
    // Inherited entries stay what they are.
    constexpr SECURITY_DESCRIPTOR_CONTROL kInherits =
        SE_DACL_AUTO_INHERIT_REQ | SE_DACL_AUTO_INHERITED;
    const bool inherits = (control & SE_DACL_AUTO_INHERITED) != 0;
    const bool isWritten =
        InitializeSecurityDescriptor(&descriptor, SECURITY_DESCRIPTOR_REVISION) &&
        SetSecurityDescriptorDacl(&descriptor, /*present=*/TRUE,
                                  reinterpret_cast<ACL*>(storage.data()), /*defaulted=*/FALSE) &&
        (!inherits || SetSecurityDescriptorControl(&descriptor, kInherits, kInherits)) &&
        SetKernelObjectSecurity(writable.Get(), DACL_SECURITY_INFORMATION, &descriptor);
    return isWritten ? ERROR_SUCCESS : GetLastError();
}

} // namespace

bool GrantAccess(const CHandle& opened, bool* isNewEntry) {
    // Room for what a descriptor usually needs.
    std::vector<std::byte> read(512);
    DWORD size = 0;
    const auto readList = [&] {
        return GetKernelObjectSecurity(opened.Get(), DACL_SECURITY_INFORMATION, read.data(),
                                       static_cast<DWORD>(read.size()), &size) != 0;
    };
    bool isRead = readList();
    if (!isRead && GetLastError() == ERROR_INSUFFICIENT_BUFFER) {
        read.resize(size);
        isRead = readList();
    }
    BOOL isPresent = FALSE;
    PACL list = nullptr;
    BOOL isDefaulted = FALSE;
    SECURITY_DESCRIPTOR_CONTROL control = 0;
    DWORD revision = 0;
    if (!isRead || !GetSecurityDescriptorDacl(read.data(), &isPresent, &list, &isDefaulted) ||
        !GetSecurityDescriptorControl(read.data(), &control, &revision)) {
        return false;
    }
    CAccessList entries;
    if (!isPresent || !list || !entries.Read(list)) return false;

    const OwnedSid everyone = EveryoneSid();
    if (!everyone) return false;
    if (entries.Names(everyone.get())) return true;
    // Full access, handed down to what is made in a folder.
    if (!entries.Allow(everyone.get(), GENERIC_ALL, OBJECT_INHERIT_ACE | CONTAINER_INHERIT_ACE)) {
        return false;
    }
    const DWORD written = WriteList(opened, entries, control);
    if (isNewEntry) *isNewEntry = written == ERROR_SUCCESS;
    SetLastError(written);
    return written == ERROR_SUCCESS;
}

GrantedFolder PrepareFolder(const std::wstring& path) {
    GrantedFolder folder{OpenCheckedFolder(path, READ_CONTROL)};
    if (folder.opened.status == HresultFromWin32(ERROR_FILE_NOT_FOUND) ||
        folder.opened.status == HresultFromWin32(ERROR_PATH_NOT_FOUND)) {
        CreateFolderTree(path);
        folder.opened = OpenCheckedFolder(path, READ_CONTROL);
    }
    if (folder.opened.file) {
        folder.isGranted = GrantAccess(folder.opened.file, &folder.isNewEntry);
    }
    return folder;
}

bool GrantFileAccess(const std::wstring& path) {
    if (!FileExists(path)) return false;
    const OpenedFile file = OpenChecked(
        path, READ_CONTROL, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, OPEN_EXISTING);
    return file.file && GrantAccess(file.file);
}

} // namespace tsl
