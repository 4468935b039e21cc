// What was done and found in one test, for the lines that tell the figures.
#pragma once

#include <map>
#include <string>

#include "tests/support/FullForm.h"

namespace tsl::test {

struct Tally {
    std::map<std::string, int> faults;
    int powerCuts = 0;
    // Power cuts that differ leave the same files where little was unsynced: each is looked at
    // once.
    int disksChecked = 0;
    int recordsChecked = 0;
    int recordsLost = 0;
    int deletionsUndone = 0;
    int recordsLostByUndoneDeletions = 0;

    void Print(const std::string& name) const {
        for (const auto& [kind, count] : faults)
            Measured(name + ": " + std::to_string(count) + " faults of kind " + kind);
        if (powerCuts > 0) {
            Measured(name + ": " + std::to_string(powerCuts) + " power cuts, which left " +
                     std::to_string(disksChecked) + " different disks");
        }
        if (recordsChecked > 0) {
            Measured(name + ": " + std::to_string(recordsChecked) +
                     " acknowledged records checked, " + std::to_string(recordsLost) + " lost");
        }
        if (deletionsUndone > 0) {
            Measured(name + ": " + std::to_string(deletionsUndone) +
                     " power cuts undid the deletion of a journal, which took back " +
                     std::to_string(recordsLostByUndoneDeletions) + " acknowledged records");
        }
    }
};

} // namespace tsl::test
