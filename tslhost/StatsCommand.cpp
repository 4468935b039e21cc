// tslhost stats
#include <memory>
#include <nlohmann/json.hpp>

#include "console/Numbers.h"
#include "console/Output.h"
#include "tslhost/Commands.h"
#include "upkeep/statistics/StatisticsOutput.h"

namespace tsl {

namespace {

void PrintStatistics(const StoreFigures& figures, size_t top, bool json) {
    if (json) {
        PrintLine(StatisticsJson(figures).dump());
        return;
    }
    for (const std::string& line : StatisticsLines(figures, top, OutputWidth()))
        PrintLine(line);
}

} // namespace

void AddStatsCommand(CLI::App& app, CommandContext& context) {
    CLI::App* const command =
        app.add_subcommand("stats", "Show how many records there are: by table, user, application, "
                                    "action, day and hour of the week; and the sizes of the files");
    const auto top = std::make_shared<size_t>(10);
    command->add_option("--top", *top, "How many of each to show; JSON has all")
        ->check(ANumber<size_t>())
        ->capture_default_str();
    command->footer("Example: tslhost stats --top 5");
    command->callback(
        [&context, top] { PrintStatistics(ReadStoreFigures(MachineStore()), *top, context.json); });
}

} // namespace tsl
