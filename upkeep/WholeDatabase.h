// Whether a database is whole, and what to say when it is not.
#pragma once

#include "console/Failure.h"
#include "upkeep/Connection.h"

namespace tsl {

// What the engine answered in the console's words and with its exit code. For a damaged database it
// names the command that saves its records.
CFailure FailureOf(const char* operation, const std::wstring& database, const CSqliteError& error);

// How to open a database to read records. One that another program has switched to a write-ahead
// log is brought back first, as each host does, which only who may write can do.
Access AccessToRead(const std::wstring& database);

// Lets the engine look through all pages. Throws CFailure (Damaged), or CSqliteError.
void RequireWhole(const CConnection& connection, const std::wstring& database);

} // namespace tsl
