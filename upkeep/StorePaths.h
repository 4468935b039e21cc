// The files of one store: those of this machine, or a copy of them in a folder.
#pragma once

#include <string>

namespace tsl {

struct StorePaths {
    std::wstring actionLog; // databases
    std::wstring replayLog;
    std::wstring counter; // text files
    std::wstring userIds;
};

// Those that the component uses. Nothing is created.
StorePaths MachineStore();

// Files of the usual names that all lie in one folder. With or without a trailing backslash.
StorePaths StoreIn(const std::wstring& folder);

// The rollback journal of a database: there while a change is under way, or after one that was
// interrupted.
std::wstring JournalOf(const std::wstring& database);

} // namespace tsl
