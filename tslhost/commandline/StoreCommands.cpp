// tslhost doctor, backup, restore, recover, compact, stats and report
#include <memory>

#include "tslhost/commandline/CommandGroups.h"
#include "tslhost/commandline/Numbers.h"

namespace tsl {

namespace {

void AddDoctor(CLI::App& app, CommandRun& run) {
    CLI::App* const command = app.add_subcommand(
        "doctor", "Examine the component, its locks and the store, and say what mends them");
    command->footer(
        "Example: tslhost doctor --json\n"
        "It changes nothing. It ends with 4 where something is damaged; errors of rights "
        "alone end with 0.");
    command->callback([&run] { run.exitCode = RunDoctor(run.context); });
}

void AddBackup(CLI::App& app, CommandRun& run) {
    CLI::App* const command = app.add_subcommand(
        "backup", "Copy the store into a folder, with sums of its files, while its hosts run");
    const auto folder = std::make_shared<std::string>();
    command->add_option("FOLDER", *folder, "Folder that is empty, or is not there yet")->required();
    command->footer("Example: tslhost backup D:\\backups\\2026-11-21");
    command->callback([&run, folder] { run.exitCode = RunBackup(*folder, run.context); });
}

void AddRestore(CLI::App& app, CommandRun& run) {
    CLI::App* const command = app.add_subcommand(
        "restore", "Put a backup in the place of the store; what was there before is kept");
    const auto folder = std::make_shared<std::string>();
    command->add_option("FOLDER", *folder, "Folder that tslhost backup made")->required();
    command->footer(
        "Example: tslhost restore D:\\backups\\2026-11-21\n"
        "It replaces both databases, the user id list, and the counter unless that is higher. "
        "What was there is kept in a dated folder beside them. It ends with 3, and all stays as "
        "it was, while a host has a file open.");
    command->callback([&run, folder] { run.exitCode = RunRestore(*folder, run.context); });
}

void AddRecover(CLI::App& app, CommandRun& run) {
    CLI::App* const command = app.add_subcommand(
        "recover", "Save all rows that can be read of damaged databases into fresh ones");
    const auto options = std::make_shared<RecoverOptions>();
    command->add_flag("--force", options->force, "Make databases anew that are whole, too");
    command->add_flag("--dry-run", options->dryRun, "Only say what would be saved");
    command->footer(
        "Example: tslhost recover --dry-run\n"
        "A database that is whole is left alone. The damaged file is kept beside the new one "
        "under a dated name. actionLog.txt is mended too, and never lowered. It ends with 0 "
        "when every row was saved, or nothing was to be done, and with 6 when something could "
        "not be read; with --dry-run it is the same.");
    command->callback([&run, options] { run.exitCode = RunRecover(*options, run.context); });
}

void AddCompact(CLI::App& app, CommandRun& run) {
    CLI::App* const command = app.add_subcommand(
        "compact", "Give back the room that deleted records left in the databases");
    command->footer("Example: tslhost compact");
    command->callback([&run] { run.exitCode = RunCompact(run.context); });
}

void AddStats(CLI::App& app, CommandRun& run) {
    CLI::App* const command =
        app.add_subcommand("stats", "Show how many records there are: by table, user, application, "
                                    "action, day and hour of the week; and the sizes of the files");
    const auto top = std::make_shared<size_t>(10);
    command->add_option("--top", *top, "How many of each to show; JSON has all")
        ->check(ANumber<size_t>())
        ->capture_default_str();
    command->footer("Example: tslhost stats --top 5");
    command->callback([&run, top] { run.exitCode = RunStats(*top, run.context); });
}

void AddReport(CLI::App& app, CommandRun& run) {
    CLI::App* const command =
        app.add_subcommand("report", "Write the figures of the store as one HTML page with charts");
    const auto file = std::make_shared<std::string>();
    command->add_option("OUT", *file, "The page; one that is there is replaced")->required();
    command->footer("Example: tslhost report actions.html");
    command->callback([&run, file] { run.exitCode = RunReport(*file, run.context); });
}

} // namespace

void AddStoreCommands(CLI::App& app, CommandRun& run) {
    AddDoctor(app, run);
    AddBackup(app, run);
    AddRestore(app, run);
    AddRecover(app, run);
    AddCompact(app, run);
    AddStats(app, run);
    AddReport(app, run);
}

} // namespace tsl
