// Whether a database has the tables of the component, as it makes them, and nothing else.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "upkeep/Connection.h"
#include "upkeep/doctor/Finding.h"

namespace tsl {

struct FoundTables {
    std::vector<std::string> usable; // those of the component that can be read
    bool ofOlderForm = false;        // the last record id lies in a table of the file
};

// Names are those without the prefix, the main table first. Throws CSqliteError.
FoundTables CheckSchema(const CConnection& connection, std::span<const wchar_t* const> names,
                        const std::string& subject, Findings& findings);

} // namespace tsl
