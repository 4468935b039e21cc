// Opens the component's folders and files to every user of the machine: each must be able to open,
// rewrite and replace what another created. Callable from any thread; the locks of the callers
// serialise the processes.
#pragma once

#include <string>

#include "files/CheckedOpen.h"

namespace tsl {

// What became of a data folder that was to be made ready for all users.
struct GrantedFolder {
    bool isGranted = false;  // Everyone is named in its list
    bool isNewEntry = false; // since now
    bool isRefused = false;  // it would have had to be changed, and is none of ours
};

// Makes sure that the folder exists, with its parents, and that Everyone is named in its access
// list: full access, inherited by what is made in it from then on. An entry for Everyone that is
// already there is enough, whatever it says, and then the folder is not looked at further: whoever
// opens a file in it checks the way there. Nothing is made behind a link, and what is changed is
// opened and checked: see CheckedOpen.h.
GrantedFolder PrepareFolder(const std::wstring& path);

// The same, for whether it is granted. False, with the reason as the thread's last error after a
// failed read or write of the list, when the rights could not be given; a folder without any list
// (open to all, but not ours to change) gives false too. All other entries are kept.
inline bool GrantFolderAccess(const std::wstring& path) {
    return PrepareFolder(path).isGranted;
}

// The same for an existing file; false when there is none.
bool GrantFileAccess(const std::wstring& path);

// The same for a file or folder that was opened with READ_CONTROL access, which GENERIC_READ has in
// it. What lies in a folder keeps its rights. isNewEntry tells whether the entry is new.
bool GrantAccess(const CHandle& opened, bool* isNewEntry = nullptr);

} // namespace tsl
