// tslhost restore
#include <nlohmann/json.hpp>

#include "console/JsonOutput.h"
#include "console/StorePlace.h"
#include "console/Text.h"
#include "tslhost/Commands.h"
#include "tslhost/UpkeepOutput.h"
#include "upkeep/backup/Restore.h"
#include "upkeep/statistics/Figures.h"

namespace tsl {

namespace {

using Json = nlohmann::ordered_json;

void PrintJson(const std::wstring& folder, const RestoreReport& report) {
    Json files = Json::array();
    for (const BackupFile& file : report.manifest.files)
        files.push_back(file.name);
    PrintLine(ToJsonLine(
        {{"folder", ToUtf8(folder)},
         {"time", report.manifest.time},
         {"files", std::move(files)},
         {"before", report.keptFolder.empty() ? Json() : Json(ToUtf8(report.keptFolder))},
         {"counter", report.counter ? Json(*report.counter) : Json()},
         {"counterStayed", report.counterOfStore},
         {"userIdsStayed", report.userIdsOfStore}}));
}

void PrintText(const std::wstring& folder, const RestoreReport& report) {
    UINT64 all = 0;
    for (const BackupFile& file : report.manifest.files)
        all += file.sum.size;
    PrintLine(FileSize(all) + " restored from " + ToUtf8(folder) + ", made " +
              Abridged(report.manifest.time));
    if (!report.keptFolder.empty())
        PrintLine("what was there before lies in " + ToUtf8(report.keptFolder));
    if (report.counter) {
        const std::string counter = std::to_string(*report.counter);
        PrintLine(report.counterOfStore ? "the counter stayed at " + counter +
                                              ", so that no record id is handed out twice"
                                        : "last record id: " + counter);
    }
    if (report.userIdsOfStore) PrintLine("the user id list stayed as it was: the backup has none");
}

} // namespace

ExitCode RunRestore(const std::string& folder, const CommandContext& context) {
    const std::wstring path = FullPath(ToUtf16(folder));
    CProgress progress;
    const RestoreReport report = RestoreStore(path, MachineStore(), ShownOn(progress));
    progress.Clear();
    if (context.json) {
        PrintJson(path, report);
    } else {
        PrintText(path, report);
    }
    return ExitCode::Fine;
}

} // namespace tsl
