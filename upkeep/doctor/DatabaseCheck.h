// Whether a database is whole and is what the component makes.
#pragma once

#include <windows.h>

#include <optional>
#include <span>
#include <string>

#include "upkeep/StoreLock.h"
#include "upkeep/doctor/Finding.h"

namespace tsl {

// One of the two databases: its file's name for the findings, and its tables without their prefix,
// the main one first.
struct DatabaseKind {
    const char* name;
    std::span<const wchar_t* const> tables;
};

extern const DatabaseKind kActionLogDatabase;
extern const DatabaseKind kReplayDatabase;

// What the counter has to fit to.
struct KnownIds {
    bool complete = true;     // all tables could be read
    UINT32 highestInUse = 0;  // 0 when there is no record
    UINT32 highestEver = 0;   // also of those that were deleted, as far as the headers tell
    bool headersTell = true;  // every database with records tells it
    bool ofOlderForm = false; // there is no counter file yet
};

// Adds to what is known. Nothing of the store is changed. The SQLiteAccess lock is given back as
// soon as the file itself is not needed any more, if that is before the end. REQUIRES: the lock is
// held, or its wait has timed out.
void CheckDatabase(const std::wstring& path, const DatabaseKind& kind,
                   std::optional<CStoreLock>& lock, KnownIds& ids, Findings& findings);

} // namespace tsl
