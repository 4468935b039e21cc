// A store with records, and its files damaged in the ways that support engineers meet.
#pragma once

#include <string>
#include <vector>

#include "tests/support/StoreFixture.h"
#include "upkeep/StorePaths.h"

namespace tsl::test {

// What is in the sample: the ids of the action log are 1 to kSampleRecords, those of the replay log
// the last of them, those of the kept records the first of them.
inline constexpr int kSampleRecords = 600;
inline constexpr int kSampleKept = 40;
inline constexpr int kSampleReplayed = 100;

// Makes the files: both databases as the component makes them (some texts longer than a page, some
// free pages), the counter at the highest id, three users. Folders must be there.
void MakeSampleStore(const StorePaths& store);

// A file, damaged in one way.
struct DamagedFile {
    std::string how; // for the messages of a test
    Bytes bytes;
    bool isFolder = false; // a folder lies in its place
};

// At least count of them, always the same: 1 to 64 flipped bytes, cut at each page boundary, other
// schemas, a text, nothing at all, a folder.
std::vector<DamagedFile> DamagedDatabases(const Bytes& whole, size_t count);

// count spoiled counter files or user id lists. Some are still whole for whoever reads them.
std::vector<DamagedFile> DamagedTextFiles(const Bytes& whole, size_t count);

// Puts it in the place of the file.
void PutInPlace(const DamagedFile& file, const std::filesystem::path& path);

} // namespace tsl::test
