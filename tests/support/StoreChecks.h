// What a test can tell of the store from outside: the rows of a table, and whether a lock is free.
#pragma once

#include <filesystem>
#include <string>

namespace tsl::test {

inline constexpr char kActionLogRows[] = "TslIf_DbActionLog";
inline constexpr char kTakenRows[] = "TslIf_ContentDeleteProperty";
inline constexpr char kReplayRows[] = "TslIf_ActionReplay";

inline constexpr wchar_t kSqliteAccessLock[] = L"Global\\TslIfDbActionLog_SQLiteAccess";
inline constexpr wchar_t kLogIdLock[] = L"Global\\TslIfDbActionLog_LogId";

// How many rows a table has; 0 when there is no such table, or no such file.
int CountRows(const std::filesystem::path& database, const std::string& table);

// Whether anyone has the mutex open.
bool MutexExists(const wchar_t* name);

// Whether another thread can take the mutex at once. A mutex that nobody has open is free; one that
// its owner left behind is not.
bool MutexIsFree(const wchar_t* name);

} // namespace tsl::test
