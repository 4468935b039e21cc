// tslhost plugins, whoami and manual
#include "console/Output.h"
#include "tslhost/commandline/CommandGroups.h"
#include "tslhost/commandline/Manual.h"

namespace tsl {

namespace {

void AddPlugins(CLI::App& app, CommandRun& run) {
    CLI::App* const command = app.add_subcommand(
        "plugins", "List the registered database plug-ins in the order of the engine");
    command->footer("Example: tslhost plugins --json");
    command->callback([&run] { run.exitCode = RunPlugins(run.context); });
}

void AddWhoami(CLI::App& app, CommandRun& run) {
    CLI::App* const command = app.add_subcommand(
        "whoami", "Show the current user's SID and user id (a new user is given one)");
    command->footer("Example: tslhost whoami --json");
    command->callback([&run] { run.exitCode = RunWhoami(run.context); });
}

void AddManual(CLI::App& app) {
    CLI::App* const command =
        app.add_subcommand("manual", "Print the help of all commands as one Markdown document");
    command->footer("Example: tslhost manual > tslhost.md");
    command->callback([&app] { PrintHelp(MakeManual(app)); });
}

} // namespace

void AddMachineCommands(CLI::App& app, CommandRun& run) {
    AddPlugins(app, run);
    AddWhoami(app, run);
    AddManual(app);
}

} // namespace tsl
