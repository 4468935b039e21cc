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

// The access list that an object has.
class CListInForce {
public:
    // read asks the system: it is given room, and told how much is needed. False, with the reason
    // as the thread's last error, when it cannot be read; also for an object without any list.
    template <class Ask>
    bool Read(Ask ask) {
        DWORD needed = 0;
        bool isRead = ask(m_descriptor.data(), static_cast<DWORD>(m_descriptor.size()), needed);
        if (!isRead && GetLastError() == ERROR_INSUFFICIENT_BUFFER) {
            m_descriptor.resize(needed);
            isRead = ask(m_descriptor.data(), needed, needed);
        }
        BOOL isPresent = FALSE;
        PACL list = nullptr;
        BOOL isDefaulted = FALSE;
        DWORD revision = 0;
        return isRead &&
               GetSecurityDescriptorDacl(m_descriptor.data(), &isPresent, &list, &isDefaulted) &&
               GetSecurityDescriptorControl(m_descriptor.data(), &m_control, &revision) &&
               isPresent && list && m_entries.Read(list);
    }

    CAccessList& Entries() noexcept { return m_entries; }
    SECURITY_DESCRIPTOR_CONTROL Control() const noexcept { return m_control; }

private:
    std::vector<std::byte> m_descriptor = std::vector<std::byte>(512); // enough for most
    SECURITY_DESCRIPTOR_CONTROL m_control = 0;
    CAccessList m_entries;
};

// Whether the list of a folder names Everyone already.
bool IsGranted(const std::wstring& path) {
    CListInForce inForce;
    const bool isRead = inForce.Read([&](void* room, DWORD size, DWORD& needed) {
        return GetFileSecurityW(path.c_str(), DACL_SECURITY_INFORMATION, room, size, &needed) != 0;
    });
    const OwnedSid everyone = isRead ? EveryoneSid() : nullptr;
    return everyone && inForce.Entries().Names(everyone.get());
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
    CListInForce inForce;
    const bool isRead = inForce.Read([&](void* room, DWORD size, DWORD& needed) {
        return GetKernelObjectSecurity(opened.Get(), DACL_SECURITY_INFORMATION, room, size,
                                       &needed) != 0;
    });
    if (!isRead) return false;
    const OwnedSid everyone = EveryoneSid();
    if (!everyone) return false;
    CAccessList& entries = inForce.Entries();
    if (entries.Names(everyone.get())) return true;
    // Full access, handed down to what is made in a folder.
    if (!entries.Allow(everyone.get(), GENERIC_ALL, OBJECT_INHERIT_ACE | CONTAINER_INHERIT_ACE)) {
        return false;
    }
    const DWORD written = WriteList(opened, entries, inForce.Control());
    if (isNewEntry) *isNewEntry = written == ERROR_SUCCESS;
    SetLastError(written);
    return written == ERROR_SUCCESS;
}

GrantedFolder PrepareFolder(const std::wstring& path) {
    GrantedFolder folder;
    // By name, which is quicker, as long as there is nothing to be changed.
    folder.isGranted = IsGranted(path);
    if (folder.isGranted) return folder;
    OpenedFile opened = OpenCheckedFolder(path, READ_CONTROL);
    if (opened.status == HresultFromWin32(ERROR_FILE_NOT_FOUND) ||
        opened.status == HresultFromWin32(ERROR_PATH_NOT_FOUND)) {
        CreateFolderTree(path);
        opened = OpenCheckedFolder(path, READ_CONTROL);
    }
    folder.isRefused = opened.isRefused;
    if (opened.file) folder.isGranted = GrantAccess(opened.file, &folder.isNewEntry);
    return folder;
}

bool GrantFileAccess(const std::wstring& path) {
    if (!FileExists(path)) return false;
    const OpenedFile file = OpenChecked(
        path, READ_CONTROL, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, OPEN_EXISTING);
    return file.file && GrantAccess(file.file);
}

} // namespace tsl
