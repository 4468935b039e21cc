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
#include "store/TargetSession.h"

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

// Binds the ids to the prepared statement and calls onRow for each row. Returns the engine's
// result.
template <class Id, class OnRow>
int FetchRows(CStatement& statement, std::span<const Id> ids, OnRow onRow) {
    CBinder binder(statement);
    for (const Id id : ids)
        binder.Integer(static_cast<INT64>(id));
    return binder.Result() == kSqliteOk ? statement.ForEachRow(onRow) : binder.Result();
}

// What the container gave for the ids to fetch.
struct WantedIds {
    HRESULT read;
    CVariant value;
    CArrayAccess access;
    std::span<const ULONG> ids;
};

WantedIds ReadWantedIds(ITslParamContainer& container) {
    WantedIds wanted;
    wanted.read = container.GetValue(kKeyRecordIds, wanted.value.Address());
    if (wanted.read == S_OK && SharesTypeBits(wanted.value.Type(), VT_UI4)) {
        wanted.ids = IdsOf(wanted.value, wanted.access);
    }
    return wanted;
}

// S_OK; S_FALSE when no ids were wanted; else the failure.
HRESULT FindRecords(const CActionLogStore& store, const Target& target, const WantedIds& wanted,
                    std::vector<StoredRecord>& records) {
    const CMutexGuard lock(store.SqliteAccessLock(), kSqliteAccessTimeoutMilliseconds);
    const CTableSession session(store, target);
    if (!session.IsOpen()) return session.Opened();
    if (FAILED(wanted.read)) return wanted.read;
    if (wanted.ids.empty()) return S_FALSE;
    CStatement statement(session.Database());
    int status = statement.Prepare(IdListStatement(target.Table(), wanted.ids.size()));
    if (status == kSqliteOk) {
        status = FetchRows(statement, wanted.ids,
                           [&] { records.push_back(ReadStoredRecord(statement)); });
    }
    return SuccessAsOk(SqliteResultToHresult(status));
}

// Replaces what the result holds by the records, or by an empty VARIANT when there are none.
HRESULT HandOut(ContainerList records, VARIANT* result) {
    CVariant packed;
    const HRESULT status = PackContainers(std::move(records), packed.Address());
    return FAILED(status) ? status : packed.MoveTo(result);
}

} // namespace

HRESULT QueryRecords(const CActionLogStore& store, const Target& target,
                     ITslParamContainer* container, VARIANT* result) {
    if (!store.Engine() || !container || !result) return E_POINTER;
    const WantedIds wanted = ReadWantedIds(*container);
    std::vector<StoredRecord> records;
    const HRESULT found = FindRecords(store, target, wanted, records);
    if (found == S_FALSE) return S_OK;
    if (FAILED(found)) return found;
    // The first failure is kept, so that an incomplete answer is never handed out.
    ContainerList containers;
    HRESULT status = S_OK;
    for (StoredRecord& record : records) {
        const HRESULT appended = AppendRecord(std::move(record), containers);
        if (SUCCEEDED(status)) status = appended;
    }
    return FAILED(status) ? status : HandOut(std::move(containers), result);
}

namespace {

// The record to take, as the container gave it.
struct WantedRecord {
    HRESULT read;
    bool isId = false;
    UINT64 id = 0;
};

WantedRecord ReadWantedRecord(ITslParamContainer& container) {
    WantedRecord wanted;
    CVariant value;
    wanted.read = container.GetValue(kKeyRecordToTake, value.Address());
    wanted.isId = wanted.read == S_OK && SharesTypeBits(value.Type(), VT_UI8);
    if (wanted.isId) wanted.id = IdFromAnyValue(value.Get());
    return wanted;
}

// The stored parameters of the rows that have some, and how the engine answered.
struct FoundToTake {
    HRESULT result = S_OK; // of fetching; S_FALSE when no record was named
    bool mayDelete = false;
    std::vector<std::wstring> parameters;
};

FoundToTake FindToTake(const CActionLogStore& store, const Target& target,
                       const WantedRecord& wanted) {
    FoundToTake found;
    const CTableSession session(store, target);
    found.result = session.Opened();
    if (!session.IsOpen()) return found;
    found.result = FAILED(wanted.read) ? wanted.read : S_FALSE;
    if (!wanted.isId) return found;
    CStatement statement(session.Database());
    int status = statement.Prepare(IdListStatement(target.Table(), /*count=*/1));
    found.mayDelete = status == kSqliteOk;
    if (found.mayDelete) {
        status = FetchRows(statement, std::span(&wanted.id, 1), [&] {
            const wchar_t* const text = statement.ColumnText(kParametersIndex);
            if (text) found.parameters.emplace_back(text);
        });
    }
    found.result = SuccessAsOk(SqliteResultToHresult(status));
    return found;
}

// What cannot be decoded ends the walk; nothing is handed out then.
void AnswerTaken(const std::vector<std::wstring>& parameters, VARIANT* result) {
    ContainerList records;
    HRESULT status = E_INVALIDARG;
    for (const std::wstring& text : parameters) {
        status = AppendTakenRecord(text, records);
        if (FAILED(status)) return;
    }
    if (SUCCEEDED(status)) HandOut(std::move(records), result);
}

} // namespace

HRESULT TakeRecord(const CActionLogStore& store, const Target& target,
                   ITslParamContainer* container, VARIANT* result) {
    if (!store.Engine() || !container || !result) return E_POINTER;
    const WantedRecord wanted = ReadWantedRecord(*container);
    const FoundToTake found = FindToTake(store, target, wanted);
    if (found.result == S_FALSE) return S_OK;
    if (!found.mayDelete) return found.result;
    if (SUCCEEDED(found.result)) AnswerTaken(found.parameters, result);
    // The record goes whether or not it could be fetched, and whatever comes of deleting it; it
    // stays when making the answer raised, for want of memory.
    AtBoundary([&] { return DeleteRecords(store, target, container); });
    return found.result;
}

} // namespace tsl
