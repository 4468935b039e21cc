// The two machine-wide locks of the store. Where both are held, SQLiteAccess is taken first and
// LogId is released first.
#pragma once

#include "base/NamedMutex.h"

namespace tsl {

// Shared with every version of the component: not to be changed.
inline constexpr wchar_t kSqliteAccessMutexName[] = L"Global\\TslIfDbActionLog_SQLiteAccess";
inline constexpr wchar_t kLogIdMutexName[] = L"Global\\TslIfDbActionLog_LogId";

inline constexpr DWORD kSqliteAccessTimeoutMilliseconds = 3000;
inline constexpr DWORD kLogIdTimeoutMilliseconds = 10000;

} // namespace tsl
