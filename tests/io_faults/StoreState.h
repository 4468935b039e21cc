// All rows of the store as they are in the files, and the states in which an operation may leave
// them.
#pragma once

#include <array>
#include <functional>
#include <string>
#include <vector>

#include "tests/support/StoreFixture.h"

namespace tsl::test {

// The tables, in the order in which one action is written to them.
enum class Table { Taken, Log, Replay };
inline constexpr size_t kTableCount = 3;

struct TableRow {
    INT64 id;
    INT64 user;
    std::string logKind; // as an SQL literal
    std::string name;
    std::string rest; // all that is not the time of writing, which differs from run to run
    bool operator==(const TableRow&) const = default;
};
using TableRows = std::vector<TableRow>;

struct StoreState {
    std::array<TableRows, kTableCount> tables;
    TableRows& In(Table table) { return tables[static_cast<size_t>(table)]; }
    const TableRows& In(Table table) const { return tables[static_cast<size_t>(table)]; }
    bool operator==(const StoreState&) const = default;
};
// Tells the rows by table, id, user and log kind, unless there are too many.
void PrintTo(const StoreState& state, std::ostream* stream);

// Reads the files with an engine of the tests' own, which first rolls back what an unfinished
// operation left. Fails the test when a file is damaged. A table that is missing has no rows.
StoreState ReadStore();

// One change of an operation to one table, committed for itself. It is given the rows, and those
// of the operation done without a fault.
struct Step {
    Table table;
    std::function<void(TableRows&, const TableRows& complete)> make;
    // The operation's success says that this step was made.
    bool isAcknowledged = false;
};

// The row of this id is written, in the place of any other of the id.
Step Put(Table table, INT64 id);
// The rows that the condition holds for are deleted.
Step Remove(Table table, std::function<bool(const TableRow&)> condition);
Step Acknowledged(Step step);

using States = std::vector<StoreState>;

// Every step was made or not made. After a success the acknowledged ones were made.
States AnyOf(const std::vector<Step>& steps, const StoreState& before, const StoreState& complete,
             bool succeeded);
// A step was made only if all before it were: the machine stopped somewhere.
States BeginningsOf(const std::vector<Step>& steps, const StoreState& before,
                    const StoreState& complete, bool succeeded);

// How many records every one of the states has, each in some version, and how many of these the
// actual state has in none of their versions.
struct Kept {
    int records = 0;
    int lost = 0;
};
Kept CountKept(const States& states, const StoreState& actual);

} // namespace tsl::test
