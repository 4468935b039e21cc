#include "tests/io_faults/StoreState.h"

#include <algorithm>
#include <ostream>

#include "tests/support/FileDatabase.h"

namespace tsl::test {

namespace fs = std::filesystem;

namespace {

constexpr const char* kTableNames[kTableCount] = {"TslIf_ContentDeleteProperty",
                                                  "TslIf_DbActionLog", "TslIf_ActionReplay"};

// The time of writing must be one, but which does not matter.
constexpr char kColumns[] =
    "ActionLogId, UserId, quote(LogKind), ActionName, quote(UsedLog) || quote(AppId) || "
    "quote(AppName) || quote(ActionParameters) || quote(AppLoggedTime) || "
    "(PluginLoggedTime BETWEEN 40000 AND 100000) || quote(PreActionName) || "
    "quote(PreActionParameters) || quote(PreLoggedTime)";

TableRows ReadTable(const FileDatabase& file, const std::string& name) {
    TableRows rows;
    if (file.Value("SELECT count(*) FROM sqlite_master WHERE name = '" + name + "'") == "0") {
        return rows;
    }
    for (Row& row : file.Query(std::string("SELECT ") + kColumns + " FROM " + name +
                               " ORDER BY ActionLogId, rowid")) {
        rows.push_back({std::stoll(row[0].value()), std::stoll(row[1].value()),
                        std::move(row[2].value()), std::move(row[3].value()),
                        std::move(row[4].value())});
    }
    return rows;
}

template <class Visit>
void ReadFile(const fs::path& path, Visit visit) {
    if (!fs::is_regular_file(path)) return;
    const FileDatabase file(path);
    EXPECT_EQ("ok", file.Value("PRAGMA integrity_check")) << path;
    visit(file);
}

StoreState After(const std::vector<Step>& steps, size_t chosen, StoreState state,
                 const StoreState& complete) {
    for (size_t index = 0; index < steps.size(); ++index) {
        const Table table = steps[index].table;
        if (chosen >> index & 1) steps[index].make(state.In(table), complete.In(table));
    }
    return state;
}

// Rows are in the order of their ids.
auto RowsOf(const TableRows& rows, INT64 id) {
    return std::ranges::equal_range(rows, id, {}, &TableRow::id);
}

bool Holds(const TableRows& rows, const TableRow& row) {
    const auto ofId = RowsOf(rows, row.id);
    return std::ranges::find(ofId, row) != ofId.end();
}

size_t AcknowledgedSteps(const std::vector<Step>& steps, bool succeeded) {
    size_t acknowledged = 0;
    for (size_t index = 0; index < steps.size(); ++index) {
        if (succeeded && steps[index].isAcknowledged) acknowledged |= size_t{1} << index;
    }
    return acknowledged;
}

} // namespace

void PrintTo(const StoreState& state, std::ostream* stream) {
    constexpr size_t kMostTold = 60;
    for (size_t table = 0; table < kTableCount; ++table) {
        *stream << '\n' << kTableNames[table] << ':';
        if (state.tables[table].size() > kMostTold) {
            *stream << ' ' << state.tables[table].size() << " rows";
            continue;
        }
        for (const TableRow& row : state.tables[table])
            *stream << ' ' << row.id << '/' << row.user << '/' << row.logKind;
    }
}

StoreState ReadStore() {
    StoreState state;
    ReadFile(ActionLogPath(), [&](const FileDatabase& file) {
        for (const Table table : {Table::Taken, Table::Log})
            state.In(table) = ReadTable(file, kTableNames[static_cast<size_t>(table)]);
    });
    ReadFile(ReplayPath(), [&](const FileDatabase& file) {
        state.In(Table::Replay) = ReadTable(file, kTableNames[static_cast<size_t>(Table::Replay)]);
    });
    return state;
}

Step Put(Table table, INT64 id) {
    return {table, [id](TableRows& rows, const TableRows& complete) {
                std::erase_if(rows, [&](const TableRow& row) { return row.id == id; });
                const auto row = std::ranges::find(complete, id, &TableRow::id);
                ASSERT_NE(complete.end(), row) << "no record " << id;
                rows.insert(std::ranges::upper_bound(rows, id, {}, &TableRow::id), *row);
            }};
}

Step Remove(Table table, std::function<bool(const TableRow&)> condition) {
    return {table,
            [condition](TableRows& rows, const TableRows&) { std::erase_if(rows, condition); }};
}

Step Acknowledged(Step step) {
    step.isAcknowledged = true;
    return step;
}

States AnyOf(const std::vector<Step>& steps, const StoreState& before, const StoreState& complete,
             bool succeeded) {
    States states;
    const size_t acknowledged = AcknowledgedSteps(steps, succeeded);
    for (size_t chosen = 0; chosen < size_t{1} << steps.size(); ++chosen) {
        if ((chosen & acknowledged) == acknowledged) {
            states.push_back(After(steps, chosen, before, complete));
        }
    }
    return states;
}

States BeginningsOf(const std::vector<Step>& steps, const StoreState& before,
                    const StoreState& complete, bool succeeded) {
    States states;
    const size_t acknowledged = AcknowledgedSteps(steps, succeeded);
    for (size_t count = 0; count <= steps.size(); ++count) {
        const size_t chosen = (size_t{1} << count) - 1;
        if ((chosen & acknowledged) == acknowledged) {
            states.push_back(After(steps, chosen, before, complete));
        }
    }
    return states;
}

Kept CountKept(const States& states, const StoreState& actual) {
    Kept kept;
    for (size_t table = 0; table < kTableCount; ++table) {
        for (const TableRow& row : states.front().tables[table]) {
            const auto hasIt = [&](const StoreState& state) {
                return !RowsOf(state.tables[table], row.id).empty();
            };
            if (!std::ranges::all_of(states, hasIt)) continue;
            ++kept.records;
            const auto isThereAsIn = [&](const StoreState& state) {
                const auto ofId = RowsOf(state.tables[table], row.id);
                return std::ranges::all_of(ofId, [&](const TableRow& version) {
                    return Holds(actual.tables[table], version);
                });
            };
            if (!std::ranges::any_of(states, isThereAsIn)) ++kept.lost;
        }
    }
    return kept;
}

} // namespace tsl::test
