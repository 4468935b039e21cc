// The entries of an access list, to look through and to add to. Works on lists in memory only and
// touches no object of the system. An instance belongs to one thread at a time; it owns copies of
// the entries and keeps nothing of the lists it reads or of the SIDs it is given.
#pragma once

#include <windows.h>

#include <cstddef>
#include <vector>

namespace tsl {

class CAccessList {
public:
    // Takes over the revision and all entries, byte for byte: kinds that are not known here are
    // kept too. False, with the reason as the thread's last error, when the list cannot be read
    // whole; it must then not be replaced by this one.
    bool Read(PACL list);

    // True when any entry is for the trustee, whatever it says. Entries of unknown kinds and those
    // whose SID is not valid are for nobody.
    bool Names(PSID trustee) const;

    // Adds an entry that allows the trustee the mask: behind the explicit entries and ahead of the
    // inherited ones, which is their order in a list. False, and nothing added, for an invalid SID.
    bool Allow(PSID trustee, DWORD mask, BYTE flags);

    // Lays the list out in storage, which begins with its ACL. Returns a Win32 error, such as for
    // more entries than a list can hold; storage is then of no use.
    DWORD Build(std::vector<std::byte>& storage) const;

private:
    // The bytes of one entry, never fewer than its header.
    using Entry = std::vector<std::byte>;

    DWORD m_revision = ACL_REVISION;
    std::vector<Entry> m_entries;
};

} // namespace tsl
