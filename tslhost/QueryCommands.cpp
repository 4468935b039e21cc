// tslhost ids, show, list and all
#include <algorithm>

#include "component/host/CommandCodes.h"
#include "component/host/ParamKeys.h"
#include "console/Output.h"
#include "console/RecordOutput.h"
#include "console/RecordSelection.h"
#include "tslhost/Commands.h"

namespace tsl {

ExitCode RunIds(const RecordSelection& selection, const CommandContext& context) {
    CHostSession session(context.pluginPath);
    const std::vector<UINT32> ids = SelectIds(session, selection);
    PrintIds(std::vector<UINT64>(ids.begin(), ids.end()), context.json);
    return ids.empty() ? ExitCode::NothingFound : ExitCode::Fine;
}

ExitCode RunShow(const std::vector<UINT32>& ids, const CommandContext& context) {
    CHostSession session(context.pluginPath);
    const std::vector<StoredRecord> records = FetchRecords(session, ids);
    if (!records.empty()) PrintRecords(records, context.json);
    for (const UINT32 id : ids) {
        const bool found = std::ranges::find(records, id, &StoredRecord::id) != records.end();
        if (!found) PrintError("there is no record " + std::to_string(id));
    }
    if (records.empty()) return ExitCode::NothingFound;
    return records.size() < ids.size() ? ExitCode::PartlyDone : ExitCode::Fine;
}

// Fetched from the newest id on, in portions, until there are enough.
ExitCode RunList(const ListOptions& options, const CommandContext& context) {
    constexpr size_t kPortion = 500;
    CHostSession session(context.pluginPath);
    std::vector<UINT32> ids = SelectIds(session, options.selection);
    std::ranges::reverse(ids);
    std::vector<StoredRecord> listed;
    std::span<const UINT32> rest(ids);
    while (!rest.empty() && listed.size() < options.count) {
        const size_t portion = std::min(kPortion, rest.size());
        for (StoredRecord& record : FetchRecords(session, rest.first(portion))) {
            if (listed.size() < options.count && options.filter.Matches(record)) {
                listed.push_back(std::move(record));
            }
        }
        rest = rest.subspan(portion);
    }
    if (listed.empty()) return ExitCode::NothingFound;
    PrintRecords(listed, context.json);
    return ExitCode::Fine;
}

ExitCode RunAll(UINT32 kind, const CommandContext& context) {
    CHostSession session(context.pluginPath);
    session.SetLogKind(kind);
    std::vector<UINT64> ids;
    const CComPtr<CTslParamContainer> nothing = CTslParamContainer::Create();
    for (const auto& container : session.Query(kCommandQueryAllIds, *nothing)) {
        CVariant id;
        container->GetValue(kKeyItemId, id.Address());
        if (id.Type() == VT_UI8) ids.push_back(id.Get().ullVal);
    }
    PrintIds(ids, context.json);
    return ids.empty() ? ExitCode::NothingFound : ExitCode::Fine;
}

} // namespace tsl
