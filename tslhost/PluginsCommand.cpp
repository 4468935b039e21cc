// tslhost plugins
#include <cstdio>
#include <iterator>
#include <nlohmann/json.hpp>

#include "console/ComInitialization.h"
#include "console/JsonOutput.h"
#include "console/Output.h"
#include "console/RegisteredPlugins.h"
#include "console/Text.h"
#include "tslhost/Commands.h"

namespace tsl {

namespace {

// "yes", or why not.
std::string DescribeLoading(const RegisteredPlugin& plugin) {
    CComPtr<ITslPluginDb2> created;
    const HRESULT result = CreateRegisteredPlugin(plugin, created);
    return SUCCEEDED(result) ? "yes" : DescribeResult(result);
}

std::string Hexadecimal(DWORD number) {
    char text[16];
    std::snprintf(text, std::size(text), "0x%08lX", number);
    return text;
}

void PrintPlugin(const RegisteredPlugin& plugin, bool json) {
    nlohmann::ordered_json object = {
        {"class", ToUtf8(plugin.classText)}, {"moduleId", ToUtf8(plugin.moduleId)},
        {"enabled", plugin.IsEnabled()},     {"order", plugin.order},
        {"type", Hexadecimal(plugin.type)},  {"path", ToUtf8(plugin.path)},
        {"loads", DescribeLoading(plugin)}};
    if (json) {
        PrintLine(ToJsonLine(object));
        return;
    }
    object["enabled"] = plugin.IsEnabled() ? "yes" : "no";
    for (const auto& [name, value] : object.items()) {
        std::string line = name + ":";
        line.resize(10, ' ');
        PrintLine(line + (value.is_string() ? value.get<std::string>() : value.dump()));
    }
}

} // namespace

ExitCode RunPlugins(const CommandContext& context) {
    const CComInitialization com;
    const std::vector<RegisteredPlugin> plugins = ReadRegisteredPlugins();
    for (const RegisteredPlugin& plugin : plugins) {
        if (!context.json && &plugin != &plugins.front()) PrintLine("");
        PrintPlugin(plugin, context.json);
    }
    if (plugins.empty()) PrintError("no database plug-in is registered");
    return plugins.empty() ? ExitCode::NothingFound : ExitCode::Fine;
}

} // namespace tsl
