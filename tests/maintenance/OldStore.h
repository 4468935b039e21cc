// Base of the tests on stores of the older form: makes one, and tells what became of it.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "tests/integration/Aftermath.h"
#include "tests/support/Failures.h"
#include "tests/support/FileDatabase.h"
#include "tests/support/PluginFixture.h"

namespace tsl::test {

inline constexpr char kIdTable[] = "TslIf_ActionRecordId";

// The folder of the SQL files that make stores of the older form.
std::filesystem::path OldStoreFolder();

// Makes the action log of one of them.
void MakeOldStore(const std::string& sqlFile);
// Runs SQL on the action log, making it when it is missing.
void ChangeActionLog(const std::string& sql);

// All of an action log: its tables (type, name, text) and its records, each value as an SQL
// literal, the log kind last.
struct StoreImage {
    std::vector<Row> tables;
    std::vector<Row> records;
    bool operator==(const StoreImage&) const = default;
};
StoreImage ReadActionLog();
void PrintTo(const StoreImage& image, std::ostream* stream);

// The same store once its records have their log kinds, and once it is converted.
StoreImage WithLogKinds(StoreImage image);
StoreImage Converted(StoreImage image);

// How often the action log was changed, by its header; a conversion sets the kinds, then those of
// the locations, and drops the old table.
UINT32 ChangesOfActionLog();
inline constexpr UINT32 kChangesOfAConversion = 3;

// The log kinds in the order of the records, with a blank between.
std::string LogKinds();

// The counter file's bytes for a counter.
Bytes CounterBytes(const std::wstring& digits);

// What maintenance answers for a store object of its own.
HRESULT Maintain();

class OldStoreTest : public PluginTest {
protected:
    // Whatever a test did, no lock and no file is left open, and no half-made counter.
    void TearDown() override;

    // Switches recording on and off by way of the interface, with what maintenance that brings.
    void ExpectTheSwitchWorks();

    // The store of "complete.sql" was converted, and its next id is handed out.
    void ExpectCompleteStoreIsConverted(const StoreImage& before);
    // Its records have their log kinds, but nothing else was done to it.
    static void ExpectOnlyLogKindsAreSet(const StoreImage& before);
};

} // namespace tsl::test
