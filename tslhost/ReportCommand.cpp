// tslhost report
#include <nlohmann/json.hpp>

#include "console/JsonOutput.h"
#include "console/Output.h"
#include "console/StorePlace.h"
#include "console/Text.h"
#include "console/WholeFile.h"
#include "tslhost/Commands.h"
#include "upkeep/statistics/ReportPage.h"

namespace tsl {

ExitCode RunReport(const std::string& file, const CommandContext& context) {
    const std::wstring path = FullPath(ToUtf16(file));
    const std::string page = ReportPage(ReadStoreFigures(MachineStore()));
    CWholeFile out(ToUtf8(path));
    out.Stream() << page;
    out.Commit();
    if (context.json) {
        PrintLine(ToJsonLine({{"file", ToUtf8(path)}, {"bytes", page.size()}}));
    } else {
        PrintLine(ToUtf8(path));
    }
    return ExitCode::Fine;
}

} // namespace tsl
