// The commands of the console host: what can be said to each, and the function that carries it out.
// Failures are thrown: CFailure, and std::invalid_argument for a value that cannot be read.
#pragma once

#include <windows.h>

#include <optional>
#include <string>
#include <vector>

#include "console/Failure.h"
#include "console/RecordSelection.h"
#include "upkeep/recovery/Recovery.h"

namespace tsl {

// What was said for all commands.
struct CommandContext {
    bool json = false;
    std::wstring pluginPath; // empty: the usual place
};

// Recording

ExitCode RunId(const CommandContext& context);

// Lists that are empty were not named.
struct RecordOptions {
    std::string name;
    INT32 app = 0;
    UINT32 user = 0;
    std::string time;
    UINT32 kind = 1;
    std::vector<std::string> strings;
    std::vector<LONG> ints;
    std::vector<ULONGLONG> ulls;
    std::vector<USHORT> shorts;
    std::vector<bool> bools;
    std::vector<FLOAT> floats;
};
ExitCode RunRecord(const RecordOptions& options, const CommandContext& context);

struct ImportOptions {
    std::string file; // "-" for the standard input
    bool keepIds = false;
};
ExitCode RunImport(const ImportOptions& options, const CommandContext& context);

struct ExportOptions {
    RecordSelection selection; // no user: all users
    RecordFilter filter;
    std::string format = "jsonl"; // or "csv"
    bool raw = false;             // of csv
    std::string file;             // empty: the standard output
};
ExitCode RunExport(const ExportOptions& options, const CommandContext& context);

struct MoveOptions {
    std::string oldTexts[2];
    std::string newTexts[2];
    INT32 number = 0;
    std::string file;
    INT32 app = 0;
    UINT32 user = 1;
    UINT32 kind = 1;
    bool save = false;
};
ExitCode RunMove(const MoveOptions& options, const CommandContext& context);

struct ResetOptions {
    UINT32 user = 0;
    UINT32 kind = 1;
    INT32 app = 0;
    bool dryRun = false;
};
ExitCode RunReset(const ResetOptions& options, const CommandContext& context);

// Records

struct ListOptions {
    RecordSelection selection;
    RecordFilter filter;
    size_t count = 20;
};
ExitCode RunList(const ListOptions& options, const CommandContext& context);

ExitCode RunShow(const std::vector<UINT32>& ids, const CommandContext& context);

ExitCode RunIds(const RecordSelection& selection, const CommandContext& context);

ExitCode RunAll(UINT32 kind, const CommandContext& context);

struct TakeOptions {
    UINT64 id = 0;
    UINT32 kind = 1;
};
ExitCode RunTake(const TakeOptions& options, const CommandContext& context);

struct DeleteOptions {
    RecordSelection selection; // of one user
    std::optional<UINT32> id;
    bool dryRun = false;
    bool yes = false;
};
ExitCode RunDelete(DeleteOptions options, const CommandContext& context);

struct FollowOptions {
    std::optional<UINT32> after;
    std::optional<UINT32> user;
    std::optional<UINT32> kind;
    UINT32 interval = 500; // milliseconds
};
ExitCode RunFollow(const FollowOptions& options, const CommandContext& context);

// The store

ExitCode RunDoctor(const CommandContext& context);

ExitCode RunBackup(const std::string& folder, const CommandContext& context);

ExitCode RunRestore(const std::string& folder, const CommandContext& context);

ExitCode RunRecover(const RecoverOptions& options, const CommandContext& context);

ExitCode RunCompact(const CommandContext& context);

// The top is how many of each are shown.
ExitCode RunStats(size_t top, const CommandContext& context);

ExitCode RunReport(const std::string& file, const CommandContext& context);

// The machine

ExitCode RunPlugins(const CommandContext& context);

ExitCode RunWhoami(const CommandContext& context);

} // namespace tsl
