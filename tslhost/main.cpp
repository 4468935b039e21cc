// tslhost: a small host that drives the component from the command line, through its interface
// only.
#include <windows.h>

#include <shellapi.h>

#include "base/Hresult.h"
#include "base/LocalMemory.h"
#include "console/Output.h"
#include "console/Text.h"
#include "tslhost/Commands.h"

namespace tsl {

namespace {

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

ExitCode Run() {
    CommandContext context;
    CLI::App app("Drives the Tessaly action log from the command line", "tslhost");
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
    AddIdCommand(app, context);
    AddRecordCommand(app, context);
    AddImportCommand(app, context);
    AddIdsCommand(app, context);
    AddShowCommand(app, context);
    AddListCommand(app, context);
    AddAllCommand(app, context);
    AddTakeCommand(app, context);
    AddDeleteCommand(app, context);
    AddMoveCommand(app, context);
    AddResetCommand(app, context);
    AddPluginsCommand(app, context);
    AddReportCommand(app, context);
    AddStatsCommand(app, context);
    AddWhoamiCommand(app, context);
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
