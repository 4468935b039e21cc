// tslhost import
#include <algorithm>
#include <chrono>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <nlohmann/json.hpp>

#include "console/ActionJson.h"
#include "console/HostSession.h"
#include "console/JsonOutput.h"
#include "console/Output.h"
#include "console/Text.h"
#include "tslhost/ActionLines.h"
#include "tslhost/Commands.h"
#include "upkeep/transfer/KeepIdsImport.h"

namespace tsl {

namespace {

constexpr char kStandardInput[] = "-";

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
    PrintLine(json ? ToJsonLine(members) : words + std::to_string(rate) + " actions per second");
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

} // namespace

ExitCode RunImport(const ImportOptions& options, const CommandContext& context) {
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

} // namespace tsl
