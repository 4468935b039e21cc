// One open file of the faulty file system: the engine's memory for it, with the real file behind.
#pragma once

#include <sqlite3.h>

#include "tests/io_faults/FaultDisk.h"

namespace tsl::test {

struct FaultFile {
    sqlite3_file base; // must come first: it is what the engine knows
    FaultDisk* disk;
    FileLog* log; // null for a file that has no name

    sqlite3_file* Real() { return reinterpret_cast<sqlite3_file*>(this + 1); }
};

// The calls of an open file.
extern const sqlite3_io_methods kFaultFileMethods;

} // namespace tsl::test
