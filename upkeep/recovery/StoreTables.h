// Which tables each database of a store has.
#pragma once

#include <optional>
#include <string>

namespace tsl {

struct DatabaseTables {
    std::string main;
    std::string kept;  // of what deletions keep; empty where the database has none
    std::string older; // of the last id, in a store of the older form; empty likewise
};

DatabaseTables ActionLogTables();
DatabaseTables ReplayLogTables();

// The statements that create an action table, and that of the last id, where they are missing.
std::string CreateStatement(const std::string& table);
std::string CreateOlderStatement(const std::string& table);

} // namespace tsl
