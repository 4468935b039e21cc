// tslhost import
#include <chrono>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>

#include "console/ActionJson.h"
#include "console/HostSession.h"
#include "console/Output.h"
#include "console/StorePlace.h"
#include "console/Text.h"
#include "tslhost/Commands.h"

namespace tsl {

namespace {

constexpr char kStandardInput[] = "-";

struct ImportCounts {
    size_t recorded = 0;
    size_t bad = 0;
};

// Windows editors leave a byte order mark before the first line and a CR at the end of each.
void TrimLine(std::string& line, bool first) {
    constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
    if (first && line.starts_with(kByteOrderMark)) line.erase(0, kByteOrderMark.size());
    if (line.ends_with('\r')) line.pop_back();
}

// Records the lines. A bad line is told and passed over; a failure of the store ends the import and
// says how far it came.
ImportCounts ImportLines(std::istream& input, const std::string& name, CHostSession& session) {
    ImportCounts counts;
    CProgress progress;
    std::string line;
    for (size_t number = 1; std::getline(input, line); ++number) {
        TrimLine(line, number == 1);
        if (line.find_first_not_of(" \t") == std::string::npos) continue;
        const std::string place = name + ":" + std::to_string(number) + ": ";
        try {
            session.Record(ParseActionLine(line));
            ++counts.recorded;
        } catch (const std::invalid_argument& error) {
            ++counts.bad;
            progress.Clear();
            PrintError(place + error.what());
        } catch (const CFailure& failure) {
            throw CFailure(failure.Code(), place + failure.what() + "; " +
                                               std::to_string(counts.recorded) +
                                               " actions were recorded before it");
        }
        progress.Show(std::to_string(counts.recorded) + " actions");
    }
    if (input.bad()) throw CFailure(ExitCode::Denied, "cannot read " + name);
    return counts;
}

void PrintSummary(const ImportCounts& counts, double seconds, bool json) {
    const double perSecond = seconds > 0.0 ? static_cast<double>(counts.recorded) / seconds : 0.0;
    const auto rate = static_cast<UINT64>(perSecond + 0.5);
    if (json) {
        const nlohmann::ordered_json summary = {
            {"recorded", counts.recorded}, {"bad", counts.bad}, {"actionsPerSecond", rate}};
        PrintLine(summary.dump());
    } else {
        PrintLine(std::to_string(counts.recorded) + " recorded, " + std::to_string(counts.bad) +
                  " bad, " + std::to_string(rate) + " actions per second");
    }
}

ExitCode Import(const std::string& file, const CommandContext& context) {
    std::ifstream opened;
    if (file != kStandardInput) {
        opened.open(std::filesystem::path(ToUtf16(file)), std::ios::binary);
        if (!opened) throw CFailure("cannot open", ToUtf16(file), HresultFromLastError());
    }
    CHostSession session(context.pluginPath);
    const auto start = std::chrono::steady_clock::now();
    const ImportCounts counts = ImportLines(opened.is_open() ? opened : std::cin, file, session);
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
    PrintSummary(counts, taken.count(), context.json);
    return counts.bad > 0 ? ExitCode::PartlyDone : ExitCode::Fine;
}

} // namespace

void AddImportCommand(CLI::App& app, CommandContext& context) {
    CLI::App* const command =
        app.add_subcommand("import", "Record the actions of a file, one JSON object a line");
    const auto file = std::make_shared<std::string>();
    command->add_option("FILE", *file, "JSON Lines file, or - for the standard input")->required();
    command->footer("A line:\n  {\"name\":\"playItem\",\"app\":3,\"user\":1,"
                    "\"time\":\"2026-11-21T08:30:00Z\",\"ullValues\":[4711]}\n"
                    "Example: tslhost import actions.jsonl");
    command->callback([&context, file] { context.exitCode = Import(*file, context); });
}

} // namespace tsl
