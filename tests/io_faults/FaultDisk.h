// What the faulty file system and its files share. Used by one thread.
#pragma once

#include "tests/io_faults/DiskLog.h"
#include "tests/io_faults/FaultSchedule.h"

namespace tsl::test {

struct FaultDisk {
    FaultSchedule schedule;
    DiskLog log;
    // A disk that says a file is synced but may still lose what was written.
    bool liesAboutSyncs = false;
    // Files that the engine has open, and how many it has opened.
    int openFiles = 0;
    int filesOpened = 0;
};

} // namespace tsl::test
