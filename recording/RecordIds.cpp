#include "recording/RecordIds.h"

#include "component/host/CommandCodes.h"
#include "component/host/ParamKeys.h"
#include "files/DataFolders.h"
#include "files/TextActionLog.h"
#include "query/AnswerContainer.h"

namespace tsl {

namespace {

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

HRESULT NextRecordId(CActionLogStore& store, ITslParamContainer* container, VARIANT* result) {
    UINT32& counter = store.RecordIdCounter();
    counter = 1;
    if (!container) return E_POINTER;

    const CMutexGuard lock(store.LogIdLock(), kLogIdTimeoutMilliseconds);
    const HRESULT advanced = AdvanceCounter(DbFolder() + kCounterFileName, counter);
    return FAILED(advanced) ? advanced : AnswerRecordId(counter, result);
}

} // namespace tsl
