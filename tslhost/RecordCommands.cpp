// tslhost id and record
#include "console/HostSession.h"
#include "console/IsoTime.h"
#include "console/Output.h"
#include "console/Text.h"
#include "tslhost/Commands.h"

namespace tsl {

namespace {

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

// An id that was handed out.
void PrintRecordId(UINT32 id, bool json) {
    const std::string number = std::to_string(id);
    PrintLine(json ? "{\"id\":" + number + "}" : number);
}

} // namespace

ExitCode RunId(const CommandContext& context) {
    CHostSession session(context.pluginPath);
    PrintRecordId(session.NextRecordId(), context.json);
    return ExitCode::Fine;
}

ExitCode RunRecord(const RecordOptions& options, const CommandContext& context) {
    const HostAction action = ToAction(options);
    CHostSession session(context.pluginPath);
    PrintRecordId(session.Record(action), context.json);
    return ExitCode::Fine;
}

} // namespace tsl
