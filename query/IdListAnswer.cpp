#include "query/IdListAnswer.h"

#include "component/host/CommandCodes.h"
#include "component/host/ParamKeys.h"
#include "query/AnswerContainer.h"
#include "query/ResultArray.h"

namespace tsl {

namespace {

// makeValue gives the VARIANT of an id.
template <class Id, class MakeValue>
HRESULT AnswerList(std::span<const Id> ids, UINT64 commandCode, UINT64 key, bool skipZero,
                   VARIANT* result, MakeValue makeValue) {
    if (!result) return E_POINTER;
    ContainerList containers;
    containers.reserve(ids.size());
    HRESULT status = E_INVALIDARG;
    for (const Id id : ids) {
        if (skipZero && id == 0) continue;
        CComPtr<ITslParamContainer> container;
        status = CreateContainer(commandCode, container);
        if (SUCCEEDED(status)) {
            status = CContainerFiller(*container).Set(key, makeValue(id)).Result();
        }
        if (SUCCEEDED(status)) containers.push_back(std::move(container));
    }
    return FAILED(status) ? status : PackContainers(std::move(containers), result);
}

} // namespace

HRESULT AnswerIds(std::span<const UINT32> ids, VARIANT* result) {
    return AnswerList(ids, kCommandQueryIds, kKeyRecordId, /*skipZero=*/false, result,
                      CVariant::FromUi4);
}

HRESULT AnswerAllIds(std::span<const UINT64> ids, VARIANT* result) {
    return AnswerList(ids, kCommandQueryAllIds, kKeyItemId, /*skipZero=*/true, result,
                      CVariant::FromUi8);
}

} // namespace tsl
