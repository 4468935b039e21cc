#include "tests/calls/Commands.h"

#include <gtest/gtest.h>

#include "component/host/CommandCodes.h"
#include "tests/support/Containers.h"
#include "tests/support/StoreFixture.h"

namespace tsl::test {

namespace {

using Values = CComPtr<CTslParamContainer>;
using MakeArgument = std::function<CComPtr<ITslParamContainer>(Values)>;

constexpr DATE kActionTime = 45000.5;
constexpr UINT32 kUser = 7;

// 0 for the first, 1 for the second.
UINT32 Number(Turn turn) noexcept {
    return turn == Turn::First ? 0 : 1;
}

std::string Outcome(HRESULT result, const VARIANT& answer) {
    char code[16];
    std::snprintf(code, sizeof code, "0x%08lx ", static_cast<unsigned long>(result));
    return code + AnswerText(answer);
}

ContainerBuilder TimedAction(UINT32 id, std::wstring_view name) {
    return Action(id, name).Date(kKeyActionTime, kActionTime);
}

ContainerBuilder DeleteAction(UINT32 id) {
    return TimedAction(id, L"deleteItem")
        .Ui4(kKeyUserId, 1)
        .Array<ULONGLONG>(kKeyUllValues, {900 + id, 901})
        .Array<LONG>(kKeyIntValues, {1, 2, 3})
        .Texts(kKeyStringValues, {L"first", L"second"});
}

// A command by Notify whose action depends on the turn.
HostCommand Notifies(const char* name, std::function<ContainerBuilder(UINT32 number)> action) {
    return {name, [action](ITslPluginDb2& plugin, Turn turn, const MakeArgument& argument) {
                const auto given = argument(action(Number(turn)).Get());
                const CVariant none;
                return Outcome(plugin.Notify(kCommandRecordAction, given.Get()), none.Get());
            }};
}

HostCommand Requests(const char* name, UINT64 code,
                     std::function<ContainerBuilder(UINT32 number)> request) {
    return {name, [code, request](ITslPluginDb2& plugin, Turn turn, const MakeArgument& argument) {
                const auto given = argument(request(Number(turn)).Get());
                CVariant answer;
                const HRESULT result = plugin.Request(code, given.Get(), nullptr, answer.Address());
                return Outcome(result, answer.Get());
            }};
}

HostCommand Deletes(const char* name, std::function<ContainerBuilder(UINT32 number)> request) {
    return {name, [request](ITslPluginDb2& plugin, Turn turn, const MakeArgument& argument) {
                const auto given = argument(request(Number(turn)).Get());
                const CVariant none;
                return Outcome(plugin.Delete(kCommandDeleteRecords, given.Get()), none.Get());
            }};
}

ContainerBuilder OfUser() {
    return ContainerBuilder().Ui4(kKeyUserId, kUser);
}

} // namespace

const std::vector<HostCommand>& HostCommands() {
    static const std::vector<HostCommand> commands = {
        Notifies("record", [](UINT32 n) { return TimedAction(21 + n, L"playItem"); }),
        Notifies("record a deletion", [](UINT32 n) { return DeleteAction(23 + n); }),
        Notifies("reset",
                 [](UINT32 n) {
                     return TimedAction(25 + n, L"veSettingReset").Ui4(kKeyUserId, kUser + 2 * n);
                 }),
        Notifies("move",
                 [](UINT32 n) {
                     return TimedAction(27 + n, L"viaMoveContent")
                         .Texts(kKeyStringValues, {L"old one", L"old two"})
                         .Texts(kKeyMoreStringValues, {L"new one", L"new two"})
                         .I4(kKeyNumber, 9);
                 }),
        Notifies("record a hundredth",
                 [](UINT32 n) { return TimedAction(300 + 100 * n, L"playItem"); }),
        Requests("next id", kCommandNextRecordId, [](UINT32) { return ContainerBuilder(); }),
        Requests("ids by time", kCommandQueryIds, [](UINT32) { return OfUser(); }),
        Requests(
            "ids by id", kCommandQueryIds,
            [](UINT32) { return OfUser().Ui4(kKeyFirstRecordId, 2).Ui4(kKeyLastRecordId, 60); }),
        Requests("all ids", kCommandQueryAllIds, [](UINT32) { return ContainerBuilder(); }),
        Requests("records", kCommandQueryRecords,
                 [](UINT32) {
                     return ContainerBuilder().Array<ULONG>(kKeyRecordIds, {1, 2, 3, 21, 22});
                 }),
        Requests("take", kCommandTakeRecord,
                 [](UINT32 n) { return ContainerBuilder().Ui8(kKeyRecordToTake, 11 + n); }),
        Deletes("delete one",
                [](UINT32 n) { return ContainerBuilder().Ui8(kKeyRecordToTake, 13 + n); }),
        Deletes("delete ids",
                [](UINT32 n) {
                    return OfUser().Ui4(kKeyFirstRecordId, 3 + n).Ui4(kKeyLastRecordId, 3 + n);
                }),
        Deletes("delete times", [](UINT32) { return OfUser(); }),
    };
    return commands;
}

void RecordBaseStore(ITslPluginDb2& plugin) {
    for (UINT32 id = 1; id <= 5; ++id)
        ASSERT_EQ(S_OK, plugin.Notify(kCommandRecordAction, TimedAction(id, L"playItem")));
    for (UINT32 id = 11; id <= 16; ++id)
        ASSERT_EQ(S_OK, plugin.Notify(kCommandRecordAction, DeleteAction(id)));
    WriteBytes(CounterPath(), Utf16FileBytes(L"00000200\t\r\n"));
}

} // namespace tsl::test
