#include "files/DataFolders.h"

#include <shlobj.h>

#include "files/AccessRights.h"
#include "files/Paths.h"

namespace tsl {

namespace {

// Part of every installation's data path: not to be changed.
constexpr std::wstring_view kCompanyFolder = L"Corvane Corporation";
constexpr std::wstring_view kDbSubPath = L"Tessaly\\TslIfDbActionLog";
constexpr std::wstring_view kUserIdSubPath = L"Corvane Corporation\\Tessaly\\UID\\";

} // namespace

std::wstring DbFolder() {
    std::wstring folder;
    SpecialFolderPath(CSIDL_COMMON_APPDATA, folder, kDbSubPath, kCompanyFolder);
    if (!folder.empty()) {
        GrantFolderAccess(LongPathPrefix(folder, /*force=*/false, /*directory=*/false));
    }
    return folder;
}

std::wstring UserIdFolder() {
    std::wstring folder;
    SpecialFolderPath(CSIDL_COMMON_APPDATA, folder, kUserIdSubPath);
    return folder;
}

} // namespace tsl
