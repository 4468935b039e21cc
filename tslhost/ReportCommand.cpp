// tslhost report
#include <memory>
#include <nlohmann/json.hpp>

#include "console/Output.h"
#include "console/StorePlace.h"
#include "console/Text.h"
#include "console/WholeFile.h"
#include "tslhost/Commands.h"
#include "upkeep/statistics/ReportPage.h"

namespace tsl {

namespace {

void Report(const std::string& file, bool json) {
    const std::wstring path = FullPath(ToUtf16(file));
    const std::string page = ReportPage(ReadStoreFigures(MachineStore()));
    CWholeFile out(ToUtf8(path));
    out.Stream() << page;
    out.Commit();
    if (json) {
        PrintLine(nlohmann::ordered_json({{"file", ToUtf8(path)}, {"bytes", page.size()}}).dump());
    } else {
        PrintLine(ToUtf8(path));
    }
}

} // namespace

void AddReportCommand(CLI::App& app, CommandContext& context) {
    CLI::App* const command =
        app.add_subcommand("report", "Write the figures of the store as one HTML page with charts");
    const auto file = std::make_shared<std::string>();
    command->add_option("OUT", *file, "The page; one that is there is replaced")->required();
    command->footer("Example: tslhost report actions.html");
    command->callback([&context, file] { Report(*file, context.json); });
}

} // namespace tsl
