#include "console/StorePlace.h"

#include <windows.h>

#include <shlobj.h>

#include <filesystem>
#include <stdexcept>
#include <vector>

namespace tsl {

namespace {

std::wstring MachineFolder(const wchar_t* below) {
    wchar_t folder[MAX_PATH] = L"";
    // The current directory would be anybody's.
    if (FAILED(SHGetFolderPathW(/*owner=*/nullptr, CSIDL_COMMON_APPDATA, /*token=*/nullptr,
                                SHGFP_TYPE_CURRENT, folder)) ||
        !*folder) {
        throw std::runtime_error("the system names no folder for the data of all users");
    }
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
