// Saves what can still be read of a damaged store into fresh databases, and mends the counter.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "upkeep/StorePaths.h"
#include "upkeep/recovery/PageRows.h"

namespace tsl {

struct RecoverOptions {
    bool force = false;  // also databases that are whole
    bool dryRun = false; // only find out; nothing in the store is changed
    std::function<void(const std::string& what)> onProgress;
};

enum class Outcome { Missing, Whole, Recovered };

struct TableReport {
    std::string name;
    SavedRows rows;
    Unread unread;
};

struct DatabaseReport {
    std::wstring path;
    Outcome outcome = Outcome::Missing;
    std::string damage; // what was wrong, in words; may be empty when it was forced
    std::vector<TableReport> tables;
    Unread unread; // of which the table is not known
    UINT64 orphanPages = 0;
    UINT64 skippedPages = 0;
    std::wstring keptAs; // where the damaged file is now; empty in a dry run
    UINT32 highestId = 0;
    bool isOlderForm = false; // the last id is in a table of it

    // Whether there was anything that could not be read, or not wholly.
    bool IsPartly() const;
};

enum class CounterState {
    Fine,
    Missing,
    Behind,  // lower than an id that is in use
    Spoiled, // something else than a number, though it is read as one
};

struct CounterReport {
    CounterState state = CounterState::Fine;
    UINT32 found = 0;
    std::optional<UINT32> written; // none when it was fine
};

struct RecoverReport {
    std::vector<DatabaseReport> databases;
    CounterReport counter;
};

// Throws CFailure, which tells what was done before; a database is then as it was, or wholly
// recovered. REQUIRES: the locks of the store are held.
RecoverReport RecoverStore(const StorePaths& store, const RecoverOptions& options);

} // namespace tsl
