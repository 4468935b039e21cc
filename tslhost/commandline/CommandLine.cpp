#include "tslhost/commandline/CommandLine.h"

#include <memory>

#include "console/Output.h"
#include "console/Text.h"
#include "tslhost/commandline/CommandGroups.h"
#include "tslhost/commandline/HelpFormatter.h"

namespace tsl {

namespace {

constexpr char kFooter[] =
    "tslhost COMMAND --help tells the options of a command, with an example.\n"
    "\n"
    "It ends with\n"
    "  0  all went well\n"
    "  1  nothing was found\n"
    "  2  wrong usage\n"
    "  3  something is locked or timed out\n"
    "  4  the store is damaged\n"
    "  5  access is denied, or an I/O operation failed\n"
    "  6  a part was done\n"
    "Results go to the standard output; messages, one line each, and progress to "
    "the error output. Colour and progress are shown on a terminal only; the "
    "environment variable NO_COLOR, set to anything, switches colour off.";

// Adds the commands that the help shows below one title.
void AddGroup(CLI::App& app, CommandRun& run, const char* title,
              void (*addCommands)(CLI::App&, CommandRun&)) {
    const size_t present = app.get_subcommands({}).size();
    addCommands(app, run);
    const std::vector<CLI::App*> all = app.get_subcommands({});
    for (size_t index = present; index < all.size(); ++index)
        all[index]->group(title);
}

} // namespace

ExitCode RunCommandLine(const std::vector<std::string>& arguments) {
    CommandRun run;
    CLI::App app("Drives the Tessaly action log from the command line, and looks after its store",
                 "tslhost");
    const auto formatter = std::make_shared<CHelpFormatter>();
    formatter->label("SUBCOMMAND", "COMMAND");
    app.formatter(formatter);
    app.require_subcommand(0, 1); // none is told below: an unknown one must be named, not asked for
    app.allow_windows_style_options(false); // a path may start with a slash
    app.fallthrough();
    app.set_version_flag("--version", TSL_VERSION);
    std::string plugin;
    app.add_flag("--json", run.context.json, "Print JSON instead of text");
    app.add_option("--plugin", plugin,
                   "Path of TslIfDbActionLog.dll; default: beside this program, else the plug-in "
                   "that is registered");
    app.parse_complete_callback([&] { run.context.pluginPath = ToUtf16(plugin); });
    AddGroup(app, run, "Recording", AddRecordingCommands);
    AddGroup(app, run, "Records", AddRecordsCommands);
    AddGroup(app, run, "The store", AddStoreCommands);
    AddGroup(app, run, "The machine", AddMachineCommands);
    app.footer(kFooter); // now: commands would have taken it over
    try {
        app.parse(std::vector<std::string>(arguments.rbegin(), arguments.rend())); // last one first
        if (app.get_subcommands().empty()) throw CLI::RequiredError("A command");
    } catch (const CLI::CallForHelp&) {
        PrintHelp(app.help());
    } catch (const CLI::CallForVersion& version) {
        PrintLine(std::string("tslhost ") + version.what());
    } catch (const CLI::ParseError& error) {
        PrintError(std::string(error.what()) + " (tslhost --help tells more)");
        return ExitCode::Usage;
    }
    return run.exitCode;
}

} // namespace tsl
