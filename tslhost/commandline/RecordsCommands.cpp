// tslhost list, show, ids, all, take, delete and follow
#include <memory>

#include "tslhost/commandline/CommandGroups.h"
#include "tslhost/commandline/Numbers.h"
#include "tslhost/commandline/SelectionOptions.h"

namespace tsl {

namespace {

void AddList(CLI::App& app, CommandRun& run) {
    CLI::App* const command = app.add_subcommand("list", "Show a user's records, newest first");
    const auto options = std::make_shared<ListOptions>();
    command->add_option("-n,--count", options->count, "How many at the most")
        ->check(ANumber<size_t>())
        ->capture_default_str();
    AddFilterOptions(*command, options->filter);
    AddSelectionOptions(*command, options->selection);
    command->footer("Example: tslhost list -n 5 --name playItem");
    command->callback([&run, options] { run.exitCode = RunList(*options, run.context); });
}

void AddShow(CLI::App& app, CommandRun& run) {
    CLI::App* const command = app.add_subcommand("show", "Show records by their ids");
    const auto ids = std::make_shared<std::vector<UINT32>>();
    command->add_option("ID", *ids, "Record ids")->required()->check(ANumber<UINT32>());
    command->footer("Example: tslhost show 17 18 --json");
    command->callback([&run, ids] { run.exitCode = RunShow(*ids, run.context); });
}

void AddIds(CLI::App& app, CommandRun& run) {
    CLI::App* const command = app.add_subcommand("ids", "Print the ids of a user's records");
    const auto selection = std::make_shared<RecordSelection>();
    AddSelectionOptions(*command, *selection);
    command->footer("Example: tslhost ids --user 1 --since 2026-11-20T18:00:00Z");
    command->callback([&run, selection] { run.exitCode = RunIds(*selection, run.context); });
}

void AddAll(CLI::App& app, CommandRun& run) {
    CLI::App* const command = app.add_subcommand(
        "all", "Print the ids of all deleted items that are kept for the current user");
    const auto kind = std::make_shared<UINT32>(1);
    command->add_option("--kind", *kind, "Log kind; 2 stands for the user of the system, else 1")
        ->check(ALogKind())
        ->capture_default_str();
    command->footer("Example: tslhost all --json");
    command->callback([&run, kind] { run.exitCode = RunAll(*kind, run.context); });
}

void AddTake(CLI::App& app, CommandRun& run) {
    CLI::App* const command = app.add_subcommand(
        "take", "Show the kept record of a deleted item and remove it from the store");
    const auto options = std::make_shared<TakeOptions>();
    command->add_option("ID", options->id, "Record id")->required()->check(ANumber<UINT64>());
    command
        ->add_option("--kind", options->kind,
                     "Log kind; 2 stands for the user of the system, else 1")
        ->check(ALogKind())
        ->capture_default_str();
    command->footer("Example: tslhost take 17");
    command->callback([&run, options] { run.exitCode = RunTake(*options, run.context); });
}

void AddDelete(CLI::App& app, CommandRun& run) {
    CLI::App* const command = app.add_subcommand("delete", "Remove records of a user and log kind");
    const auto options = std::make_shared<DeleteOptions>();
    command->add_option("--id", options->id, "One record")->check(ANumber<UINT32>());
    AddSelectionOptions(*command, options->selection);
    command->get_option("--user")->required()->expected(1)->default_str("")->description("User id");
    command->get_option("--kind")->description("Log kind; default: 1");
    command->add_flag("--dry-run", options->dryRun, "Only say how many records would be removed");
    command->add_flag("--yes", options->yes, "Remove them");
    command->footer("Example: tslhost delete --user 1 --until 2026-01-01T00:00:00Z --dry-run");
    command->callback([&run, options] { run.exitCode = RunDelete(*options, run.context); });
}

void AddFollow(CLI::App& app, CommandRun& run) {
    CLI::App* const command =
        app.add_subcommand("follow", "Print new records as they come, until interrupted (Ctrl-C)");
    const auto options = std::make_shared<FollowOptions>();
    command
        ->add_option("--after", options->after,
                     "Begin behind this record id; default: the highest that is there")
        ->check(ANumber<UINT32>());
    command->add_option("--user", options->user, "Only of this user id")->check(ANumber<UINT32>());
    command->add_option("--kind", options->kind, "Only of this log kind")->check(ALogKind());
    command->add_option("--interval", options->interval, "Milliseconds from one look to the next")
        ->check(ANumber<UINT32>())
        ->capture_default_str();
    command->footer("Example: tslhost follow --user 1 --json");
    command->callback([&run, options] { run.exitCode = RunFollow(*options, run.context); });
}

} // namespace

void AddRecordsCommands(CLI::App& app, CommandRun& run) {
    AddList(app, run);
    AddShow(app, run);
    AddIds(app, run);
    AddAll(app, run);
    AddTake(app, run);
    AddDelete(app, run);
    AddFollow(app, run);
}

} // namespace tsl
