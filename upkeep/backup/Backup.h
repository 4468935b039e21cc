// A copy of a store in a folder, made while its hosts run.
#pragma once

#include <string>

#include "upkeep/Progress.h"
#include "upkeep/StorePaths.h"
#include "upkeep/backup/Manifest.h"

namespace tsl {

// Copies the store into the folder, which must be empty or absent, under the locks: the databases
// as they are between two changes, both at one moment, the text files byte for byte. The manifest,
// which names the maker, comes last. Throws CFailure: Usage for the folder, NothingFound for no
// store, Damaged for a database that is not whole; what was copied by then is removed again.
BackupManifest BackUpStore(const StorePaths& store, const std::wstring& folder,
                           const std::string& maker, const Progress& progress);

} // namespace tsl
