// The commands as the parser knows them: options, descriptions and footers, in the groups and in
// the order of the help.
#pragma once

#include <CLI/CLI.hpp>

#include "tslhost/Commands.h"

namespace tsl {

// What the command line said for all commands, and how the chosen one ended.
struct CommandRun {
    CommandContext context;
    ExitCode exitCode = ExitCode::Fine;
};

// Each command, once chosen, is carried out with the context of the run. The run outlives the app.
void AddRecordingCommands(CLI::App& app, CommandRun& run);
void AddRecordsCommands(CLI::App& app, CommandRun& run);
void AddStoreCommands(CLI::App& app, CommandRun& run);
void AddMachineCommands(CLI::App& app, CommandRun& run);

} // namespace tsl
