// A record as the component hands it out.
#pragma once

#include <windows.h>

#include <wtypes.h>

#include <nlohmann/json_fwd.hpp>
#include <string>

#include "component/host/ITslParamContainer.h"

namespace tsl {

struct StoredRecord {
    UINT32 id = 0;
    UINT32 user = 0;
    INT32 app = 0;
    std::wstring name;
    std::wstring parameters;
    DATE time = 0.0;
};

// Reads the container of an answer; what it does not hold stays as it is.
StoredRecord ReadStoredRecord(ITslParamContainer& container);

// With the decoded value lists beside the raw text, the time in UTC.
nlohmann::ordered_json ToJson(const StoredRecord& record);

} // namespace tsl
