#include "console/StoredRecord.h"

#include <nlohmann/json.hpp>

#include "base/Variant.h"
#include "component/host/ParamKeys.h"
#include "console/IsoTime.h"
#include "console/ParameterLists.h"
#include "console/Text.h"

namespace tsl {

namespace {

CVariant Value(ITslParamContainer& container, UINT64 key) {
    CVariant value;
    container.GetValue(key, value.Address());
    return value.Type() == ParamKeyType(key) ? std::move(value) : CVariant();
}

} // namespace

StoredRecord ReadStoredRecord(ITslParamContainer& container) {
    StoredRecord record;
    record.id = Value(container, kKeyRecordId).Get().ulVal;
    record.user = Value(container, kKeyUserId).Get().ulVal;
    record.app = Value(container, kKeyAppId).Get().lVal;
    record.name = BstrView(Value(container, kKeyActionName).Get().bstrVal);
    record.parameters = BstrView(Value(container, kKeyParameterText).Get().bstrVal);
    record.time = Value(container, kKeyActionTime).Get().date;
    return record;
}

nlohmann::ordered_json ToJson(const StoredRecord& record) {
    return {{"id", record.id},
            {"time", FormatIsoTime(record.time)},
            {"user", record.user},
            {"app", record.app},
            {"name", ToUtf8(record.name)},
            {"parameters", ToUtf8(record.parameters)},
            {"values", DecodeParameterLists(record.parameters)}};
}

} // namespace tsl
