#include "upkeep/doctor/FolderCheck.h"

#include <windows.h>

#include <aclapi.h>

#include <type_traits>

#include "base/Hresult.h"
#include "base/LocalMemory.h"
#include "console/Failure.h"
#include "console/Text.h"
#include "files/AccessList.h"
#include "files/CheckedOpen.h"
#include "files/Paths.h"
#include "upkeep/doctor/FileLook.h"

namespace tsl {

namespace {

enum class Rights { OpenToAll, NotNamed, Unknown };

bool NamesEveryone(PACL list) {
    alignas(SID) std::byte everyone[SECURITY_MAX_SID_SIZE];
    DWORD size = sizeof everyone;
    if (!CreateWellKnownSid(WinWorldSid, /*domain=*/nullptr, everyone, &size)) return false;
    CAccessList entries;
    return entries.Read(list) && entries.Names(everyone);
}

Rights RightsOn(const CHandle& folder, DWORD& error) {
    PACL list = nullptr;
    PSECURITY_DESCRIPTOR read = nullptr;
    error = GetSecurityInfo(folder.Get(), SE_FILE_OBJECT, DACL_SECURITY_INFORMATION,
                            /*owner=*/nullptr, /*group=*/nullptr, &list, /*sacl=*/nullptr, &read);
    const LocalMemory<std::remove_pointer_t<PSECURITY_DESCRIPTOR>> descriptor(read);
    if (error != ERROR_SUCCESS) return Rights::Unknown;
    // A folder without any list is open to all.
    return !list || NamesEveryone(list) ? Rights::OpenToAll : Rights::NotNamed;
}

} // namespace

void CheckFolder(const std::wstring& folder, const std::string& subject, Findings& findings) {
    const std::string path = ToUtf8(folder);
    const OpenedFile opened = OpenCheckedFolder(folder, READ_CONTROL);
    if (!FolderExists(folder)) {
        if (IsBehindALink(folder)) {
            findings.push_back(TellLink(subject, folder));
            return;
        }
        findings.push_back(
            FileExists(folder)
                ? Damaged(subject, "a file lies in the place of " + path, "move the file away")
                : Odd(subject, path + " is not there: no host has made it yet"));
        return;
    }
    if (opened.isRefused) {
        findings.push_back(TellLink(subject, folder));
        return;
    }
    DWORD error = static_cast<DWORD>(HRESULT_CODE(opened.status));
    const std::string grant = "icacls \"" + path + "\" /grant *S-1-1-0:(OI)(CI)F";
    switch (opened.file ? RightsOn(opened.file, error) : Rights::Unknown) {
    case Rights::OpenToAll:
        findings.push_back(Fine(subject, path + ", Everyone is named in its rights"));
        break;
    case Rights::NotNamed:
        findings.push_back(Barred(subject,
                                  path + ": Everyone is not named in its rights, so other users "
                                         "may not record",
                                  grant));
        break;
    case Rights::Unknown:
        findings.push_back(
            Barred(subject,
                   path + ": its rights cannot be read: " + DescribeResult(HresultFromWin32(error)),
                   grant));
        break;
    }
}

} // namespace tsl
