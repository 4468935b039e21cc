// tslhost record
#include <memory>
#include <type_traits>

#include "console/HostSession.h"
#include "console/IsoTime.h"
#include "console/Numbers.h"
#include "console/Text.h"
#include "tslhost/Commands.h"
#include "tslhost/RecordIdOutput.h"

namespace tsl {

namespace {

// The options as the command line gives them.
struct RecordOptions {
    std::string name;
    INT32 app = 0;
    UINT32 user = 0;
    std::string time;
    UINT32 kind = 1;
    std::vector<std::string> strings;
    std::vector<LONG> ints;
    std::vector<ULONGLONG> ulls;
    std::vector<USHORT> shorts;
    std::vector<bool> bools;
    std::vector<FLOAT> floats;
};

// A list that was not named is absent.
template <class T>
std::optional<std::vector<T>> ListOf(const std::vector<T>& values) {
    if (values.empty()) return std::nullopt;
    return values;
}

HostAction ToAction(const RecordOptions& options) {
    HostAction action;
    action.name = ToUtf16(options.name);
    action.app = options.app;
    action.user = options.user;
    if (!options.time.empty()) action.time = ParseIsoTime(options.time);
    action.kind = options.kind;
    action.values.intValues = ListOf(options.ints);
    action.values.ullValues = ListOf(options.ulls);
    action.values.usValues = ListOf(options.shorts);
    action.values.floatValues = ListOf(options.floats);
    std::vector<VARIANT_BOOL> bools;
    bools.reserve(options.bools.size());
    for (const bool value : options.bools)
        bools.push_back(value ? VARIANT_TRUE : VARIANT_FALSE);
    action.values.boolValues = ListOf(bools);
    std::vector<std::wstring> strings;
    strings.reserve(options.strings.size());
    for (const std::string& text : options.strings)
        strings.push_back(ToUtf16(text));
    action.values.stringValues = ListOf(strings);
    return action;
}

// An option that may be given again and again, with one value each time.
template <class T>
void AddRepeated(CLI::App& command, const char* name, std::vector<T>& values,
                 const char* description) {
    CLI::Option* const option = command.add_option(name, values, description);
    option->expected(1, -1)->allow_extra_args(false);
    if constexpr (std::is_arithmetic_v<T> && !std::is_same_v<T, bool>) option->check(ANumber<T>());
}

} // namespace

void AddRecordCommand(CLI::App& app, CommandContext& context) {
    CLI::App* const command =
        app.add_subcommand("record", "Record one action and print the id it was given");
    const auto options = std::make_shared<RecordOptions>();
    command->add_option("--name", options->name, "Action name")->required();
    command->add_option("--app", options->app, "Application id")
        ->required()
        ->check(ANumber<INT32>());
    command->add_option("--user", options->user, "User id")->required()->check(ANumber<UINT32>());
    command->add_option("--time", options->time, "Time of the action, ISO 8601; default: now");
    command->add_option("--kind", options->kind, "Log kind")
        ->check(ALogKind())
        ->capture_default_str();
    AddRepeated(*command, "--string", options->strings, "A text value");
    AddRepeated(*command, "--int", options->ints, "A signed 32-bit value");
    AddRepeated(*command, "--ull", options->ulls, "An unsigned 64-bit value");
    AddRepeated(*command, "--us", options->shorts, "An unsigned 16-bit value");
    AddRepeated(*command, "--bool", options->bools, "true or false");
    AddRepeated(*command, "--float", options->floats, "A 32-bit floating-point value");
    command->footer("Example: tslhost record --name playItem --app 3 --user 1 --ull 4711 --string "
                    "\"Summer holidays\"");
    command->callback([&context, options] {
        const HostAction action = ToAction(*options);
        CHostSession session(context.pluginPath);
        PrintRecordId(session.Record(action), context.json);
    });
}

} // namespace tsl
