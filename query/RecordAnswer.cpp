#include "query/RecordAnswer.h"

#include "component/host/CommandCodes.h"
#include "component/host/ParamKeys.h"
#include "query/AnswerContainer.h"
#include "store/Schema.h"

namespace tsl {

HRESULT AppendRecord(const CStatement& row, ContainerList& records) {
    CComPtr<ITslParamContainer> record;
    const HRESULT created = CreateContainer(kCommandQueryRecords, record);
    if (FAILED(created)) return created;
    const HRESULT filled =
        CContainerFiller(*record.Get())
            .Set(kKeyRecordFound, CVariant::FromBool(true))
            .Set(kKeyRecordId,
                 CVariant::FromUi4(static_cast<UINT32>(row.ColumnInt64(kActionLogIdIndex))))
            .Set(kKeyUserId, CVariant::FromUi4(static_cast<UINT32>(row.ColumnInt64(kUserIdIndex))))
            .Set(kKeyAppId, CVariant::FromI4(static_cast<INT32>(row.ColumnInt64(kAppIdIndex))))
            .Set(kKeyActionName, CVariant::FromText(row.ColumnText(kActionNameIndex)))
            .Set(kKeyParameterText, CVariant::FromText(row.ColumnText(kParametersIndex)))
            .Set(kKeyActionTime, CVariant::FromDate(row.ColumnDouble(kAppLoggedTimeIndex)))
            .Result();
    if (SUCCEEDED(filled)) records.push_back(std::move(record));
    return filled;
}

} // namespace tsl
