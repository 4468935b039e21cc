// Answers with whole records: one container per row.
#pragma once

#include "base/Variant.h"
#include "query/ResultArray.h"
#include "store/Database.h"

namespace tsl {

// What an answer tells of a stored record, read while the database is open and handed to the host
// when it no longer is.
struct StoredRecord {
    UINT32 recordId;
    UINT32 userId;
    INT32 appId;
    CVariant name;
    CVariant parameters;
    DATE appLoggedTime;
};

// Reads the row that the statement stands on. Throws E_OUTOFMEMORY.
StoredRecord ReadStoredRecord(const CStatement& row);

// Appends the container of the record. Returns the failure of making or filling it; nothing is
// appended then.
HRESULT AppendRecord(StoredRecord record, ContainerList& containers);

} // namespace tsl
