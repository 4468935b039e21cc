// The files that the engine used, as a power cut would leave them.
#pragma once

#include <filesystem>
#include <map>

#include "tests/io_faults/FileLog.h"

namespace tsl::test {

// Files by path.
using DiskImage = std::map<std::filesystem::path, Bytes>;

class DiskLog {
public:
    // The log of a file, which begins with what is in the file when it is first asked for. It lives
    // until the file is deleted or the logs are forgotten.
    FileLog& Of(const std::filesystem::path& path);

    // A file was deleted, and does not come back by a power cut unless that is asked for.
    void Delete(const std::filesystem::path& path);
    // A file was synced: with it, deletions before it are on the disk.
    void SettleDeletions() { m_deleted.clear(); }
    size_t UnsettledDeletions() const { return m_deleted.size(); }

    void Forget();

    // All files of the store's folder, given as the engine saw them, after a power cut. Files that
    // the engine did not use stay as they are. With undoDeletions, deletions since the last sync
    // did not reach the disk.
    DiskImage AfterCut(DiskImage folder, Survival survival, unsigned seed,
                       bool undoDeletions = false) const;

private:
    std::map<std::filesystem::path, FileLog> m_files;
    std::map<std::filesystem::path, FileLog> m_deleted;
};

// All files of the store's folder.
DiskImage ReadStoreFolder();
// Makes the store's folder hold just these files.
void WriteStoreFolder(const DiskImage& image);

} // namespace tsl::test
