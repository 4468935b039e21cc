#include "upkeep/backup/Manifest.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>

#include "console/Failure.h"
#include "console/NewFile.h"
#include "console/Text.h"
#include "upkeep/StoreFiles.h"

namespace tsl {

namespace {

using Json = nlohmann::ordered_json;

// Of what is written here. Another number is another form.
constexpr int kFormat = 1;

constexpr size_t kLongestManifest = 1 << 20;

CFailure NoManifest(const std::string& why) {
    return CFailure(ExitCode::Damaged, "no whole backup: " + why);
}

Json ToJson(const BackupManifest& manifest) {
    Json files = Json::array();
    for (const BackupFile& file : manifest.files) {
        files.push_back(
            {{"name", file.name}, {"size", file.sum.size}, {"sha256", file.sum.sha256}});
    }
    Json rows = Json::object();
    for (const auto& [table, count] : manifest.rows)
        rows[table] = count;
    return {{"format", kFormat},
            {"time", manifest.time},
            {"maker", manifest.maker},
            {"files", std::move(files)},
            {"absent", manifest.absent},
            {"rows", std::move(rows)},
            {"counter", manifest.counter ? Json(*manifest.counter) : Json()}};
}

BackupManifest FromJson(const Json& json) {
    BackupManifest manifest;
    manifest.time = json.at("time").get<std::string>();
    manifest.maker = json.at("maker").get<std::string>();
    for (const Json& file : json.at("files")) {
        manifest.files.push_back(
            {file.at("name").get<std::string>(),
             {file.at("size").get<UINT64>(), file.at("sha256").get<std::string>()}});
    }
    manifest.absent = json.at("absent").get<std::vector<std::string>>();
    for (const auto& [table, count] : json.at("rows").items())
        manifest.rows.emplace_back(table, count.get<INT64>());
    if (!json.at("counter").is_null()) manifest.counter = json.at("counter").get<UINT32>();
    return manifest;
}

// Each file of a store is either in the backup or absent, and nothing else is.
bool NamesTheFilesOfAStore(const BackupManifest& manifest) {
    std::vector<std::string> named = manifest.absent;
    for (const BackupFile& file : manifest.files)
        named.push_back(file.name);
    return named.size() == kStoreFiles.size() &&
           std::ranges::all_of(kStoreFiles, [&](const StoreFile& file) {
               return std::ranges::count(named, ToUtf8(file.name)) == 1;
           });
}

} // namespace

const BackupFile* BackupManifest::Find(const std::wstring& name) const {
    const auto found = std::ranges::find(files, ToUtf8(name), &BackupFile::name);
    return found == files.end() ? nullptr : &*found;
}

std::string ManifestText(const BackupManifest& manifest) {
    Json json = ToJson(manifest);
    json["sha256"] = Sha256Of(json.dump(2));
    return json.dump(2) + "\n";
}

BackupManifest ParseManifest(const std::string& text) {
    try {
        const Json json = Json::parse(text);
        if (json.at("format") != kFormat) throw NoManifest("its manifest is of another format");
        BackupManifest manifest = FromJson(json);
        if (ManifestText(manifest) != text) throw NoManifest("its manifest was changed");
        if (!NamesTheFilesOfAStore(manifest)) throw NoManifest("its manifest names other files");
        return manifest;
    } catch (const Json::exception&) {
        throw NoManifest("its manifest is damaged");
    }
}

void WriteManifest(const std::wstring& folder, const BackupManifest& manifest) {
    const std::string text = ManifestText(manifest);
    CNewFile file((std::filesystem::path(folder) / kManifestName).wstring());
    file.Write(text.data(), text.size());
    file.Move(WhatIsThere::Stays);
    file.Keep();
}

BackupManifest ReadManifest(const std::wstring& folder) {
    const std::filesystem::path path = std::filesystem::path(folder) / kManifestName;
    std::ifstream input(path, std::ios::binary);
    if (!input) throw NoManifest(ToUtf8(path.wstring()) + " cannot be read");
    std::string text(kLongestManifest, '\0');
    input.read(text.data(), static_cast<std::streamsize>(text.size()));
    text.resize(static_cast<size_t>(input.gcount()));
    return ParseManifest(text);
}

} // namespace tsl
