// tslhost move
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>

#include "console/ContentStore.h"
#include "console/HostSession.h"
#include "console/JsonOutput.h"
#include "console/Output.h"
#include "console/Table.h"
#include "console/Text.h"
#include "console/WholeFile.h"
#include "tslhost/Commands.h"

namespace tsl {

namespace {

constexpr wchar_t kMoveAction[] = L"viaMoveContent";

HostAction MoveAction(const MoveOptions& options) {
    HostAction action;
    action.name = kMoveAction;
    action.app = options.app;
    action.user = options.user;
    action.kind = options.kind;
    action.number = options.number;
    action.values.stringValues = {ToUtf16(options.oldTexts[0]), ToUtf16(options.oldTexts[1])};
    action.values.moreStringValues = {ToUtf16(options.newTexts[0]), ToUtf16(options.newTexts[1])};
    return action;
}

std::vector<ContentItem> ReadItems(const std::string& file) {
    std::ifstream input(std::filesystem::path(ToUtf16(file)), std::ios::binary);
    if (!input) throw CFailure("cannot open", ToUtf16(file), HresultFromLastError());
    const std::string text(std::istreambuf_iterator<char>(input), {});
    try {
        return ParseContentItems(text);
    } catch (const std::invalid_argument& error) {
        throw CFailure(ExitCode::Usage, file + ": " + error.what());
    }
}

void SaveItems(const std::string& file, const std::vector<ContentItem>& items) {
    CWholeFile output(file);
    output.Stream() << ToJson(items).dump(2) << '\n';
    output.Commit();
}

// The store for the class that the component creates.
CContentStore* g_store = nullptr;

HRESULT GiveStore(REFIID iid, void** result) {
    return g_store->QueryInterface(iid, result);
}

// One row for each property that the move changed.
void PrintChanges(const std::vector<ContentItem>& before, const std::vector<ContentItem>& after) {
    CTable table({{"item", true}, {"property", true}, {"before", false, 30}, {"after"}});
    for (size_t item = 0; item < before.size(); ++item) {
        const auto& was = before[item].properties;
        const auto& is = after[item].properties;
        for (size_t index = 0; index < was.size() && index < is.size(); ++index) {
            if (was[index] == is[index]) continue;
            table.Add({std::to_string(before[item].id), std::to_string(index + 1),
                       Describe(was[index]), Describe(is[index])});
        }
    }
    for (const std::string& line : table.Lines(OutputWidth()))
        PrintLine(line);
}

bool Differ(const std::vector<ContentItem>& before, const std::vector<ContentItem>& after) {
    return !std::ranges::equal(before, after, {}, &ContentItem::properties,
                               &ContentItem::properties);
}

} // namespace

ExitCode RunMove(const MoveOptions& options, const CommandContext& context) {
    const std::vector<ContentItem> before = ReadItems(options.file);
    CContentStore store(before);
    g_store = &store;
    {
        CHostSession session(context.pluginPath);
        const CHostClassRegistration storeClass(CLSID_TslContentStore, GiveStore);
        session.Record(MoveAction(options));
    }
    const bool changed = Differ(before, store.Items());
    if (context.json) {
        PrintLine(ToJsonLine(ToJson(store.Items())));
    } else if (changed) {
        PrintChanges(before, store.Items());
    }
    if (changed && options.save) SaveItems(options.file, store.Items());
    return changed ? ExitCode::Fine : ExitCode::NothingFound;
}

} // namespace tsl
