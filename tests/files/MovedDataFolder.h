// Another folder for the data of all users, as the shell tells it to this process.
#pragma once

#include <windows.h>

#include <string>

namespace tsl::test {

// Has the shell name the folder, which must be there, as the application data of all users until it
// goes: this process then sees a key of its own in place of HKEY_LOCAL_MACHINE, so the settings of
// the machine and of other processes stay as they are. One at a time; throws when it cannot.
class MovedDataFolder {
public:
    explicit MovedDataFolder(const std::wstring& folder);
    MovedDataFolder(const MovedDataFolder&) = delete;
    MovedDataFolder& operator=(const MovedDataFolder&) = delete;
    ~MovedDataFolder();
};

} // namespace tsl::test
