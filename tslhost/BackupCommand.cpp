// tslhost backup
#include <algorithm>
#include <nlohmann/json.hpp>

#include "console/JsonOutput.h"
#include "console/StorePlace.h"
#include "console/Table.h"
#include "console/Text.h"
#include "tslhost/Commands.h"
#include "tslhost/UpkeepOutput.h"
#include "upkeep/backup/Backup.h"
#include "upkeep/statistics/Figures.h"

namespace tsl {

namespace {

using Json = nlohmann::ordered_json;

void PrintJson(const std::wstring& folder, const BackupManifest& manifest) {
    Json files = Json::array();
    for (const BackupFile& file : manifest.files) {
        files.push_back(
            {{"name", file.name}, {"size", file.sum.size}, {"sha256", file.sum.sha256}});
    }
    Json rows = Json::object();
    for (const auto& [table, count] : manifest.rows)
        rows[table] = count;
    PrintLine(ToJsonLine({{"folder", ToUtf8(folder)},
                          {"time", manifest.time},
                          {"files", std::move(files)},
                          {"absent", manifest.absent},
                          {"rows", std::move(rows)},
                          {"counter", manifest.counter ? Json(*manifest.counter) : Json()}}));
}

void PrintText(const std::wstring& folder, const BackupManifest& manifest) {
    CTable files({{"file"}, {"size", true}});
    UINT64 all = 0;
    for (const BackupFile& file : manifest.files) {
        files.Add({file.name, FileSize(file.sum.size)});
        all += file.sum.size;
    }
    for (const std::string& name : manifest.absent)
        files.Add({name, "not there"});
    for (const std::string& line : files.Lines(OutputWidth()))
        PrintLine(line);
    for (const auto& [table, count] : manifest.rows)
        PrintLine(table + ": " + std::to_string(count) + (count == 1 ? " row" : " rows"));
    if (manifest.counter) PrintLine("last record id: " + std::to_string(*manifest.counter));
    PrintLine(FileSize(all) + " backed up to " + ToUtf8(folder));
}

} // namespace

ExitCode RunBackup(const std::string& folder, const CommandContext& context) {
    const std::wstring path = FullPath(ToUtf16(folder));
    CProgress progress;
    const BackupManifest manifest =
        BackUpStore(MachineStore(), path, "tslhost " TSL_VERSION, ShownOn(progress));
    progress.Clear();
    if (context.json) {
        PrintJson(path, manifest);
    } else {
        PrintText(path, manifest);
    }
    return ExitCode::Fine;
}

} // namespace tsl
