// Databases that somebody put into the folder: what the engine would do for them if it trusted what
// they say.
#pragma once

#include <string>
#include <vector>

namespace tsl::test {

struct HostileSchema {
    std::string name;
    // SQL that makes "ualog.db"; nothing in it is run before somebody uses the tables.
    std::string sql;
    // Whether a record can be written all the same: what is hostile is switched off, not the file.
    bool isUsable = false;
};

// The ones that were seen to hang or to flood hosts, first; then those that a rule makes:
// expressions without end or measure in each place that a schema has for one, for each of the
// tables.
std::vector<HostileSchema> HostileSchemas();

// What somebody may have added for a good reason.
std::vector<HostileSchema> HarmlessSchemas();

} // namespace tsl::test
