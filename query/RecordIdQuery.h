// Finds the ids of a user's records in a range: of record ids when the request holds such a bound,
// else of times.
#pragma once

#include <vector>

#include "component/host/ITslParamContainer.h"
#include "query/RangeArguments.h"
#include "store/ActionLogStore.h"
#include "store/Target.h"

namespace tsl {

// What a request asks for, read out of the host's container before anything is locked or opened.
struct RecordIdQuery {
    bool isIdRange = false;
    HRESULT userRead = S_FALSE; // as ReadUserId answers; the bounds are read after S_OK only
    UINT32 userId = 0;
    HRESULT endRead = S_OK; // of the last bound
    UINT32 firstId = kFirstRecordId;
    UINT32 lastId = kLastRecordId;
    DATE start = kEarliestTime;
    DATE end = kLatestTime;
};
RecordIdQuery ReadRecordIdQuery(ITslParamContainer& container);

// The ids in the target's table. For a range of record ids it raises a counter below the range, so
// that records to come have ids of the range, under the LogId lock. A range whose first id is above
// its last is one across the wrap-around and goes by the times of its two records.
//
// REQUIRES: for a range of record ids the SQLiteAccess lock is held or its wait has timed out.
// S_OK, also without ids; S_FALSE when the request does not say what it has to; else the failure of
// the open, of reading the request or the mapped one of the engine.
HRESULT FindRecordIds(const CActionLogStore& store, const Target& target,
                      const RecordIdQuery& query, std::vector<UINT32>& ids);

} // namespace tsl
