#include "tests/io_faults/FileLog.h"

#include <algorithm>

namespace tsl::test {

namespace {

constexpr size_t kSectorSize = 512;

} // namespace

void FileLog::Write(size_t offset, const void* data, size_t size) {
    const auto* const bytes = static_cast<const unsigned char*>(data);
    m_changes.push_back({/*isTruncation=*/false, offset, Bytes(bytes, bytes + size)});
}

void FileLog::Truncate(size_t size) {
    m_changes.push_back({/*isTruncation=*/true, size, {}});
}

void FileLog::Sync() {
    for (const Change& change : m_changes)
        Make(change, m_durable);
    m_changes.clear();
}

Bytes FileLog::AfterCut(Survival survival, std::mt19937& random) const {
    Bytes file = m_durable;
    if (survival == Survival::None) return file;
    std::vector<Change> changes = survival == Survival::SomeSectors ? Sectors() : m_changes;
    if (survival != Survival::All) {
        std::ranges::shuffle(changes, random);
        std::erase_if(changes, [&](const Change&) { return random() % 2 == 0; });
    }
    for (const Change& change : changes)
        Make(change, file);
    return file;
}

void FileLog::Make(const Change& change, Bytes& file) {
    if (change.isTruncation) {
        file.resize(std::min(file.size(), change.offset));
        return;
    }
    file.resize(std::max(file.size(), change.offset + change.bytes.size()));
    std::ranges::copy(change.bytes, file.begin() + static_cast<std::ptrdiff_t>(change.offset));
}

// The changes, with each write cut where one sector of the disk ends and the next begins.
std::vector<FileLog::Change> FileLog::Sectors() const {
    std::vector<Change> sectors;
    for (const Change& change : m_changes) {
        if (change.isTruncation) sectors.push_back(change);
        for (size_t done = 0; done < change.bytes.size();) {
            const size_t offset = change.offset + done;
            const size_t end =
                std::min(change.bytes.size(), done + kSectorSize - offset % kSectorSize);
            sectors.push_back({/*isTruncation=*/false, offset,
                               Bytes(change.bytes.begin() + static_cast<std::ptrdiff_t>(done),
                                     change.bytes.begin() + static_cast<std::ptrdiff_t>(end))});
            done = end;
        }
    }
    return sectors;
}

} // namespace tsl::test
