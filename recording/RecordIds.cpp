#include "recording/RecordIds.h"

#include "component/host/CommandCodes.h"
#include "component/host/ParamKeys.h"
#include "files/DataFolders.h"
#include "files/TextActionLog.h"
#include "query/AnswerContainer.h"
#include "store/Maintenance.h"

namespace tsl {

namespace {

HRESULT IssueRecordId(const CActionLogStore& store, UINT32& recordId, MissingFile missing) {
    const CMutexGuard lock(store.LogIdLock(), kLogIdTimeoutMilliseconds);
    return AdvanceCounter(DbFolder() + kCounterFileName, recordId, missing);
}

HRESULT AnswerRecordId(UINT32 recordId, VARIANT* result) {
    if (!result) return E_POINTER;
    CComPtr<ITslParamContainer> answer;
    HRESULT status = CreateContainer(kCommandNextRecordId, answer);
    if (SUCCEEDED(status)) {
        status = CContainerFiller(*answer).Set(kKeyRecordId, CVariant::FromUi4(recordId)).Result();
    }
    return FAILED(status) ? status : PutContainer(*answer.Get(), result);
}

} // namespace

HRESULT NextRecordId(const CActionLogStore& store, ITslParamContainer* container, VARIANT* result) {
    if (!container) return E_POINTER;
    UINT32 recordId = 1;
    HRESULT issued = IssueRecordId(store, recordId, MissingFile::IsTold);
    if (issued == HresultFromWin32(ERROR_FILE_NOT_FOUND)) {
        issued = ConvertBeforeFirstId(store);
        if (SUCCEEDED(issued)) issued = IssueRecordId(store, recordId, MissingFile::IsMade);
    }
    return FAILED(issued) ? issued : AnswerRecordId(recordId, result);
}

} // namespace tsl
