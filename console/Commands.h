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

void AddIdCommand(CLI::App& app, CommandContext& context);
void AddRecordCommand(CLI::App& app, CommandContext& context);
void AddImportCommand(CLI::App& app, CommandContext& context);

} // namespace tsl
