// The file "UserIdList.dat": a small number for each user of the system, instead of his security
// identifier. Shared by all users and processes; a machine-wide mutex serialises them.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace tsl {

inline constexpr wchar_t kUserIdFileName[] = L"UserIdList.dat";

// Shared with every version of the component: not to be changed.
inline constexpr wchar_t kLoginInfoMutexName[] = L"Global\\TslIf_Mut_LoginInfo";

struct UserIdEntry {
    UINT64 id = 0;
    std::wstring sid; // in string form, as it was read
};

// The security identifier of the process's user in string form. S_OK or E_INVALIDARG.
HRESULT CurrentUserSid(std::wstring& sid);

// Looks the user up, ignoring case; the last entry counts: S_FALSE. A user that is not in the file
// is given the highest id plus one, and the file is rewritten; a failure to do that is not
// reported: S_OK. entries receives the whole list. A file that is refused (CheckedOpen.h), or
// larger than any list can be, gives its failure and no id, since any other id would be another
// user's. Takes the mutex, however long that takes.
HRESULT LookUpOrAssignUserId(const std::wstring& sid, std::vector<UserIdEntry>& entries,
                             UINT64& id);

// Rewrites the file. S_OK; E_INVALIDARG when the folder cannot be prepared; the Win32 error of a
// failed open; the status of the open when a write fails. REQUIRES: the mutex is held or could not
// be made.
HRESULT WriteUserIdList(const std::vector<UserIdEntry>& entries);

// The id of the process's user: S_FALSE with the id, or the failure of CurrentUserSid or of the
// lookup with the id left as it is.
HRESULT CurrentUserId(UINT64& id);

} // namespace tsl
