#include "files/DataFolders.h"

#include <shlobj.h>

#include "files/AccessRights.h"
#include "files/Paths.h"

namespace tsl {

namespace {

// Part of every installation's data path: not to be changed.
constexpr std::wstring_view kDbSubPath = L"Tessaly\\TslIfDbActionLog";
constexpr std::wstring_view kUserIdSubPath = L"Tessaly\\UID";

} // namespace

std::wstring DbFolder() {
    std::wstring folder;
    const bool isKnown =
        SpecialFolderPath(CSIDL_COMMON_APPDATA, folder, kDbSubPath, kCompanyFolder);
    if (!isKnown) return folder;
    const GrantedFolder granted =
        PrepareFolder(LongPathPrefix(folder, /*force=*/false, /*directory=*/false));
    if (granted.isNewEntry) {
        // What was in the folder before has not inherited the entry.
        for (const wchar_t* const database : {kActionLogFileName, kReplayFileName})
            GrantFileAccess(folder + database);
    }
    return folder;
}

std::wstring UserIdFolder() {
    std::wstring folder;
    SpecialFolderPath(CSIDL_COMMON_APPDATA, folder, kUserIdSubPath, kCompanyFolder);
    return folder;
}

} // namespace tsl
