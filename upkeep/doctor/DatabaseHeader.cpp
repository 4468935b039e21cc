#include "upkeep/doctor/DatabaseHeader.h"

#include <algorithm>
#include <string_view>

namespace tsl {

bool IsDatabaseHeader(const FileLook& file) {
    constexpr std::string_view kMagic("SQLite format 3\0", 16);
    return file.bytes.size() >= kDatabaseHeaderSize &&
           std::equal(kMagic.begin(), kMagic.end(), file.bytes.begin(),
                      [](char expected, unsigned char byte) {
                          return static_cast<unsigned char>(expected) == byte;
                      });
}

JournalMode JournalModeOf(const FileLook& file) {
    constexpr size_t kWriteVersion = 18;
    constexpr size_t kReadVersion = 19;
    const int write = file.bytes[kWriteVersion];
    const int read = file.bytes[kReadVersion];
    if (write == 1 && read == 1) return JournalMode::Rollback;
    return write == 2 && read == 2 ? JournalMode::WriteAhead : JournalMode::Unknown;
}

} // namespace tsl
