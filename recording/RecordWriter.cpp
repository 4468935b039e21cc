#include "recording/RecordWriter.h"

#include <optional>
#include <string>

#include "query/ContainerValues.h"
#include "recording/ParameterText.h"
#include "recording/XmlDateTime.h"
#include "store/Binder.h"
#include "store/LatestRow.h"
#include "store/SqliteResult.h"
#include "store/TargetSession.h"

namespace tsl {

namespace {

// What of a row is not the same in every row.
struct ActionRecord {
    UINT32 recordId = 0;
    INT32 appId = 0;
    UINT32 userId = 0;
    CVariant name;
    std::wstring parameters;
    std::optional<DATE> appLoggedTime; // that of writing where the host gives none
};

DATE CurrentUtcTime() {
    SYSTEMTIME now{};
    GetSystemTime(&now);
    CXmlDateTime time;
    time.SetFromSystemTime(now, /*isLocal=*/false);
    return time.Date();
}

// S_OK when the record is complete, S_FALSE when it is to be skipped, else the failure.
HRESULT ReadRecord(ITslParamContainer& container, UINT32 logKind, ActionRecord& record) {
    CVariant value;
    HRESULT result = ReadValue(container, kKeyRecordId, value);
    if (FAILED(result)) return result;
    record.recordId = value.Type() == VT_UI4 ? value.Get().ulVal : 0;
    result = ReadValue(container, kKeyActionName, record.name);
    if (FAILED(result)) return result;
    if (record.name.Type() != VT_BSTR || record.recordId == 0) return S_FALSE;

    result = ReadValue(container, kKeyActionTime, value);
    if (FAILED(result)) return result;
    if (value.Type() == VT_DATE) record.appLoggedTime = value.Get().date;

    result = ReadValue(container, kKeyAppId, value);
    if (FAILED(result)) return result;
    record.appId = value.Type() == VT_I4 ? value.Get().lVal : 0;

    result = ReadValue(container, kKeyUserId, value);
    if (FAILED(result)) return result;
    if (value.Type() != VT_UI4) return S_FALSE;
    record.userId = value.Get().ulVal;

    result = BuildActionParameters(&container, record.parameters, logKind);
    return FAILED(result) ? result : S_OK;
}

// Of every table, so that the text grows no more.
constexpr size_t kRoomForReplaceText = 300;

std::wstring ReplaceText(const std::wstring& table) {
    std::wstring text;
    text.reserve(kRoomForReplaceText);
    text.append(L"REPLACE INTO ").append(table);
    for (size_t index = 0; index < kActionColumns.size(); ++index)
        text.append(index == 0 ? L" (" : L",").append(kActionColumns[index].name);
    for (size_t index = 0; index < kActionColumns.size(); ++index)
        text.append(index == 0 ? L") VALUES(?" : L",?");
    return text += L')';
}

int BindRow(CStatement& statement, const ActionRecord& record, DATE now, UINT32 logKind) {
    constexpr INT64 kUsedLog = 0;
    constexpr double kPreLoggedTime = 0.0;
    constexpr const wchar_t* kNull = nullptr;
    return CBinder(statement)
        .Integer(record.recordId)
        .Integer(kUsedLog)
        .Integer(record.appId)
        .Text(kNull) // name of the application
        .Integer(record.userId)
        .Text(record.name.Get().bstrVal) // a null name stays NULL
        .Text(record.parameters.c_str())
        .Real(record.appLoggedTime.value_or(now))
        .Real(now)
        .Text(kNull) // name of the action before
        .Text(kNull) // its parameters
        .Real(kPreLoggedTime)
        .Integer(logKind)
        .Result();
}

int InsertRow(const CDatabase& database, const Target& target, const ActionRecord& record) {
    CStatement statement(database);
    int result = statement.Prepare(ReplaceText(target.Table()));
    // The time of recording is that of the lock, so that records have the order of their writing.
    if (result == kSqliteOk) result = BindRow(statement, record, CurrentUtcTime(), target.logKind);
    return result == kSqliteOk ? statement.Run() : result;
}

} // namespace

HRESULT WriteActionRecord(const CActionLogStore& store, const Target& target,
                          ITslParamContainer* container) {
    if (!store.Engine()) return E_POINTER;
    ActionRecord record;
    const HRESULT read =
        container ? AtBoundary([&] { return ReadRecord(*container, target.logKind, record); })
                  : S_FALSE;
    const CMutexGuard lock(store.SqliteAccessLock(), kSqliteAccessTimeoutMilliseconds);
    CWriteSession session(store, target);
    if (!session.IsOpen()) return session.Opened();
    int result = session.Begun();
    if (read != S_OK) {
        session.End(result); // file and table come into being all the same
        return SuccessAsOk(read);
    }
    // The older row goes and the new one comes together, or neither.
    const CDatabase& database = session.Database();
    if (result == kSqliteOk) result = RemoveOlderRows(target, database, record.recordId);
    if (result == kSqliteOk) result = InsertRow(database, target, record);
    return SuccessAsOk(SqliteResultToHresult(session.End(result)));
}

} // namespace tsl
