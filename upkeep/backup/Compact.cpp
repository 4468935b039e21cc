#include "upkeep/backup/Compact.h"

#include <sqlite3.h>

#include "console/Failure.h"
#include "console/Text.h"
#include "upkeep/Connection.h"
#include "upkeep/StoreFiles.h"
#include "upkeep/StoreLock.h"
#include "upkeep/WholeDatabase.h"

namespace tsl {

namespace {

constexpr char kCannotCompact[] = "cannot compact";

// The page size is that of the component, also where a file came to another one.
constexpr char kCompact[] = "PRAGMA page_size = 2048; VACUUM";

std::vector<CompactedFile> DatabasesThere(const StorePaths& store) {
    std::vector<CompactedFile> databases;
    for (const StoreFile& file : kStoreFiles) {
        if (file.isDatabase && IsThere(file.In(store))) databases.push_back({file.In(store)});
    }
    if (databases.empty())
        throw CFailure(ExitCode::NothingFound, "there is no database to compact");
    return databases;
}

void Check(const std::wstring& path) {
    try {
        RequireWhole(CConnection(path, Access::ReadWrite), path);
    } catch (const CSqliteError& error) {
        throw FailureOf(kCannotCompact, path, error);
    }
}

void Compact(CompactedFile& file) {
    file.sizeBefore = std::filesystem::file_size(file.path);
    try {
        const CConnection connection(file.path, Access::ReadWrite);
        // The engine makes the new file in a database of its own.
        sqlite3_limit(connection.Get(), SQLITE_LIMIT_ATTACHED, 1);
        connection.Execute(kCompact);
    } catch (const CSqliteError& error) {
        if (error.Result() != SQLITE_FULL) throw FailureOf(kCannotCompact, file.path, error);
        throw CFailure(ExitCode::Denied, "cannot compact " + ToUtf8(file.path) +
                                             ": the disk is full; free up to " +
                                             std::to_string(file.sizeBefore) +
                                             " bytes on it, and as many for the temporary folder");
    }
    file.sizeAfter = std::filesystem::file_size(file.path);
}

} // namespace

std::vector<CompactedFile> CompactStore(const StorePaths& store, const Progress& progress) {
    const CDatabaseLock lock;
    std::vector<CompactedFile> databases = DatabasesThere(store);
    for (const CompactedFile& file : databases)
        Check(file.path);
    for (CompactedFile& file : databases) {
        progress("compacting " + ToUtf8(NameOf(file.path)), 0, 0);
        Compact(file);
    }
    return databases;
}

} // namespace tsl
