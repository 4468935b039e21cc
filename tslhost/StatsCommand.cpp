// tslhost stats
#include <nlohmann/json.hpp>

#include "console/JsonOutput.h"
#include "console/Output.h"
#include "tslhost/Commands.h"
#include "upkeep/statistics/StatisticsOutput.h"

namespace tsl {

ExitCode RunStats(size_t top, const CommandContext& context) {
    const StoreFigures figures = ReadStoreFigures(MachineStore());
    if (context.json) {
        PrintLine(ToJsonLine(StatisticsJson(figures)));
        return ExitCode::Fine;
    }
    for (const std::string& line : StatisticsLines(figures, top, OutputWidth()))
        PrintLine(line);
    return ExitCode::Fine;
}

} // namespace tsl
