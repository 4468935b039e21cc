// A failure of SQLite as the console host tells it, with the exit code that goes with it.
#pragma once

#include "console/Failure.h"
#include "store/SqliteResult.h"
#include "upkeep/Connection.h"

namespace tsl {

inline CFailure DatabaseFailure(const std::wstring& database, const CSqliteError& error) {
    return CFailure("cannot read", database, SqliteResultToHresult(error.Result()));
}

} // namespace tsl
