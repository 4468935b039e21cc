// tslhost compact
#include <nlohmann/json.hpp>

#include "console/JsonOutput.h"
#include "console/Table.h"
#include "console/Text.h"
#include "tslhost/Commands.h"
#include "tslhost/UpkeepOutput.h"
#include "upkeep/StoreFiles.h"
#include "upkeep/backup/Compact.h"
#include "upkeep/statistics/Figures.h"

namespace tsl {

ExitCode RunCompact(const CommandContext& context) {
    CProgress progress;
    const std::vector<CompactedFile> files = CompactStore(MachineStore(), ShownOn(progress));
    progress.Clear();
    CTable table({{"file"}, {"before", true}, {"after", true}});
    nlohmann::ordered_json json = nlohmann::ordered_json::array();
    for (const CompactedFile& file : files) {
        const std::string name = ToUtf8(NameOf(file.path));
        table.Add({name, FileSize(file.sizeBefore), FileSize(file.sizeAfter)});
        json.push_back({{"name", name}, {"before", file.sizeBefore}, {"after", file.sizeAfter}});
    }
    if (context.json) {
        PrintLine(ToJsonLine({{"files", std::move(json)}}));
        return ExitCode::Fine;
    }
    for (const std::string& line : table.Lines(OutputWidth()))
        PrintLine(line);
    return ExitCode::Fine;
}

} // namespace tsl
