#include "recording/RecordWriter.h"

#include <string>

#include "query/ContainerValues.h"
#include "recording/ParameterText.h"
#include "recording/XmlDateTime.h"
#include "store/Binder.h"
#include "store/LatestRow.h"
#include "store/SqliteResult.h"

namespace tsl {

namespace {

// What of a row is not the same in every row.
struct ActionRecord {
    UINT32 recordId = 0;
    INT32 appId = 0;
    UINT32 userId = 0;
    CVariant name;
    std::wstring parameters;
    DATE appLoggedTime = 0.0;
    DATE pluginLoggedTime = 0.0;
    UINT32 logKind = 0;
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

    record.pluginLoggedTime = CurrentUtcTime();
    result = ReadValue(container, kKeyActionTime, value);
    if (FAILED(result)) return result;
    record.appLoggedTime = value.Type() == VT_DATE ? value.Get().date : record.pluginLoggedTime;

    result = ReadValue(container, kKeyAppId, value);
    if (FAILED(result)) return result;
    record.appId = value.Type() == VT_I4 ? value.Get().lVal : 0;

    result = ReadValue(container, kKeyUserId, value);
    if (FAILED(result)) return result;
    if (value.Type() != VT_UI4) return S_FALSE;
    record.userId = value.Get().ulVal;

    record.logKind = logKind;
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

int BindRow(CStatement& statement, const ActionRecord& record) {
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
        .Real(record.appLoggedTime)
        .Real(record.pluginLoggedTime)
        .Text(kNull) // name of the action before
        .Text(kNull) // its parameters
        .Real(kPreLoggedTime)
        .Integer(record.logKind)
        .Result();
}

int InsertRow(const CDatabase& database, const std::wstring& table, const ActionRecord& record) {
    CStatement statement(database);
    int result = statement.Prepare(ReplaceText(table));
    if (result == kSqliteOk) result = BindRow(statement, record);
    return result == kSqliteOk ? statement.Run() : result;
}

// The older row goes and the new one comes together, or neither.
int ReplaceRow(const CActionLogStore& store, const CDatabase& database,
               const ActionRecord& record) {
    CTransaction transaction(database);
    int result = transaction.Begin();
    if (result == kSqliteOk) result = RemoveOlderRows(store, database, record.recordId);
    if (result == kSqliteOk) result = InsertRow(database, store.SelectedTable(), record);
    return result == kSqliteOk ? transaction.Commit() : result;
}

} // namespace

HRESULT WriteActionRecord(CActionLogStore& store, ITslParamContainer* container) {
    const CMutexGuard lock(store.SqliteAccessLock(), kSqliteAccessTimeoutMilliseconds);
    CDatabase database;
    const HRESULT opened = store.OpenSelected(&database);
    if (FAILED(opened) || !database) return opened;
    if (!container) return S_OK;

    ActionRecord record;
    const HRESULT read = ReadRecord(*container, store.LogKind(), record);
    if (FAILED(read)) return read;
    if (read != S_OK) return S_OK;
    return SuccessAsOk(SqliteResultToHresult(ReplaceRow(store, database, record)));
}

} // namespace tsl
