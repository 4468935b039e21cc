#include "tests/io_faults/DiskLog.h"

namespace tsl::test {

namespace fs = std::filesystem;

FileLog& DiskLog::Of(const fs::path& path) {
    const auto known = m_files.find(path);
    if (known != m_files.end()) return known->second;
    Bytes bytes = fs::is_regular_file(path) ? ReadBytes(path) : Bytes();
    return m_files.emplace(path, FileLog(std::move(bytes))).first->second;
}

void DiskLog::Delete(const fs::path& path) {
    auto gone = m_files.extract(path);
    if (gone.empty()) return;
    m_deleted.erase(path);
    m_deleted.insert(std::move(gone));
}

void DiskLog::Forget() {
    m_files.clear();
    m_deleted.clear();
}

DiskImage DiskLog::AfterCut(DiskImage folder, Survival survival, unsigned seed,
                            bool undoDeletions) const {
    std::mt19937 random(seed);
    if (undoDeletions) {
        for (const auto& [path, log] : m_deleted)
            folder[path] = log.AfterCut(survival, random);
    }
    for (const auto& [path, log] : m_files)
        folder[path] = log.AfterCut(survival, random);
    return folder;
}

DiskImage ReadStoreFolder() {
    DiskImage image;
    for (const auto& entry : fs::directory_iterator(StoreFolder()))
        image[entry.path()] = ReadBytes(entry.path());
    return image;
}

void WriteStoreFolder(const DiskImage& image) {
    fs::create_directories(StoreFolder());
    for (const auto& entry : fs::directory_iterator(StoreFolder())) {
        if (!image.contains(entry.path())) fs::remove(entry.path());
    }
    for (const auto& [path, bytes] : image)
        WriteBytes(path, bytes);
}

} // namespace tsl::test
