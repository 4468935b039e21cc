// Database files as no version of the component leaves them: damaged in any place, or made by
// somebody else who used the component's names for something of his own.
#pragma once

#include <string>

#include "tests/hostile_input/Chance.h"
#include "tests/support/StoreFixture.h"

namespace tsl::test {

// Damages the bytes of a database: its header, its schema, whole pages, or any bytes.
void DamageDatabase(Bytes& file, Chance& chance);

// Makes a file of somebody else's, in which the table's name stands for something else. Never
// anything that answers without end: no engine can tell that from a large table.
void MakeForeignDatabase(const std::filesystem::path& path, const std::string& table,
                         Chance& chance);

// Puts values of the wrong kind, or of a wrong size, into any columns of a good table.
void SpoilRows(const std::filesystem::path& path, const std::string& table, Chance& chance);

} // namespace tsl::test
