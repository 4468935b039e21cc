// Opens the component's folders and files to every user of the machine: each must be able to open,
// rewrite and replace what another created. Callable from any thread; the locks of the callers
// serialise the processes.
#pragma once

#include <string>

namespace tsl {

// Makes sure that the folder exists, with its parents, and that Everyone is named in its access
// list: full access, inherited by what is made in it. An entry for Everyone that is already there
// is enough, whatever it says. False, with the reason as the thread's last error after a failed
// read or write of the list, when the rights could not be given; a folder without any list (open to
// all, but not ours to change) gives false too. All other entries are kept.
bool GrantFolderAccess(const std::wstring& path);

// The same for an existing file; false when there is none.
bool GrantFileAccess(const std::wstring& path);

} // namespace tsl
