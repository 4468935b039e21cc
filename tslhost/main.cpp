// tslhost: a small host that drives the component from the command line, through its interface
// only.
#include <windows.h>

#include <shellapi.h>

#include "base/Hresult.h"
#include "base/LocalMemory.h"
#include "console/Output.h"
#include "console/Text.h"
#include "tslhost/Commands.h"
#include "tslhost/HelpFormatter.h"

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

// The arguments in UTF-8, without the program, last first: so the parser takes them.
std::vector<std::string> ReversedArguments() {
    int count = 0;
    const LocalMemory<wchar_t*> arguments(CommandLineToArgvW(GetCommandLineW(), &count));
    std::vector<std::string> reversed;
    for (int index = count - 1; index > 0; --index) {
        reversed.push_back(ToUtf8(arguments.get()[index]));
    }
    return reversed;
}

// Adds commands that the help shows below one title.
void AddCommands(CLI::App& app, CommandContext& context, const char* title,
                 std::initializer_list<void (*)(CLI::App&, CommandContext&)> commands) {
    const size_t present = app.get_subcommands({}).size();
    for (const auto add : commands)
        add(app, context);
    const std::vector<CLI::App*> all = app.get_subcommands({});
    for (size_t index = present; index < all.size(); ++index)
        all[index]->group(title);
}

ExitCode Run() {
    CommandContext context;
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
    app.add_flag("--json", context.json, "Print JSON instead of text");
    app.add_option("--plugin", plugin,
                   "Path of TslIfDbActionLog.dll; default: beside this program, else the plug-in "
                   "that is registered");
    app.parse_complete_callback([&] { context.pluginPath = ToUtf16(plugin); });
    AddCommands(app, context, "Recording",
                {AddIdCommand, AddRecordCommand, AddImportCommand, AddExportCommand, AddMoveCommand,
                 AddResetCommand});
    AddCommands(app, context, "Records",
                {AddListCommand, AddShowCommand, AddIdsCommand, AddAllCommand, AddTakeCommand,
                 AddDeleteCommand, AddFollowCommand});
    AddCommands(app, context, "The store",
                {AddDoctorCommand, AddBackupCommand, AddRestoreCommand, AddRecoverCommand,
                 AddCompactCommand, AddStatsCommand, AddReportCommand});
    AddCommands(app, context, "The machine",
                {AddPluginsCommand, AddWhoamiCommand, AddManualCommand});
    app.footer(kFooter); // now: commands would have taken it over
    try {
        app.parse(ReversedArguments());
        if (app.get_subcommands().empty()) throw CLI::RequiredError("A command");
    } catch (const CLI::CallForHelp&) {
        PrintLine(app.help());
    } catch (const CLI::CallForVersion& version) {
        PrintLine(std::string("tslhost ") + version.what());
    } catch (const CLI::ParseError& error) {
        PrintError(std::string(error.what()) + " (tslhost --help tells more)");
        return ExitCode::Usage;
    }
    return context.exitCode;
}

ExitCode RunAndReport() {
    try {
        return Run();
    } catch (const CFailure& failure) {
        PrintError(failure.what());
        return failure.Code();
    } catch (const std::invalid_argument& error) {
        PrintError(error.what());
        return ExitCode::Usage;
    } catch (const CHresultError& error) {
        PrintError("failed: " + DescribeResult(error.Result()));
    } catch (const std::exception& error) {
        PrintError(std::string("failed: ") + error.what());
    }
    return ExitCode::Denied;
}

} // namespace

} // namespace tsl

int main() {
    tsl::PrepareOutput();
    return static_cast<int>(tsl::RunAndReport());
}
