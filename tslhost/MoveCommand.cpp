// tslhost move
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <nlohmann/json.hpp>

#include "console/ContentStore.h"
#include "console/HostSession.h"
#include "console/Numbers.h"
#include "console/Output.h"
#include "console/Table.h"
#include "console/Text.h"
#include "console/WholeFile.h"
#include "tslhost/Commands.h"

namespace tsl {

namespace {

constexpr wchar_t kMoveAction[] = L"viaMoveContent";

struct MoveOptions {
    std::string oldTexts[2];
    std::string newTexts[2];
    INT32 number = 0;
    std::string file;
    INT32 app = 0;
    UINT32 user = 1;
    UINT32 kind = 1;
    bool save = false;
};

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

ExitCode Move(const MoveOptions& options, const CommandContext& context) {
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
        PrintLine(ToJson(store.Items()).dump());
    } else if (changed) {
        PrintChanges(before, store.Items());
    }
    if (changed && options.save) SaveItems(options.file, store.Items());
    return changed ? ExitCode::Fine : ExitCode::NothingFound;
}

} // namespace

void AddMoveCommand(CLI::App& app, CommandContext& context) {
    CLI::App* const command = app.add_subcommand(
        "move", "Report a content move and show what becomes of the content items of a file");
    const auto options = std::make_shared<MoveOptions>();
    command->add_option("OLD1", options->oldTexts[0], "First text of the properties")->required();
    command->add_option("OLD2", options->oldTexts[1], "Second text of the properties")->required();
    command->add_option("NEW1", options->newTexts[0], "Their new first text")->required();
    command->add_option("NEW2", options->newTexts[1], "Their new second text")->required();
    command->add_option("--number", options->number, "Their new number")
        ->required()
        ->check(ANumber<INT32>());
    command->add_option("--items", options->file, "JSON file of content items")->required();
    command->add_option("--app", options->app, "Application id")
        ->check(ANumber<INT32>())
        ->capture_default_str();
    command->add_option("--user", options->user, "User id")
        ->check(ANumber<UINT32>())
        ->capture_default_str();
    command->add_option("--kind", options->kind, "Log kind")
        ->check(ALogKind())
        ->capture_default_str();
    command->add_flag("--save", options->save, "Write the changed items back to the file");
    command->footer("Example: tslhost move Albums/ a.jpg Archive/2026 a.jpg --number 7 --items "
                    "examples/content-items.json");
    command->callback([&context, options] { context.exitCode = Move(*options, context); });
}

} // namespace tsl
