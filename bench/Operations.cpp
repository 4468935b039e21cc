#include "bench/Operations.h"

#include <numeric>

#include "bench/floor/FloorObject.h"
#include "bench/support/Actions.h"
#include "component/host/CommandCodes.h"
#include "component/host/ParamKeys.h"
#include "console/Arrays.h"

namespace tsl::bench {

namespace {

constexpr UINT32 kLogKind = 1;
constexpr UINT32 kLogKindWithAdditions = 2;
constexpr UINT32 kIdsAskedFor = 100;
constexpr size_t kLinkedEntries = 20;
constexpr DATE kHalfMinute = 0.5 / 1'440.0;

CComPtr<CTslParamContainer> OfUser() {
    CComPtr<CTslParamContainer> arguments = CTslParamContainer::Create();
    SetValue(*arguments, kKeyUserId, CVariant::FromUi4(kUser));
    return arguments;
}

CComPtr<CTslParamContainer> OfTimes(DATE first, DATE last) {
    CComPtr<CTslParamContainer> arguments = OfUser();
    SetValue(*arguments, kKeyStartTime, CVariant::FromDate(first));
    SetValue(*arguments, kKeyEndTime, CVariant::FromDate(last));
    return arguments;
}

CComPtr<CTslParamContainer> OfIds(UINT32 first, UINT32 last) {
    CComPtr<CTslParamContainer> arguments = OfUser();
    SetValue(*arguments, kKeyFirstRecordId, CVariant::FromUi4(first));
    SetValue(*arguments, kKeyLastRecordId, CVariant::FromUi4(last));
    return arguments;
}

CComPtr<CTslParamContainer> OfOne(UINT64 recordId) {
    CComPtr<CTslParamContainer> arguments = CTslParamContainer::Create();
    SetValue(*arguments, kKeyRecordToTake, CVariant::FromUi8(recordId));
    return arguments;
}

// For what reads the whole table, or makes very many containers: fewer where one takes long.
int CallsThatRead(UINT32 size, UINT32 containers = 0) {
    return size >= 100'000 || containers >= 1'000 ? 1 : 10;
}

constexpr int kCallsThatWrite = 10;

// An answer without its records would be a fast one.
void RequireAnswers(CVariant answer, size_t count) {
    CValueView<IUnknown*> view;
    Require(view.Open(*answer.Address()));
    if (view.Values().size() != count) throw CHresultError(E_FAIL);
}

} // namespace

COperations::COperations() {
    for (const UINT32 size : {1'000U, 10'000U, 100'000U, 500'000U}) {
        AddRecording(size);
        AddQueries(size);
        AddDeletions(size);
    }
    AddHundredthNotify();
    AddObject();
}

void COperations::AddNotify(std::string name, UINT32 size, UINT32 logKind,
                            CComPtr<CTslParamContainer> action, StoreCounts change,
                            std::function<void(const CFloor&, const FloorRecord&)> floor) {
    const auto actionName = std::make_shared<CVariant>();
    Require(action->GetValue(kKeyActionName, actionName->Address()));
    const auto parameters = std::make_shared<std::wstring>();
    const auto notify = [this, action](UINT32 recordId) {
        SetRecordId(*action, recordId);
        Require(m_host.Plugin().Notify(kCommandRecordAction, action.Get()));
    };
    m_operations.push_back(
        {.name = std::move(name),
         .size = size,
         .calls = kCallsThatWrite,
         .change = change,
         .prepare =
             [=, this](int) {
                 m_host.Plugin().SetRecordingEnabled(logKind);
                 if (!parameters->empty()) return;
                 // The floor writes the very text that the component writes.
                 const UINT32 id = m_stores.NewId();
                 notify(id);
                 *parameters = m_stores.ParametersOf(id);
             },
         .component = [=, this] { notify(m_stores.NewId()); },
         .floor =
             [=, this](const CFloor& work) {
                 floor(work, {m_stores.NewId(), actionName->Get().bstrVal, parameters->c_str()});
             }});
}

void COperations::AddRecording(UINT32 size) {
    const CComPtr<CTslParamContainer> none = CTslParamContainer::Create();
    m_operations.push_back({.name = "next id",
                            .size = size,
                            .calls = 50,
                            .prepare = {},
                            .component = [=, this] { m_host.Ask(kCommandNextRecordId, *none); },
                            .floor = [](const CFloor& work) { work.NextId(); }});

    const auto writeBoth = [](const CFloor& work, const FloorRecord& record) {
        work.WriteActionLog(record);
        work.WriteReplay(record);
    };
    AddNotify("Notify", size, kLogKind, MakeAction(L"playItem"), {1, 0}, writeBoth);
    AddNotify("Notify, delete action", size, kLogKind, MakeAction(L"deleteItem"), {1, 1},
              [=](const CFloor& work, const FloorRecord& record) {
                  work.WriteKept(record);
                  writeBoth(work, record);
              });
    AddNotify("Notify, linked item", size, kLogKindWithAdditions,
              MakeActionWithLinkedItem(L"playItem", kLinkedEntries), {1, 0}, writeBoth);
}

// What its floor would be is not the disk's matter: all records of the replay log become
// containers.
void COperations::AddHundredthNotify() {
    const CComPtr<CTslParamContainer> action = MakeAction(L"playItem");
    m_operations.push_back(
        {.name = "Notify, a 100th id",
         .size = 1'000,
         .calls = kCallsThatWrite,
         .change = {1, 0},
         .prepare = [this](int) { m_host.Plugin().SetRecordingEnabled(kLogKind); },
         .component =
             [=, this] {
                 SetRecordId(*action, m_stores.NewHundredthId());
                 Require(m_host.Plugin().Notify(kCommandRecordAction, action.Get()));
             },
         .floor = {}});
}

void COperations::AddQueries(UINT32 size) {
    const auto add = [&](std::string name, int calls, UINT64 command,
                         const CComPtr<CTslParamContainer>& arguments, size_t answers,
                         std::function<void(const CFloor&)> floor) {
        m_operations.push_back(
            {.name = std::move(name),
             .size = size,
             .calls = calls,
             .prepare = [this](int) { m_host.Plugin().SetRecordingEnabled(kLogKind); },
             .component = [=, this] { RequireAnswers(m_host.Ask(command, *arguments), answers); },
             .floor = std::move(floor)});
    };
    const UINT32 first = size - kIdsAskedFor + 1;
    const DATE start = TimeOf(first) - kHalfMinute;
    const DATE end = TimeOf(size) + kHalfMinute;
    add("ids by time", CallsThatRead(size), kCommandQueryIds, OfTimes(start, end), kIdsAskedFor,
        [=](const CFloor& work) { work.IdsByTime(start, end); });
    add("ids by id range", CallsThatRead(size), kCommandQueryIds, OfIds(first, size), kIdsAskedFor,
        [=](const CFloor& work) { work.IdsByRange(first, size); });
    add("all ids", 10, kCommandQueryAllIds, OfUser(), kKeptRecords,
        [](const CFloor& work) { work.AllIds(); });
    for (const UINT32 count : {1U, 100U, 10'000U}) {
        if (count > size) continue;
        std::vector<ULONG> ids(count);
        std::iota(ids.begin(), ids.end(), size - count + 1);
        const CComPtr<CTslParamContainer> arguments = CTslParamContainer::Create();
        SetValue(*arguments, kKeyRecordIds, MakeArray<ULONG>(ids));
        add("records by " + std::to_string(count) + (count == 1 ? " id" : " ids"),
            CallsThatRead(size, count), kCommandQueryRecords, arguments, count,
            [=](const CFloor& work) { work.Records(ids); });
    }
    m_operations.push_back(
        {.name = "take one",
         .size = size,
         .calls = kCallsThatWrite,
         .change = {0, -1},
         .prepare =
             [this](int calls) {
                 m_host.Plugin().SetRecordingEnabled(kLogKind);
                 m_nextToDelete = m_stores.AddKeptRecords(calls);
             },
         .component =
             [this] {
                 RequireAnswers(m_host.Ask(kCommandTakeRecord, *OfOne(m_nextToDelete++)), 1);
             },
         .floor = [this](const CFloor& work) { work.Take(m_nextToDelete++); }});
}

void COperations::AddDeletions(UINT32 size) {
    const auto add = [&](std::string name,
                         std::function<CComPtr<CTslParamContainer>(UINT32)> arguments,
                         std::function<void(const CFloor&, UINT32)> floor) {
        m_operations.push_back(
            {.name = std::move(name),
             .size = size,
             .calls = CallsThatRead(size),
             .change = {-1, 0},
             .prepare =
                 [this](int calls) {
                     m_host.Plugin().SetRecordingEnabled(kLogKind);
                     m_nextToDelete = m_stores.AddRecords(calls);
                 },
             .component =
                 [=, this] {
                     Require(m_host.Plugin().Delete(kCommandDeleteRecords,
                                                    arguments(m_nextToDelete++).Get()));
                 },
             .floor = [=, this](const CFloor& work) { floor(work, m_nextToDelete++); }});
    };
    add("deletion by id", OfOne, [](const CFloor& work, UINT32 id) { work.DeleteOne(id); });
    add(
        "deletion by id range", [](UINT32 id) { return OfIds(id, id); },
        [](const CFloor& work, UINT32 id) { work.DeleteIdRange(id, id); });
    add(
        "deletion by time",
        [](UINT32 id) { return OfTimes(TimeOf(id) - kHalfMinute, TimeOf(id) + kHalfMinute); },
        [](const CFloor& work, UINT32 id) {
            work.DeleteTimeRange(TimeOf(id) - kHalfMinute, TimeOf(id) + kHalfMinute);
        });
}

void COperations::AddObject() {
    m_operations.push_back({.name = "creation and release",
                            .size = 1'000,
                            .calls = 50,
                            .prepare = {},
                            .component = [this] { m_host.Library().CreatePlugin(); },
                            .floor = [](const CFloor&) { CreateAndReleaseObject(); }});
}

} // namespace tsl::bench
