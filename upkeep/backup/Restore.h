// Puts a backup in the place of a store.
#pragma once

#include <optional>
#include <string>

#include "upkeep/Progress.h"
#include "upkeep/StorePaths.h"
#include "upkeep/backup/Manifest.h"

namespace tsl {

struct RestoreReport {
    BackupManifest manifest;
    std::wstring keptFolder;       // where the files that were replaced are; empty for none
    std::optional<UINT32> counter; // of the store as it is now
    bool counterOfStore = false;   // the store's own stayed: it is higher, or the backup has none
    bool userIdsOfStore = false;   // the backup has no user id list, so the store's stayed
};

// Looks through the backup first (Damaged: nothing is touched), copies it beside the store's files,
// and then puts the copies in their place under the locks; files that the backup lacks are set
// aside, but for the counter and the user id list. Journals of the replaced databases go with them.
// The store is made where there is none. Throws CFailure, and the store is as it was.
RestoreReport RestoreStore(const std::wstring& backup, const StorePaths& store,
                           const Progress& progress);

} // namespace tsl
