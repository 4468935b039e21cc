// Answers the host's questions about stored records. Each operation works on the table of its
// target, reads what it wants from the container first, opens the database for itself and takes the
// locks it needs; containers of the answer are made when all of that is closed and given back.
//
// All return E_POINTER without an engine, a result, or (but for the list of all ids) a container;
// the failure of the open; S_OK without an answer when a required argument is missing or of another
// type; the mapped failure of the engine. The result is left untouched after a failure.
#pragma once

#include "component/host/ITslParamContainer.h"
#include "store/ActionLogStore.h"
#include "store/Target.h"

namespace tsl {

// The ids of a user's records in a range: of record ids when the container holds such a bound, else
// of times. E_INVALIDARG when there are none.
//
// The record-id form takes the SQLiteAccess lock, and the LogId lock for the counter: a counter
// below the range is raised, so that records to come have ids of the range. A range whose first id
// is above its last is one across the wrap-around and goes by the times of its two records. The
// time form takes no lock.
HRESULT QueryRecordIds(const CActionLogStore& store, const Target& target,
                       ITslParamContainer* container, VARIANT* result);

// The ids of all records of the current user. E_INVALIDARG when there are none. Takes no lock.
HRESULT QueryAllRecordIds(const CActionLogStore& store, const Target& target,
                          ITslParamContainer* container, VARIANT* result);

// Whole records by a list of ids; an empty VARIANT when there are none. Takes the SQLiteAccess
// lock.
HRESULT QueryRecords(const CActionLogStore& store, const Target& target,
                     ITslParamContainer* container, VARIANT* result);

// One record by its id, which is then deleted, also when it could not be fetched; that failure, and
// that there is no such record, leave the result untouched and are not reported.
HRESULT TakeRecord(const CActionLogStore& store, const Target& target,
                   ITslParamContainer* container, VARIANT* result);

} // namespace tsl
