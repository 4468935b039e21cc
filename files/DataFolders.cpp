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

DataFolder OpenDbFolder() {
    DataFolder folder;
    const bool isKnown =
        SpecialFolderPath(CSIDL_COMMON_APPDATA, folder.path, kDbSubPath, kCompanyFolder);
    folder.resolved = folder.path;
    if (!isKnown) return folder;
    const GrantedFolder granted =
        PrepareFolder(LongPathPrefix(folder.path, /*force=*/false, /*directory=*/false));
    folder.status = granted.opened.status;
    if (!granted.opened.file) return folder;
    if (!granted.opened.resolved.empty()) folder.resolved = granted.opened.resolved + L'\\';
    if (granted.isNewEntry) {
        // What was in the folder before has not inherited the entry.
        for (const wchar_t* const database : {kActionLogFileName, kReplayFileName})
            GrantFileAccess(folder.path + database);
    }
    return folder;
}

std::wstring DbFolder() {
    return OpenDbFolder().path;
}

std::wstring UserIdFolder() {
    std::wstring folder;
    SpecialFolderPath(CSIDL_COMMON_APPDATA, folder, kUserIdSubPath, kCompanyFolder);
    return folder;
}

} // namespace tsl
