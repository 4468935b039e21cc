#include "upkeep/doctor/InstallationCheck.h"

#include <windows.h>

#include <objbase.h>

#include <algorithm>
#include <filesystem>
#include <optional>

#include "base/SameWords.h"
#include "component/host/Identities.h"
#include "console/RegisteredPlugins.h"
#include "console/StorePlace.h"
#include "console/Text.h"
#include "files/Paths.h"
#include "upkeep/doctor/FileVersion.h"

namespace tsl {

namespace {

constexpr wchar_t kComponentFileName[] = L"TslIfDbActionLog.dll";
constexpr wchar_t kEngineAssembly[] = L"Corvane.Nimbra.SQLiteEngine";
constexpr wchar_t kEngineFileName[] = L"SQLite3.dll";

std::optional<RegisteredPlugin> FindRegistration() {
    wchar_t text[40];
    StringFromGUID2(CLSID_PluginDb, text, static_cast<int>(std::size(text)));
    const std::vector<RegisteredPlugin> plugins = ReadRegisteredPlugins();
    const auto found = std::ranges::find_if(
        plugins, [&](const RegisteredPlugin& plugin) { return SameWords(plugin.classText, text); });
    return found == plugins.end() ? std::nullopt : std::optional(*found);
}

std::string Register(const std::wstring& path) {
    return "regsvr32 \"" + ToUtf8(path) + "\", as an administrator";
}

Finding TellRegistration(const std::optional<RegisteredPlugin>& plugin,
                         const std::wstring& component) {
    const std::string subject = "registration";
    if (!plugin) {
        return Odd(subject, "not in the engine's list of plug-ins: no host records",
                   Register(component));
    }
    if (plugin->path.empty()) {
        return Damaged(subject,
                       "in the engine's list, but the class is not registered: no host "
                       "can create it",
                       Register(component));
    }
    if (!FileExists(plugin->path)) {
        return Damaged(subject, "leads to " + ToUtf8(plugin->path) + ", which is not there",
                       Register(component));
    }
    if (!plugin->IsEnabled()) {
        return Odd(subject, "disabled in the engine's list: no host records", Register(component));
    }
    return Fine(subject, ToUtf8(plugin->path));
}

// One file of the installation: its version and where it lies.
Finding TellFile(const std::string& subject, const std::wstring& path) {
    if (!FileExists(path)) {
        return Damaged(subject, ToUtf8(path) + " is not there", kRepair);
    }
    const std::optional<std::string> version = FileVersionOf(path);
    if (!version) {
        return Damaged(subject, ToUtf8(path) + " is no DLL with a version", kRepair);
    }
    return Fine(subject, "version " + *version + ", " + ToUtf8(path));
}

Finding TellComponent(const std::wstring& path, const std::optional<RegisteredPlugin>& plugin) {
    Finding found = TellFile("component", path);
    std::error_code error;
    const bool another = plugin && FileExists(plugin->path) && found.level == Level::Ok &&
                         !std::filesystem::equivalent(plugin->path, path, error) && !error;
    if (!another) return found;
    return Odd(found.subject,
               found.text + "; hosts use the registered one, version " +
                   FileVersionOf(plugin->path).value_or("unknown"),
               Register(path));
}

Finding TellEngine(const std::wstring& component) {
    const auto assembly = std::filesystem::path(component).parent_path() / kEngineAssembly;
    const std::filesystem::path manifest =
        assembly / (std::wstring(kEngineAssembly) + L".manifest");
    if (!FileExists(manifest.wstring())) {
        return Damaged("engine", ToUtf8(manifest.wstring()) + " is not there: nothing is recorded",
                       kRepair);
    }
    return TellFile("engine", (assembly / kEngineFileName).wstring());
}

std::wstring ComponentPath(const std::wstring& pluginPath,
                           const std::optional<RegisteredPlugin>& plugin) {
    if (!pluginPath.empty()) return FullPath(pluginPath);
    const std::wstring beside = ProgramFolder() + kComponentFileName;
    const bool registered = plugin && FileExists(plugin->path);
    return registered && !FileExists(beside) ? plugin->path : beside;
}

} // namespace

void CheckInstallation(const std::wstring& pluginPath, Findings& findings) {
    const std::optional<RegisteredPlugin> plugin = FindRegistration();
    const std::wstring component = ComponentPath(pluginPath, plugin);
    findings.push_back(TellRegistration(plugin, component));
    findings.push_back(TellComponent(component, plugin));
    findings.push_back(TellEngine(component));
}

} // namespace tsl
