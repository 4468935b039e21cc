// The queries that answer with whole records.
#include "base/ArrayView.h"
#include "component/host/ParamKeys.h"
#include "query/ContainerValues.h"
#include "query/Deletions.h"
#include "query/IdListStatement.h"
#include "query/RecordAnswer.h"
#include "query/RecordQueries.h"
#include "query/TakenRecord.h"
#include "store/Binder.h"
#include "store/SqliteResult.h"

namespace tsl {

namespace {

// A value passes when its type shares a bit with the wanted one; hosts rely on that leniency.
bool SharesTypeBits(VARTYPE type, VARTYPE wanted) noexcept {
    return (type & 0xFF & wanted) != 0;
}

// The ids of an array of 32-bit values; none when it is no such array.
std::span<const ULONG> IdsOf(CVariant& value, CArrayAccess& access) {
    std::span<const ULONG> ids;
    const bool isArray = (value.Type() & VT_ARRAY) != 0 && (value.Type() & VT_BYREF) == 0;
    if (!isArray) return ids;
    const HRESULT opened = OpenArray(value.Get().parray, VT_UI4, access, ids);
    if (FAILED(opened) && opened != E_INVALIDARG) throw CHresultError(opened);
    return ids;
}

// The id that the bytes of a value's own type give; 0 for arrays, references and what has no
// number.
UINT64 IdFromAnyValue(const VARIANT& value) noexcept {
    switch (value.vt) {
    case VT_I1:
    case VT_UI1:
        return value.bVal;
    case VT_BOOL:
    case VT_UI2:
        return value.uiVal;
    case VT_I4:
    case VT_UI4:
    case VT_INT:
    case VT_UINT:
    case VT_R4:
        return value.ulVal;
    case VT_I8:
    case VT_UI8:
    case VT_R8:
    case VT_CY:
    case VT_DATE:
        return value.ullVal;
    default:
        return 0;
    }
}

// Appends each row and keeps the first failure, so that an incomplete answer is never handed out.
template <class Append>
int CollectRows(CStatement& statement, ContainerList& records, HRESULT& status, Append append) {
    return statement.ForEachRow([&] {
        const HRESULT appended = append(statement, records);
        if (SUCCEEDED(status)) status = appended;
    });
}

// Replaces what the result holds by the records, or by an empty VARIANT when there are none.
HRESULT HandOut(ContainerList records, VARIANT* result) {
    CVariant packed;
    const HRESULT status = PackContainers(std::move(records), packed.Address());
    return FAILED(status) ? status : packed.MoveTo(result);
}

} // namespace

HRESULT QueryRecords(CActionLogStore& store, ITslParamContainer* container, VARIANT* result) {
    if (!store.Engine() || !container || !result) return E_POINTER;
    const CMutexGuard lock(store.SqliteAccessLock(), kSqliteAccessTimeoutMilliseconds);
    CDatabase database;
    const HRESULT opened = store.OpenSelected(&database);
    if (FAILED(opened) || !database) return opened;
    CVariant value;
    const HRESULT read = container->GetValue(kKeyRecordIds, value.Address());
    if (FAILED(read)) return read;
    CArrayAccess access;
    if (read != S_OK || !SharesTypeBits(value.Type(), VT_UI4)) return S_OK;
    const std::span<const ULONG> ids = IdsOf(value, access);
    if (ids.empty()) return S_OK;

    CStatement statement(database);
    int sqliteResult = statement.Prepare(IdListStatement(store.SelectedTable(), ids.size()));
    CBinder binder(statement);
    if (sqliteResult == kSqliteOk) {
        for (const ULONG id : ids)
            binder.Integer(id);
        sqliteResult = binder.Result();
    }
    ContainerList records;
    HRESULT status = S_OK;
    if (sqliteResult == kSqliteOk) {
        sqliteResult = CollectRows(statement, records, status, AppendRecord);
    }
    const HRESULT fetched = SqliteResultToHresult(sqliteResult);
    if (FAILED(fetched)) return fetched;
    if (FAILED(status)) return status;
    return HandOut(std::move(records), result);
}

namespace {

// What a take found, and how the engine answered.
struct Fetched {
    int sqliteResult = kSqliteOk;
    bool prepared = false;
    HRESULT status = E_INVALIDARG;
    ContainerList records;
};

Fetched FetchForTake(const CActionLogStore& store, const CDatabase& database, UINT64 recordId) {
    Fetched fetched;
    CStatement statement(database);
    fetched.sqliteResult = statement.Prepare(IdListStatement(store.SelectedTable(), 1));
    if (fetched.sqliteResult != kSqliteOk) return fetched;
    fetched.prepared = true;
    fetched.sqliteResult = statement.BindInt64(1, static_cast<INT64>(recordId));
    if (fetched.sqliteResult != kSqliteOk) return fetched;
    bool undecodable = false;
    fetched.sqliteResult = statement.ForEachRow([&] {
        if (undecodable) return;
        const HRESULT appended = AppendTakenRecord(statement, fetched.records);
        undecodable = FAILED(appended);
        if (appended != S_FALSE) fetched.status = appended;
    });
    return fetched;
}

} // namespace

HRESULT TakeRecord(CActionLogStore& store, ITslParamContainer* container, VARIANT* result) {
    if (!store.Engine() || !container || !result) return E_POINTER;
    CDatabase database;
    const HRESULT opened = store.OpenSelected(&database);
    if (FAILED(opened) || !database) return opened;
    CVariant value;
    const HRESULT read = container->GetValue(kKeyRecordToTake, value.Address());
    if (FAILED(read)) return read;
    if (read != S_OK || !SharesTypeBits(value.Type(), VT_UI8)) return S_OK;

    Fetched fetched = FetchForTake(store, database, IdFromAnyValue(value.Get()));
    if (!fetched.prepared) return SqliteResultToHresult(fetched.sqliteResult);
    const HRESULT status = SqliteResultToHresult(fetched.sqliteResult);
    if (SUCCEEDED(status) && SUCCEEDED(fetched.status)) {
        HandOut(std::move(fetched.records), result);
    }
    database.Close();
    // The record goes whether or not it could be fetched, and whatever comes of deleting it.
    AtBoundary([&] { return DeleteRecords(store, container); });
    return SuccessAsOk(status);
}

} // namespace tsl
