// Lines of exports, and what becomes of them.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tests/console/ConsoleRun.h"
#include "tests/support/StoreFixture.h"

namespace tsl::test {

// Each with its line end.
std::vector<std::string> SplitLines(const std::string& text);
std::string Join(const std::vector<std::string>& lines, size_t first, size_t last);

// What the store exports.
std::string Exported();

// Imports the lines under their ids.
ConsoleResult KeepIds(const std::string& lines);

// The summary without the rate.
std::string Counts(const ConsoleResult& result);

// A line of an export whose recording gives it again under most log kinds.
std::string ExportLine(UINT32 id, const std::string& name, unsigned kind = 1, unsigned user = 1);

void EmptyTheStore();

// The ids in a table, in ascending order: "1,2,3".
std::string IdsIn(const std::filesystem::path& database, const std::string& table);

} // namespace tsl::test
