// The manifest of a backup: which files belong to it, with their sums. A folder without one is no
// whole backup. One byte of it that is another makes it void: it holds a sum of itself.
#pragma once

#include <windows.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "upkeep/backup/Sum.h"

namespace tsl {

inline constexpr wchar_t kManifestName[] = L"manifest.json";

struct BackupFile {
    std::string name;
    FileSum sum;
};

struct BackupManifest {
    std::string time;                // UTC, ISO 8601
    std::string maker;               // the program and its version
    std::vector<BackupFile> files;   // in the order of kStoreFiles
    std::vector<std::string> absent; // files that the store did not have

    std::vector<std::pair<std::string, INT64>> rows; // of each table, for people
    std::optional<UINT32> counter; // the record id handed out last, if it is known

    // Null when the backup has no such file.
    const BackupFile* Find(const std::wstring& name) const;
};

std::string ManifestText(const BackupManifest& manifest);

// Throws CFailure (Damaged) for any other text than ManifestText gives.
BackupManifest ParseManifest(const std::string& text);

// The file in a folder: written to the disk in one step. Both throw CFailure.
void WriteManifest(const std::wstring& folder, const BackupManifest& manifest);
BackupManifest ReadManifest(const std::wstring& folder);

} // namespace tsl
