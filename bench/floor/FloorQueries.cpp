#include "bench/floor/Floor.h"

#include "base/Hresult.h"
#include "bench/support/Actions.h"
#include "component/host/CommandCodes.h"
#include "component/host/ITslContentPropertySink.h"
#include "component/host/Identities.h"
#include "component/host/ParamKeys.h"

namespace tsl::bench {

namespace {

using Containers = std::vector<CComPtr<ITslParamContainer>>;

CVariant AnswerIds(const std::vector<UINT32>& ids, UINT64 commandCode) {
    Containers containers;
    containers.reserve(ids.size());
    for (const UINT32 id : ids) {
        CComPtr<ITslParamContainer> container = MakeContainer(commandCode);
        const bool all = commandCode == kCommandQueryAllIds;
        SetIn(*container, all ? kKeyItemId : kKeyRecordId,
              all ? CVariant::FromUi8(id) : CVariant::FromUi4(id));
        containers.push_back(std::move(container));
    }
    return PackContainers(containers);
}

std::vector<UINT32> CollectIds(CFloorStatement& statement) {
    std::vector<UINT32> ids;
    while (statement.Step())
        ids.push_back(static_cast<UINT32>(statement.Int64(0)));
    return ids;
}

CComPtr<ITslParamContainer> MakeRecord(CFloorStatement& row) {
    CComPtr<ITslParamContainer> record = MakeContainer(kCommandQueryRecords);
    SetIn(*record, kKeyRecordFound, CVariant::FromBool(true));
    SetIn(*record, kKeyRecordId, CVariant::FromUi4(static_cast<UINT32>(row.Int64(0))));
    SetIn(*record, kKeyUserId, CVariant::FromUi4(static_cast<UINT32>(row.Int64(4))));
    SetIn(*record, kKeyAppId, CVariant::FromI4(static_cast<INT32>(row.Int64(2))));
    SetIn(*record, kKeyActionName, CVariant::FromText(row.Text(5)));
    SetIn(*record, kKeyParameterText, CVariant::FromText(row.Text(6)));
    SetIn(*record, kKeyActionTime, CVariant::FromDate(row.Double(7)));
    return record;
}

// The values are not looked for in the text; any will do.
CComPtr<ITslParamContainer> MakeTakenRecord(CFloorStatement& row) {
    CComPtr<ITslParamContainer> record = MakeContainer(kCommandTakeRecord);
    SetIn(*record, kKeyTextHandedOn, CVariant::FromBool(true));
    SetIn(*record, kKeyTaken, CVariant::FromBool(true));
    SetIn(*record, kKeyItemId, CVariant::FromUi8(4711));
    SetIn(*record, kKeyFirstNumber, CVariant::FromI4(-1));
    SetIn(*record, kKeySecondNumber, CVariant::FromI4(2));
    SetIn(*record, kKeyThirdNumber, CVariant::FromI4(30));
    SetIn(*record, kKeySecondId, CVariant::FromUi8(815));
    SetIn(*record, kKeyFirstText, CVariant::FromText(row.Text(6)));
    return record;
}

void HandOn(const wchar_t* text) {
    CComPtr<ITslContentPropertySink> sink;
    const HRESULT result =
        CoCreateInstance(CLSID_TslContentPropertySink, /*outer=*/nullptr, CLSCTX_ALL,
                         IID_ITslContentPropertySink, sink.PutVoid());
    if (FAILED(result)) throw CHresultError(result);
    sink->PutText(4711, CVariant::FromText(text).Get().bstrVal);
}

std::wstring IdListText(const std::wstring& table, size_t count) {
    std::wstring text = L"SELECT * FROM " + table + L" WHERE ActionLogId IN(?";
    text.reserve(text.size() + 2 * count);
    for (size_t index = 1; index < count; ++index)
        text += L",?";
    return text += L')';
}

} // namespace

CComPtr<ITslParamContainer> MakeContainer(UINT64 commandCode) {
    CComPtr<ITslParamContainer> container;
    HRESULT result = CoCreateInstance(CLSID_TslParamContainer, /*outer=*/nullptr, CLSCTX_ALL,
                                      IID_ITslParamContainer, container.PutVoid());
    if (SUCCEEDED(result)) result = container->SetCommandCode(commandCode);
    if (FAILED(result)) throw CHresultError(result);
    return container;
}

void SetIn(ITslParamContainer& container, UINT64 key, CVariant value) {
    const HRESULT result = container.SetValue(key, value.Address());
    if (FAILED(result)) throw CHresultError(result);
}

CVariant PackContainers(Containers& containers) {
    SAFEARRAY* const array =
        SafeArrayCreateVector(VT_UNKNOWN, 0, static_cast<ULONG>(containers.size()));
    if (!array) throw CHresultError(E_OUTOFMEMORY);
    auto* const elements = static_cast<IUnknown**>(array->pvData);
    for (size_t index = 0; index < containers.size(); ++index)
        elements[index] = containers[index].Detach();
    return CVariant::FromOwnedArray(array, VT_UNKNOWN);
}

CVariant CFloor::IdsByTime(DATE first, DATE last) const {
    const CPreparedWork work = Prepare(kNoLock);
    const CFloorDatabase database(m_engine, m_actionLog);
    CFloorStatement statement(database, L"SELECT ActionLogId FROM TslIf_DbActionLog WHERE UserId = "
                                        L"? AND PluginLoggedTime BETWEEN ? AND ?");
    statement.Bind(sqlite3_int64{kUser}).Bind(first).Bind(last);
    return AnswerIds(CollectIds(statement), kCommandQueryIds);
}

CVariant CFloor::IdsByRange(UINT32 first, UINT32 last) const {
    const CPreparedWork work = Prepare(kSqliteAccess);
    const CFloorDatabase database(m_engine, m_actionLog);
    if (ReadCounter() < first) throw CHresultError(E_UNEXPECTED);
    CFloorStatement statement(database, L"SELECT ActionLogId FROM TslIf_DbActionLog WHERE UserId = "
                                        L"? AND LogKind = ? AND ActionLogId BETWEEN ? AND ?");
    statement.Bind(sqlite3_int64{kUser})
        .Bind(sqlite3_int64{1})
        .Bind(sqlite3_int64{first})
        .Bind(sqlite3_int64{last});
    return AnswerIds(CollectIds(statement), kCommandQueryIds);
}

CVariant CFloor::AllIds() const {
    const CPreparedWork work = Prepare(kNoLock);
    const CFloorDatabase database(m_engine, m_kept);
    CFloorStatement statement(database,
                              L"SELECT * FROM TslIf_ContentDeleteProperty WHERE UserId = ? "
                              L"AND ActionLogId BETWEEN ? AND ?");
    statement.Bind(sqlite3_int64{kUser}).Bind(sqlite3_int64{1}).Bind(sqlite3_int64{0xFFFFFFFF});
    return AnswerIds(CollectIds(statement), kCommandQueryAllIds);
}

CVariant CFloor::Records(std::span<const ULONG> ids) const {
    const CPreparedWork work = Prepare(kSqliteAccess);
    const CFloorDatabase database(m_engine, m_actionLog);
    CFloorStatement statement(database, IdListText(m_actionLog.name, ids.size()));
    for (const ULONG id : ids)
        statement.Bind(sqlite3_int64{id});
    Containers records;
    while (statement.Step())
        records.push_back(MakeRecord(statement));
    return PackContainers(records);
}

CVariant CFloor::Take(UINT32 recordId) const {
    Containers records;
    {
        const CPreparedWork work = Prepare(kNoLock);
        const CFloorDatabase database(m_engine, m_kept);
        CFloorStatement statement(database, IdListText(m_kept.name, 1));
        statement.Bind(sqlite3_int64{recordId});
        while (statement.Step()) {
            HandOn(statement.Text(6));
            records.push_back(MakeTakenRecord(statement));
        }
    }
    CVariant answer = PackContainers(records);
    const CPreparedWork work = Prepare(kSqliteAccess);
    const CFloorDatabase database(m_engine, m_kept);
    CFloorStatement(database, L"DELETE FROM TslIf_ContentDeleteProperty WHERE UserId = ? AND "
                              L"ActionLogId IN (?)")
        .Bind(sqlite3_int64{kUser})
        .Bind(sqlite3_int64{recordId})
        .Step();
    return answer;
}

} // namespace tsl::bench
