#include "recording/UserReset.h"

#include "component/host/CommandCodes.h"
#include "component/host/ParamKeys.h"
#include "query/AnswerContainer.h"
#include "query/Deletions.h"
#include "query/RangeArguments.h"
#include "store/SqliteResult.h"

namespace tsl {

HRESULT ResetUserRecords(const CActionLogStore& store, const Target& target,
                         ITslParamContainer* container) {
    if (!container) return E_INVALIDARG;
    UINT32 userId = 0;
    const HRESULT read = ReadUserId(*container, userId);
    if (read != S_OK || userId == 0) return SuccessAsOk(read);
    CComPtr<ITslParamContainer> request;
    HRESULT result = CreateContainer(kCommandDeleteRecords, request);
    if (FAILED(result)) return result;
    result = CContainerFiller(*request)
                 .Set(kKeyUserId, CVariant::FromUi4(userId))
                 .Set(kKeyFirstRecordId, CVariant::FromUi4(0))
                 .Set(kKeyLastRecordId, CVariant::FromUi4(kLastRecordId))
                 .Result();
    return FAILED(result) ? result : DeleteRecords(store, target, request.Get());
}

} // namespace tsl
