#include "tests/io_faults/Operation.h"

#include "component/host/CommandCodes.h"
#include "tests/io_faults/AnswerText.h"
#include "tests/support/Containers.h"

namespace tsl::test {

namespace {

constexpr DATE kActionTime = 45356.25;
constexpr size_t kLetters = 400;

ContainerBuilder ActionWithParameters(UINT32 id, const wchar_t* name, UINT32 user,
                                      size_t extraLetters) {
    ContainerBuilder action = Action(id, name);
    action.Ui4(kKeyUserId, user)
        .Date(kKeyActionTime, kActionTime)
        .Array<ULONGLONG>(kKeyUllValues, {id, 1000 + id})
        .Texts(kKeyStringValues,
               {L"record " + std::to_wstring(id) + std::wstring(kLetters + extraLetters, L'x')});
    return action;
}

std::function<bool(const TableRow&)> OfUser(UINT32 user) {
    return [user](const TableRow& row) { return row.user == user && row.logKind == "1"; };
}

Operation Notifying(ITslPluginDb2& plugin, std::string name, UINT32 id, const wchar_t* action,
                    size_t extraLetters, std::vector<Step> steps) {
    return {std::move(name),
            [&plugin, id, action, extraLetters] {
                return Record(plugin, id, action, kOtherUser, extraLetters);
            },
            std::move(steps)};
}

Operation Deleting(ITslPluginDb2& plugin, std::string name, ContainerBuilder request,
                   std::function<bool(const TableRow&)> condition) {
    return {std::move(name),
            [&plugin, request] { return plugin.Delete(kCommandDeleteRecords, request); },
            {Acknowledged(Remove(Table::Log, std::move(condition)))}};
}

// The first answer, which is given without a fault, is the whole one. A record that was taken is
// not there any more: then there is no answer.
Operation Querying(ITslPluginDb2& plugin, std::string name, UINT64 code, ContainerBuilder request,
                   std::vector<Step> steps = {}) {
    return {std::move(name),
            [&plugin, code, request, steps, whole = std::wstring()]() mutable {
                CVariant answer;
                const HRESULT result = plugin.Request(code, request, nullptr, answer.Address());
                const std::wstring text = AnswerText(answer);
                if (whole.empty()) {
                    whole = text;
                    EXPECT_NE(L"", whole);
                }
                const bool mayBeGone = !steps.empty() && text.empty();
                EXPECT_TRUE(FAILED(result) ? text.empty() : text == whole || mayBeGone) << text;
                return result;
            },
            steps};
}

} // namespace

HRESULT Record(ITslPluginDb2& plugin, UINT32 id, const wchar_t* name, UINT32 user,
               size_t extraLetters) {
    return plugin.Notify(kCommandRecordAction, ActionWithParameters(id, name, user, extraLetters));
}

bool IsHandedOut(ITslPluginDb2& plugin, UINT32 id) {
    CVariant answer;
    const HRESULT result =
        plugin.Request(kCommandQueryRecords, ContainerBuilder().Array<ULONG>(kKeyRecordIds, {id}),
                       nullptr, answer.Address());
    const std::wstring text = AnswerText(answer);
    return result == S_OK && text.find(L"record%20" + std::to_wstring(id) + L"xxx") != text.npos;
}

Operation Recording(ITslPluginDb2& plugin, UINT32 id, size_t extraLetters) {
    return Notifying(plugin, "recording", id, L"playItem", extraLetters,
                     {Put(Table::Log, id), Acknowledged(Put(Table::Replay, id))});
}

Operation RecordingADeleteAction(ITslPluginDb2& plugin, UINT32 id) {
    return Notifying(
        plugin, "recording a delete action", id, L"deleteItem", 0,
        {Put(Table::Taken, id), Put(Table::Log, id), Acknowledged(Put(Table::Replay, id))});
}

Operation UserReset(ITslPluginDb2& plugin, UINT32 id) {
    return Notifying(plugin, "user reset", id, L"veSettingReset", 0,
                     {Remove(Table::Log, OfUser(kOtherUser)), Put(Table::Log, id),
                      Acknowledged(Put(Table::Replay, id))});
}

Operation ReplayTrim(ITslPluginDb2& plugin, UINT32 id) {
    return Notifying(plugin, "replay trim", id, L"playItem", 0,
                     {Put(Table::Log, id), Remove(Table::Replay, OfUser(kOtherUser)),
                      Acknowledged(Put(Table::Replay, id))});
}

Operation DeletingOne(ITslPluginDb2& plugin, UINT32 id) {
    return Deleting(plugin, "deleting one record", ContainerBuilder().Ui8(kKeyRecordToTake, id),
                    [id](const TableRow& row) { return row.id == id && row.user == kImpliedUser; });
}

Operation DeletingIds(ITslPluginDb2& plugin, UINT32 first, UINT32 last) {
    return Deleting(plugin, "deleting ids",
                    ContainerBuilder()
                        .Ui4(kKeyUserId, kOtherUser)
                        .Ui4(kKeyFirstRecordId, first)
                        .Ui4(kKeyLastRecordId, last),
                    [first, last](const TableRow& row) {
                        return OfUser(kOtherUser)(row) && row.id >= first && row.id <= last;
                    });
}

Operation DeletingTimes(ITslPluginDb2& plugin) {
    return Deleting(plugin, "deleting times", ContainerBuilder().Ui4(kKeyUserId, kOtherUser),
                    OfUser(kOtherUser));
}

// Its deletion is not reported.
Operation Taking(ITslPluginDb2& plugin, UINT32 id) {
    return Querying(plugin, "taking", kCommandTakeRecord,
                    ContainerBuilder().Ui8(kKeyRecordToTake, id),
                    {Remove(Table::Taken, [id](const TableRow& row) {
                        return row.id == id && row.user == kImpliedUser;
                    })});
}

Operation QueryingTimes(ITslPluginDb2& plugin) {
    return Querying(plugin, "querying times", kCommandQueryIds,
                    ContainerBuilder().Ui4(kKeyUserId, kOtherUser));
}

Operation QueryingIds(ITslPluginDb2& plugin) {
    return Querying(plugin, "querying ids", kCommandQueryIds,
                    ContainerBuilder().Ui4(kKeyUserId, kOtherUser).Ui4(kKeyFirstRecordId, 5));
}

Operation QueryingAllIds(ITslPluginDb2& plugin) {
    return Querying(plugin, "querying all ids", kCommandQueryAllIds, ContainerBuilder());
}

Operation FetchingRecords(ITslPluginDb2& plugin, std::initializer_list<ULONG> ids) {
    return Querying(plugin, "fetching", kCommandQueryRecords,
                    ContainerBuilder().Array<ULONG>(kKeyRecordIds, ids));
}

} // namespace tsl::test
