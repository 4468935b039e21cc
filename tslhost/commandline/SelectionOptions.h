// The options by which several commands select records.
#pragma once

#include <CLI/CLI.hpp>

#include "console/RecordSelection.h"

namespace tsl {

void AddSelectionOptions(CLI::App& command, RecordSelection& selection);
void AddFilterOptions(CLI::App& command, RecordFilter& filter);

} // namespace tsl
