#include "query/RecordAnswer.h"

#include "component/host/CommandCodes.h"
#include "component/host/ParamKeys.h"
#include "query/AnswerContainer.h"
#include "store/Schema.h"

namespace tsl {

StoredRecord ReadStoredRecord(const CStatement& row) {
    return {.recordId = static_cast<UINT32>(row.ColumnInt64(kActionLogIdIndex)),
            .userId = static_cast<UINT32>(row.ColumnInt64(kUserIdIndex)),
            .appId = static_cast<INT32>(row.ColumnInt64(kAppIdIndex)),
            .name = CVariant::FromText(row.ColumnText(kActionNameIndex)),
            .parameters = CVariant::FromText(row.ColumnText(kParametersIndex)),
            .appLoggedTime = row.ColumnDouble(kAppLoggedTimeIndex)};
}

HRESULT AppendRecord(StoredRecord record, ContainerList& containers) {
    CComPtr<ITslParamContainer> container;
    const HRESULT created = CreateContainer(kCommandQueryRecords, container);
    if (FAILED(created)) return created;
    const HRESULT filled = CContainerFiller(*container.Get())
                               .Set(kKeyRecordFound, CVariant::FromBool(true))
                               .Set(kKeyRecordId, CVariant::FromUi4(record.recordId))
                               .Set(kKeyUserId, CVariant::FromUi4(record.userId))
                               .Set(kKeyAppId, CVariant::FromI4(record.appId))
                               .Set(kKeyActionName, std::move(record.name))
                               .Set(kKeyParameterText, std::move(record.parameters))
                               .Set(kKeyActionTime, CVariant::FromDate(record.appLoggedTime))
                               .Result();
    if (SUCCEEDED(filled)) containers.push_back(std::move(container));
    return filled;
}

} // namespace tsl
