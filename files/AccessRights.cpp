#include "files/AccessRights.h"

#include <windows.h>

#include <aclapi.h>

#include <cstddef>
#include <cstring>
#include <memory>
#include <type_traits>
#include <vector>

#include "base/LocalMemory.h"
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

// One entry of an access list as its bytes stand: kinds that are not known here are kept too.
using Entry = std::vector<std::byte>;

ACE_HEADER HeaderOf(const Entry& entry) noexcept {
    ACE_HEADER header;
    std::memcpy(&header, entry.data(), sizeof header);
    return header;
}

// Offset of the SID in an entry; 0 where the kind is not known.
size_t SidOffset(const Entry& entry) noexcept {
    constexpr size_t kPlainOffset = offsetof(ACCESS_ALLOWED_ACE, SidStart);
    switch (HeaderOf(entry).AceType) {
    case ACCESS_ALLOWED_ACE_TYPE:
    case ACCESS_DENIED_ACE_TYPE:
    case SYSTEM_AUDIT_ACE_TYPE:
    case SYSTEM_ALARM_ACE_TYPE:
    case ACCESS_ALLOWED_CALLBACK_ACE_TYPE:
    case ACCESS_DENIED_CALLBACK_ACE_TYPE:
        return kPlainOffset;
    case ACCESS_ALLOWED_OBJECT_ACE_TYPE:
    case ACCESS_DENIED_OBJECT_ACE_TYPE:
    case ACCESS_ALLOWED_CALLBACK_OBJECT_ACE_TYPE:
    case ACCESS_DENIED_CALLBACK_OBJECT_ACE_TYPE: {
        // Flags follow the mask; each of the two optional GUIDs stands before the SID.
        DWORD flags = 0;
        if (entry.size() < kPlainOffset + sizeof flags) return 0;
        std::memcpy(&flags, entry.data() + kPlainOffset, sizeof flags);
        const size_t guids = ((flags & ACE_OBJECT_TYPE_PRESENT) ? 1 : 0) +
                             ((flags & ACE_INHERITED_OBJECT_TYPE_PRESENT) ? 1 : 0);
        return kPlainOffset + sizeof flags + guids * sizeof(GUID);
    }
    default:
        return 0;
    }
}

bool Names(const Entry& entry, PSID wanted) {
    const size_t offset = SidOffset(entry);
    if (offset == 0 || entry.size() <= offset) return false;
    std::vector<std::byte> sid(entry.begin() + static_cast<std::ptrdiff_t>(offset), entry.end());
    if (sid.size() < GetSidLengthRequired(0)) return false;
    return IsValidSid(sid.data()) && GetLengthSid(sid.data()) <= sid.size() &&
           EqualSid(sid.data(), wanted);
}

// False when the list cannot be read whole; it must then not be replaced.
bool ReadEntries(PACL list, std::vector<Entry>& entries) {
    ACL_SIZE_INFORMATION size{};
    if (!GetAclInformation(list, &size, sizeof size, AclSizeInformation)) return false;
    for (DWORD index = 0; index < size.AceCount; ++index) {
        void* found = nullptr;
        if (!GetAce(list, index, &found)) return false;
        const auto* const bytes = static_cast<const std::byte*>(found);
        entries.emplace_back(bytes, bytes + static_cast<const ACE_HEADER*>(found)->AceSize);
    }
    return true;
}

// Full access for everyone, handed down to what a folder holds. Empty for an invalid SID.
Entry FullAccessEntry(PSID trustee) {
    if (!IsValidSid(trustee)) return {};
    const DWORD sidLength = GetLengthSid(trustee);
    ACCESS_ALLOWED_ACE fixed{};
    fixed.Header.AceType = ACCESS_ALLOWED_ACE_TYPE;
    fixed.Header.AceFlags = OBJECT_INHERIT_ACE | CONTAINER_INHERIT_ACE;
    fixed.Header.AceSize = static_cast<WORD>(offsetof(ACCESS_ALLOWED_ACE, SidStart) + sidLength);
    fixed.Mask = GENERIC_ALL;
    Entry entry(fixed.Header.AceSize);
    std::memcpy(entry.data(), &fixed, offsetof(ACCESS_ALLOWED_ACE, SidStart));
    std::memcpy(entry.data() + offsetof(ACCESS_ALLOWED_ACE, SidStart), trustee, sidLength);
    return entry;
}

// Explicit entries stand before inherited ones in a list, so the new one goes between them.
void InsertAfterExplicit(std::vector<Entry>& entries, Entry entry) {
    auto place = entries.begin();
    while (place != entries.end() && !(HeaderOf(*place).AceFlags & INHERITED_ACE))
        ++place;
    entries.insert(place, std::move(entry));
}

DWORD WriteEntries(const std::wstring& path, DWORD revision, std::vector<Entry>& entries) {
    size_t size = sizeof(ACL);
    for (const Entry& entry : entries)
        size += entry.size();
    std::vector<std::byte> storage((size + sizeof(DWORD) - 1) & ~(sizeof(DWORD) - 1));
    auto* const list = reinterpret_cast<ACL*>(storage.data());
    if (!InitializeAcl(list, static_cast<DWORD>(storage.size()), revision)) {
        return GetLastError();
    }
    for (Entry& entry : entries) {
        if (!AddAce(list, revision, MAXDWORD, entry.data(), static_cast<DWORD>(entry.size()))) {
            return GetLastError();
        }
    }
    std::wstring name(path);
    return SetNamedSecurityInfoW(name.data(), SE_FILE_OBJECT, DACL_SECURITY_INFORMATION,
                                 /*owner=*/nullptr, /*group=*/nullptr, list, /*sacl=*/nullptr);
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
    const DWORD revision = list->AclRevision;
    std::vector<Entry> entries;
    if (!ReadEntries(list, entries)) return false;
    descriptor.reset();

    const OwnedSid everyone = EveryoneSid();
    if (!everyone) return false;
    for (const Entry& entry : entries) {
        if (Names(entry, everyone.get())) return true;
    }
    Entry grant = FullAccessEntry(everyone.get());
    if (grant.empty()) return false;
    InsertAfterExplicit(entries, std::move(grant));
    const DWORD written = WriteEntries(path, revision, entries);
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
