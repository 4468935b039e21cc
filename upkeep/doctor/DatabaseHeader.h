// What the first bytes of a database file say, read without the engine.
#pragma once

#include <string>

#include "upkeep/doctor/FileLook.h"

namespace tsl {

inline constexpr size_t kDatabaseHeaderSize = 100;

enum class JournalMode { Rollback, WriteAhead, Unknown };

// Whether it begins as a database does.
bool IsDatabaseHeader(const FileLook& file);

// REQUIRES: it begins as a database does. Unknown is what no engine writes, and what keeps the
// component from writing.
JournalMode JournalModeOf(const FileLook& file);

} // namespace tsl
