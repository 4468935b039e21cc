// tslhost id, record, import, export, move and reset
#include <memory>
#include <type_traits>

#include "tslhost/commandline/CommandGroups.h"
#include "tslhost/commandline/Numbers.h"
#include "tslhost/commandline/SelectionOptions.h"

namespace tsl {

namespace {

constexpr char kImportFooter[] =
    "A line:\n"
    "  {\"name\":\"playItem\",\"app\":3,\"user\":1,"
    "\"time\":\"2026-11-21T08:30:00Z\",\"ullValues\":[4711]}\n"
    "Example: tslhost import --keep-ids saved.jsonl\n"
    "With --keep-ids, into an empty store, a second export gives the same bytes, but for\n"
    "- log kind 2: recording adds the moment and the linked item, so that a record becomes "
    "another (all but externalApplicationLog);\n"
    "- names that a log kind keeps out of the action log: 1 showExternalLink(ForTv), 2 "
    "showExternalLink(ForMusic), 8 playItem and skipForwardItem, 16 showExternalLink(ForSns), "
    "tweet and registerFavoriteTweet; and viaMoveContent, which would move content: refused;\n"
    "- veSettingReset: refused where its user has another record of its log kind, which it would "
    "delete;\n"
    "- log kind 0, and times that are no date from 1900 on: refused;\n"
    "- parameters in another form than the one that is written today: become others.\n"
    "\n"
    "Each is told and counted, and the exit code is 6. What is there already with the same "
    "content is passed over, so that an interrupted import goes on when it is run again; what is "
    "there with another content is left alone. The time of recording, by which --since and "
    "--until go, is that of the import. What deleteItem and autoDeleteItem of log kind 1 deleted "
    "can be taken again.";

constexpr char kExportFooter[] =
    "Example: tslhost export --since 2026-11-01T00:00:00Z --format csv --output november.csv\n"
    "Each record stands on a line, by ascending id: id, time, user, app, kind, name, parameters "
    "(the raw text) and the value lists that are decoded from it: ullValues, usValues, "
    "intValues, boolValues, stringValues, floatValues. A list that cannot be read is left out. A "
    "line of jsonl is also one of import, which keeps the ids with --keep-ids. Numbers that are "
    "none of JSON's are the texts \"inf\", \"-inf\", \"nan\" and \"-nan\".\n"
    "\n"
    "csv has a line of names, CR LF and UTF-8 without a mark; a list is JSON text. So that no "
    "spreadsheet takes a text for a formula, one that begins with = + - @ a tab or a line end, "
    "also behind blanks or quotation marks, gets an apostrophe before it, unless it is a plain "
    "number; control characters, line ends and marks that turn the direction of a text become "
    "blanks. --raw leaves all that as it is: import such columns as text.";

// An option that may be given again and again, with one value each time.
template <class T>
void AddRepeated(CLI::App& command, const char* name, std::vector<T>& values,
                 const char* description) {
    CLI::Option* const option = command.add_option(name, values, description);
    option->expected(1, -1)->allow_extra_args(false);
    if constexpr (std::is_arithmetic_v<T> && !std::is_same_v<T, bool>) option->check(ANumber<T>());
}

void AddId(CLI::App& app, CommandRun& run) {
    CLI::App* const command = app.add_subcommand("id", "Hand out and print the next record id");
    command->footer("Example: tslhost id --json");
    command->callback([&run] { run.exitCode = RunId(run.context); });
}

void AddRecord(CLI::App& app, CommandRun& run) {
    CLI::App* const command =
        app.add_subcommand("record", "Record one action and print the id it was given");
    const auto options = std::make_shared<RecordOptions>();
    command->add_option("--name", options->name, "Action name")->required();
    command->add_option("--app", options->app, "Application id")
        ->required()
        ->check(ANumber<INT32>());
    command->add_option("--user", options->user, "User id")->required()->check(ANumber<UINT32>());
    command->add_option("--time", options->time, "Time of the action, ISO 8601; default: now");
    command->add_option("--kind", options->kind, "Log kind")
        ->check(ALogKind())
        ->capture_default_str();
    AddRepeated(*command, "--string", options->strings, "A text value");
    AddRepeated(*command, "--int", options->ints, "A signed 32-bit value");
    AddRepeated(*command, "--ull", options->ulls, "An unsigned 64-bit value");
    AddRepeated(*command, "--us", options->shorts, "An unsigned 16-bit value");
    AddRepeated(*command, "--bool", options->bools, "true or false");
    AddRepeated(*command, "--float", options->floats, "A 32-bit floating-point value");
    command->footer("Example: tslhost record --name playItem --app 3 --user 1 --ull 4711 --string "
                    "\"Summer holidays\"");
    command->callback([&run, options] { run.exitCode = RunRecord(*options, run.context); });
}

void AddImport(CLI::App& app, CommandRun& run) {
    CLI::App* const command =
        app.add_subcommand("import", "Record the actions of a file, one JSON object a line");
    const auto options = std::make_shared<ImportOptions>();
    command->add_option("FILE", options->file, "JSON Lines file, or - for the standard input")
        ->required();
    command->add_flag("--keep-ids", options->keepIds,
                      "Record each under the id of its line, as export writes it, instead of a new "
                      "one");
    command->footer(kImportFooter);
    command->callback([&run, options] { run.exitCode = RunImport(*options, run.context); });
}

void AddExport(CLI::App& app, CommandRun& run) {
    CLI::App* const command = app.add_subcommand(
        "export", "Write records, with their log kinds, as JSON Lines or CSV, oldest id first");
    const auto options = std::make_shared<ExportOptions>();
    options->selection.users.clear();
    AddSelectionOptions(*command, options->selection);
    command->get_option("--user")->default_str("")->description(
        "User id; may be given again and again; default: all");
    command->get_option("--kind")->description("Log kind; default: all");
    AddFilterOptions(*command, options->filter);
    command->add_option("--format", options->format, "jsonl or csv")
        ->check(CLI::IsMember({"jsonl", "csv"}))
        ->capture_default_str();
    command->add_flag("--raw", options->raw,
                      "In csv, texts as they are, also such as are formulas");
    command->add_option("--output", options->file,
                        "File to write, whole or not at all; default: the standard output");
    command->footer(kExportFooter);
    command->callback([&run, options] { run.exitCode = RunExport(*options, run.context); });
}

void AddMove(CLI::App& app, CommandRun& run) {
    CLI::App* const command = app.add_subcommand(
        "move", "Report a content move and show what becomes of the content items of a file");
    const auto options = std::make_shared<MoveOptions>();
    command->add_option("OLD1", options->oldTexts[0], "First text of the properties")->required();
    command->add_option("OLD2", options->oldTexts[1], "Second text of the properties")->required();
    command->add_option("NEW1", options->newTexts[0], "Their new first text")->required();
    command->add_option("NEW2", options->newTexts[1], "Their new second text")->required();
    command->add_option("--number", options->number, "Their new number")
        ->required()
        ->check(ANumber<INT32>());
    command->add_option("--items", options->file, "JSON file of content items")->required();
    command->add_option("--app", options->app, "Application id")
        ->check(ANumber<INT32>())
        ->capture_default_str();
    command->add_option("--user", options->user, "User id")
        ->check(ANumber<UINT32>())
        ->capture_default_str();
    command->add_option("--kind", options->kind, "Log kind")
        ->check(ALogKind())
        ->capture_default_str();
    command->add_flag("--save", options->save, "Write the changed items back to the file");
    command->footer("Example: tslhost move Albums/ a.jpg Archive/2026 a.jpg --number 7 --items "
                    "examples/content-items.json");
    command->callback([&run, options] { run.exitCode = RunMove(*options, run.context); });
}

void AddReset(CLI::App& app, CommandRun& run) {
    CLI::App* const command = app.add_subcommand(
        "reset", "Report a reset: removes a user's records of a log kind and records that");
    const auto options = std::make_shared<ResetOptions>();
    command->add_option("--user", options->user, "User id")->required()->check(ANumber<UINT32>());
    command->add_option("--kind", options->kind, "Log kind")
        ->check(ALogKind())
        ->capture_default_str();
    command->add_option("--app", options->app, "Application id of the reset")
        ->check(ANumber<INT32>())
        ->capture_default_str();
    command->add_flag("--dry-run", options->dryRun, "Only say how many records would be removed");
    command->footer("Example: tslhost reset --user 1 --dry-run");
    command->callback([&run, options] { run.exitCode = RunReset(*options, run.context); });
}

} // namespace

void AddRecordingCommands(CLI::App& app, CommandRun& run) {
    AddId(app, run);
    AddRecord(app, run);
    AddImport(app, run);
    AddExport(app, run);
    AddMove(app, run);
    AddReset(app, run);
}

} // namespace tsl
