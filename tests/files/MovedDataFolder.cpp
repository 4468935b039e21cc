#include "tests/files/MovedDataFolder.h"

#include <stdexcept>

namespace tsl::test {

namespace {

constexpr wchar_t kMachine[] = L"Software\\tsl_files_tests";
constexpr wchar_t kFolders[] = L"Software\\tsl_files_tests\\Software\\Microsoft\\Windows"
                               L"\\CurrentVersion\\Explorer\\User Shell Folders";

void Check(LSTATUS status) {
    if (status != ERROR_SUCCESS) throw std::runtime_error("the data folder cannot be moved");
}

} // namespace

MovedDataFolder::MovedDataFolder(const std::wstring& folder) {
    RegDeleteTreeW(HKEY_CURRENT_USER, kMachine);
    const DWORD size = static_cast<DWORD>((folder.size() + 1) * sizeof(wchar_t));
    Check(RegSetKeyValueW(HKEY_CURRENT_USER, kFolders, L"Common AppData", REG_SZ, folder.c_str(),
                          size));
    HKEY machine = nullptr;
    Check(RegOpenKeyExW(HKEY_CURRENT_USER, kMachine, /*options=*/0, KEY_ALL_ACCESS, &machine));
    const LSTATUS status = RegOverridePredefKey(HKEY_LOCAL_MACHINE, machine);
    RegCloseKey(machine);
    Check(status);
}

MovedDataFolder::~MovedDataFolder() {
    RegOverridePredefKey(HKEY_LOCAL_MACHINE, nullptr);
    RegDeleteTreeW(HKEY_CURRENT_USER, kMachine);
}

} // namespace tsl::test
