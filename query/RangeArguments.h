// The arguments of ranges of records, as queries and deletions read them from the host's container.
#pragma once

#include <wtypes.h>

#include "component/host/ITslParamContainer.h"

namespace tsl {

// Beyond every date that a record can have.
inline constexpr DATE kEarliestTime = 0.0;
inline constexpr DATE kLatestTime = 4294967295.0;

inline constexpr UINT32 kFirstRecordId = 1;
inline constexpr UINT32 kLastRecordId = 0xFFFFFFFF;

// Whether the container holds a bound of a record-id range, told by its key list.
bool HasIdRangeKey(ITslParamContainer& container);

// Each reads a bound and leaves the default in place when it is absent or of another type. Returns
// what the container returned.
HRESULT ReadBound(ITslParamContainer& container, UINT64 key, DATE& bound);
HRESULT ReadBound(ITslParamContainer& container, UINT64 key, UINT32& bound);

// The user whose records are meant. S_OK with the id; S_FALSE when the container gives none; else
// the container's failure.
HRESULT ReadUserId(ITslParamContainer& container, UINT32& userId);

// The user id for commands that name none: the current user's where records are kept per user of
// the system, else 1. Returns the failure to find out.
HRESULT ImpliedUserId(UINT32 logKind, UINT32& userId);

} // namespace tsl
