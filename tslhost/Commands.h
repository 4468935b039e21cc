// The commands of the console host: each adds itself to the command line and carries itself out
// when it is chosen.
#pragma once

#include <CLI/CLI.hpp>
#include <string>

#include "console/Failure.h"

namespace tsl {

// What the command line said for all commands, and how the chosen one ended.
struct CommandContext {
    bool json = false;
    std::wstring pluginPath;
    ExitCode exitCode = ExitCode::Fine;
};

void AddAllCommand(CLI::App& app, CommandContext& context);
void AddBackupCommand(CLI::App& app, CommandContext& context);
void AddCompactCommand(CLI::App& app, CommandContext& context);
void AddDeleteCommand(CLI::App& app, CommandContext& context);
void AddDoctorCommand(CLI::App& app, CommandContext& context);
void AddExportCommand(CLI::App& app, CommandContext& context);
void AddFollowCommand(CLI::App& app, CommandContext& context);
void AddIdCommand(CLI::App& app, CommandContext& context);
void AddIdsCommand(CLI::App& app, CommandContext& context);
void AddImportCommand(CLI::App& app, CommandContext& context);
void AddListCommand(CLI::App& app, CommandContext& context);
void AddManualCommand(CLI::App& app, CommandContext& context);
void AddMoveCommand(CLI::App& app, CommandContext& context);
void AddPluginsCommand(CLI::App& app, CommandContext& context);
void AddRecordCommand(CLI::App& app, CommandContext& context);
void AddRecoverCommand(CLI::App& app, CommandContext& context);
void AddReportCommand(CLI::App& app, CommandContext& context);
void AddResetCommand(CLI::App& app, CommandContext& context);
void AddRestoreCommand(CLI::App& app, CommandContext& context);
void AddShowCommand(CLI::App& app, CommandContext& context);
void AddStatsCommand(CLI::App& app, CommandContext& context);
void AddTakeCommand(CLI::App& app, CommandContext& context);
void AddWhoamiCommand(CLI::App& app, CommandContext& context);

} // namespace tsl
