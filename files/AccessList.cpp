#include "files/AccessList.h"

#include <algorithm>
#include <cstring>
#include <span>
#include <utility>

namespace tsl {

namespace {

constexpr size_t kPlainSidOffset = offsetof(ACCESS_ALLOWED_ACE, SidStart);

using EntryBytes = std::span<const std::byte>;

// REQUIRES: the entry is no shorter than its header.
ACE_HEADER HeaderOf(EntryBytes entry) noexcept {
    ACE_HEADER header;
    std::memcpy(&header, entry.data(), sizeof header);
    return header;
}

// Offset of the SID in an entry; 0 where the kind is not known.
size_t SidOffset(EntryBytes entry) noexcept {
    switch (HeaderOf(entry).AceType) {
    case ACCESS_ALLOWED_ACE_TYPE:
    case ACCESS_DENIED_ACE_TYPE:
    case SYSTEM_AUDIT_ACE_TYPE:
    case SYSTEM_ALARM_ACE_TYPE:
    case ACCESS_ALLOWED_CALLBACK_ACE_TYPE:
    case ACCESS_DENIED_CALLBACK_ACE_TYPE:
        return kPlainSidOffset;
    case ACCESS_ALLOWED_OBJECT_ACE_TYPE:
    case ACCESS_DENIED_OBJECT_ACE_TYPE:
    case ACCESS_ALLOWED_CALLBACK_OBJECT_ACE_TYPE:
    case ACCESS_DENIED_CALLBACK_OBJECT_ACE_TYPE: {
        // Flags follow the mask; each of the two optional GUIDs stands before the SID.
        DWORD flags = 0;
        if (entry.size() < kPlainSidOffset + sizeof flags) return 0;
        std::memcpy(&flags, entry.data() + kPlainSidOffset, sizeof flags);
        const size_t guids = ((flags & ACE_OBJECT_TYPE_PRESENT) ? 1 : 0) +
                             ((flags & ACE_INHERITED_OBJECT_TYPE_PRESENT) ? 1 : 0);
        return kPlainSidOffset + sizeof flags + guids * sizeof(GUID);
    }
    default:
        return 0;
    }
}

// REQUIRES: the entry is no shorter than its header.
bool IsFor(EntryBytes entry, PSID trustee) {
    const size_t offset = SidOffset(entry);
    if (offset == 0 || entry.size() < offset + GetSidLengthRequired(0)) return false;
    // The call only reads, though it is declared otherwise. Entries lie on the heap, and SIDs in
    // them at multiples of four bytes.
    void* const sid = const_cast<std::byte*>(entry.data() + offset);
    return IsValidSid(sid) && GetLengthSid(sid) <= entry.size() - offset && EqualSid(sid, trustee);
}

} // namespace

bool CAccessList::Read(PACL list) {
    ACL_SIZE_INFORMATION size{};
    if (!GetAclInformation(list, &size, sizeof size, AclSizeInformation)) return false;
    const std::byte* const end = reinterpret_cast<const std::byte*>(list) + list->AclSize;
    std::vector<Entry> entries;
    for (DWORD index = 0; index < size.AceCount; ++index) {
        void* found = nullptr;
        if (!GetAce(list, index, &found)) return false;
        const auto* const bytes = static_cast<const std::byte*>(found);
        // An entry must hold its header and end within the list.
        const std::ptrdiff_t room = end - bytes;
        ACE_HEADER header{};
        if (room >= std::ptrdiff_t{sizeof header}) std::memcpy(&header, bytes, sizeof header);
        if (header.AceSize < sizeof header || header.AceSize > room) {
            SetLastError(ERROR_INVALID_ACL);
            return false;
        }
        entries.emplace_back(bytes, bytes + header.AceSize);
    }
    m_revision = list->AclRevision;
    m_entries = std::move(entries);
    return true;
}

bool CAccessList::Names(PSID trustee) const {
    return std::any_of(m_entries.begin(), m_entries.end(),
                       [trustee](const Entry& entry) { return IsFor(entry, trustee); });
}

bool CAccessList::Allow(PSID trustee, DWORD mask, BYTE flags) {
    if (!IsValidSid(trustee)) return false;
    const DWORD sidLength = GetLengthSid(trustee);
    ACCESS_ALLOWED_ACE fixed{};
    fixed.Header.AceType = ACCESS_ALLOWED_ACE_TYPE;
    fixed.Header.AceFlags = flags;
    fixed.Header.AceSize = static_cast<WORD>(kPlainSidOffset + sidLength);
    fixed.Mask = mask;
    Entry entry(fixed.Header.AceSize);
    std::memcpy(entry.data(), &fixed, kPlainSidOffset);
    std::memcpy(entry.data() + kPlainSidOffset, trustee, sidLength);

    const auto place = std::find_if(m_entries.begin(), m_entries.end(), [](const Entry& existing) {
        return (HeaderOf(existing).AceFlags & INHERITED_ACE) != 0;
    });
    m_entries.insert(place, std::move(entry));
    return true;
}

DWORD CAccessList::Build(std::vector<std::byte>& storage) const {
    size_t size = sizeof(ACL);
    for (const Entry& entry : m_entries)
        size += entry.size();
    storage.assign((size + sizeof(DWORD) - 1) & ~(sizeof(DWORD) - 1), std::byte{0});
    auto* const list = reinterpret_cast<ACL*>(storage.data());
    if (!InitializeAcl(list, static_cast<DWORD>(storage.size()), m_revision)) {
        return GetLastError();
    }
    for (const Entry& entry : m_entries) {
        // The call only reads what it adds.
        void* const bytes = const_cast<std::byte*>(entry.data());
        if (!AddAce(list, m_revision, MAXDWORD, bytes, static_cast<DWORD>(entry.size()))) {
            return GetLastError();
        }
    }
    return ERROR_SUCCESS;
}

} // namespace tsl
