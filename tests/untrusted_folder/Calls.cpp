#include "tests/untrusted_folder/Calls.h"

#include "component/host/CommandCodes.h"
#include "tests/support/Containers.h"

namespace tsl::test {

namespace {

HRESULT Ask(ITslPluginDb2& plugin, UINT64 code, ITslParamContainer* parameters) {
    CVariant answer;
    return plugin.Request(code, parameters, nullptr, answer.Address());
}

ContainerBuilder OfUser() {
    return ContainerBuilder().Ui4(kKeyUserId, 7);
}

ContainerBuilder OfIds() {
    return OfUser().Ui4(kKeyFirstRecordId, 900).Ui4(kKeyLastRecordId, 950);
}

constexpr UINT32 kSystemUsers = 2;

} // namespace

std::map<std::string, HRESULT> MakeAllCalls(ITslPluginDb2& plugin) {
    std::map<std::string, HRESULT> results;
    results["switch on"] = plugin.SetRecordingEnabled(1);
    results["next id"] = Ask(plugin, kCommandNextRecordId, ContainerBuilder());
    results["record"] = plugin.Notify(kCommandRecordAction, Action(21, L"playItem"));
    results["record a hundredth"] = plugin.Notify(kCommandRecordAction, Action(300, L"playItem"));
    results["record a deletion"] =
        plugin.Notify(kCommandRecordAction, Action(22, L"deleteItem").Ui4(kKeyUserId, 1));
    results["reset"] = plugin.Notify(kCommandRecordAction, Action(23, L"veSettingReset"));
    results["ids by time"] = Ask(plugin, kCommandQueryIds, OfUser());
    results["ids by id"] = Ask(plugin, kCommandQueryIds, OfIds());
    results["all ids"] = Ask(plugin, kCommandQueryAllIds, ContainerBuilder());
    results["records"] =
        Ask(plugin, kCommandQueryRecords, ContainerBuilder().Array<ULONG>(kKeyRecordIds, {1, 21}));
    results["take"] = Ask(plugin, kCommandTakeRecord, ContainerBuilder().Ui8(kKeyRecordToTake, 22));
    results["delete one"] =
        plugin.Delete(kCommandDeleteRecords, ContainerBuilder().Ui8(kKeyRecordToTake, 22));
    results["delete ids"] = plugin.Delete(kCommandDeleteRecords, OfIds());
    results["delete times"] = plugin.Delete(kCommandDeleteRecords, OfUser());
    plugin.SetRecordingEnabled(kSystemUsers);
    results["all ids of the system's user"] = Ask(plugin, kCommandQueryAllIds, ContainerBuilder());
    results["delete one of the system's user"] =
        plugin.Delete(kCommandDeleteRecords, ContainerBuilder().Ui8(kKeyRecordToTake, 22));
    plugin.SetRecordingEnabled(1);
    return results;
}

} // namespace tsl::test
