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

// What a database leaves beside it that belongs to its content: the rollback journal and, where
// another program has switched it to one, the write-ahead log.
inline constexpr const wchar_t* kCompanionSuffixes[] = {L"-journal", L"-wal"};

// The index of a write-ahead log, which is made anew where it is missing.
inline constexpr wchar_t kLogIndexSuffix[] = L"-shm";

// The rollback journal of a database: there while a change is under way, or after one that was
// interrupted.
std::wstring JournalOf(const std::wstring& database);

} // namespace tsl
