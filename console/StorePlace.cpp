#include "console/StorePlace.h"

#include <windows.h>

#include <shlobj.h>

#include <filesystem>
#include <vector>

namespace tsl {

namespace {

std::wstring MachineFolder(const wchar_t* below) {
    wchar_t folder[MAX_PATH] = L"";
    SHGetFolderPathW(/*owner=*/nullptr, CSIDL_COMMON_APPDATA, /*token=*/nullptr, SHGFP_TYPE_CURRENT,
                     folder);
    return std::wstring(folder) + below;
}

} // namespace

std::wstring ProgramFolder() {
    std::vector<wchar_t> path(0x8000); // longer than any path
    const DWORD length = GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
    const std::wstring program(path.data(), length);
    return program.substr(0, program.rfind(L'\\') + 1);
}

std::wstring FullPath(const std::wstring& path) {
    return std::filesystem::absolute(path).wstring();
}

std::wstring StoreFolderPath() {
    return MachineFolder(kStoreFolders);
}
std::wstring UserIdFolderPath() {
    return MachineFolder(L"\\Corvane Corporation\\Tessaly\\UID\\");
}

std::wstring CounterFilePath() {
    return StoreFolderPath() + L"actionLog.txt";
}
std::wstring ActionLogPath() {
    return StoreFolderPath() + L"ualog.db";
}
std::wstring ReplayLogPath() {
    return StoreFolderPath() + L"uareplay.db";
}
std::wstring UserIdListPath() {
    return UserIdFolderPath() + L"UserIdList.dat";
}

} // namespace tsl
