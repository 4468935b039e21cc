// tslhost import
#include <algorithm>
#include <chrono>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>

#include "console/ActionJson.h"
#include "console/HostSession.h"
#include "console/Output.h"
#include "console/Text.h"
#include "tslhost/ActionLines.h"
#include "tslhost/Commands.h"
#include "upkeep/transfer/KeepIdsImport.h"

namespace tsl {

namespace {

constexpr char kStandardInput[] = "-";

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

struct ImportOptions {
    std::string file;
    bool keepIds = false;
};

struct ImportCounts {
    size_t recorded = 0;
    size_t bad = 0;
};

// Records the lines. A bad line is told and passed over; a failure of the store ends the import and
// says how far it came.
ImportCounts ImportLines(CActionLines& lines, CHostSession& session) {
    ImportCounts counts;
    CProgress progress;
    while (lines.Next()) {
        try {
            session.Record(ParseActionLine(lines.Text()));
            ++counts.recorded;
        } catch (const std::invalid_argument& error) {
            ++counts.bad;
            progress.Clear();
            PrintError(lines.Place() + error.what());
        } catch (const CFailure& failure) {
            throw CFailure(failure.Code(), lines.Place() + failure.what() + "; " +
                                               std::to_string(counts.recorded) +
                                               " actions were recorded before it");
        }
        progress.Show(std::to_string(counts.recorded) + " actions");
    }
    return counts;
}

// The same under the ids of the lines.
KeepIdsCounts ImportLinesWithIds(CActionLines& lines, CHostSession& session) {
    CProgress progress;
    const auto tell = [&](const std::string& message) {
        progress.Clear();
        PrintError(message);
    };
    CKeepIdsImport import(session, tell);
    size_t unparsed = 0;
    while (lines.Next()) {
        HostAction action;
        try {
            action = ParseActionLine(lines.Text());
        } catch (const std::invalid_argument& error) {
            ++unparsed;
            tell(lines.Place() + error.what());
            continue;
        }
        import.Add(lines.Place(), std::move(action));
        progress.Show(std::to_string(import.Counts().recorded) + " actions");
    }
    import.Finish();
    KeepIdsCounts counts = import.Counts();
    counts.bad += unparsed;
    return counts;
}

struct ImportCount {
    const char* member;
    const char* words;
    size_t number;
    bool isTold = false; // each of them
};

// How many were recorded stands first, at which rate last.
void PrintSummary(const std::vector<ImportCount>& counts, double seconds, bool json) {
    const auto recorded = static_cast<double>(counts.front().number);
    const auto rate = std::llround(seconds > 0.0 ? recorded / seconds : 0.0);
    nlohmann::ordered_json members;
    std::string words;
    for (const ImportCount& count : counts) {
        members[count.member] = count.number;
        words += std::to_string(count.number) + " " + count.words + ", ";
    }
    members["actionsPerSecond"] = rate;
    PrintLine(json ? members.dump() : words + std::to_string(rate) + " actions per second");
}

std::vector<ImportCount> Import(CActionLines& lines, CHostSession& session) {
    const ImportCounts counts = ImportLines(lines, session);
    return {{"recorded", "recorded", counts.recorded}, {"bad", "bad", counts.bad, /*isTold=*/true}};
}

std::vector<ImportCount> ImportWithIds(CActionLines& lines, CHostSession& session) {
    const KeepIdsCounts counts = ImportLinesWithIds(lines, session);
    return {{"recorded", "recorded", counts.recorded},
            {"bad", "bad", counts.bad, /*isTold=*/true},
            {"alreadyThere", "already there", counts.alreadyThere},
            {"otherContent", "there with another content", counts.otherContent,
             /*isTold=*/true},
            {"becameOthers", "became others", counts.becameOthers, /*isTold=*/true}};
}

ExitCode Import(const ImportOptions& options, const CommandContext& context) {
    std::ifstream opened;
    if (options.file != kStandardInput) {
        opened.open(std::filesystem::path(ToUtf16(options.file)), std::ios::binary);
        if (!opened) throw CFailure("cannot open", ToUtf16(options.file), HresultFromLastError());
    }
    CActionLines lines(opened.is_open() ? opened : std::cin, options.file);
    CHostSession session(context.pluginPath);
    const auto start = std::chrono::steady_clock::now();
    const auto counts = options.keepIds ? ImportWithIds(lines, session) : Import(lines, session);
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
    PrintSummary(counts, taken.count(), context.json);
    const bool isPartly = std::ranges::any_of(
        counts, [](const ImportCount& count) { return count.isTold && count.number > 0; });
    return isPartly ? ExitCode::PartlyDone : ExitCode::Fine;
}

} // namespace

void AddImportCommand(CLI::App& app, CommandContext& context) {
    CLI::App* const command =
        app.add_subcommand("import", "Record the actions of a file, one JSON object a line");
    const auto options = std::make_shared<ImportOptions>();
    command->add_option("FILE", options->file, "JSON Lines file, or - for the standard input")
        ->required();
    command->add_flag("--keep-ids", options->keepIds,
                      "Record each under the id of its line, as export writes it, instead of a new "
                      "one");
    command->footer(kImportFooter);
    command->callback([&context, options] { context.exitCode = Import(*options, context); });
}

} // namespace tsl
