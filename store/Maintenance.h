// Turns a store of the older form into one of today's.
#pragma once

#include "store/ActionLogStore.h"

namespace tsl {

// An older store kept the last record id in a table of the action log's database and had no log
// kinds. Gives its records their log kinds, moves the id into the counter file and drops the table.
// The counter file marks a store as converted: with it, nothing is touched.
// After a failure before it is written the next call does it all again; after one behind it the old
// table stays.
//
// Takes the SQLiteAccess lock, and the LogId lock inside it. S_OK after a conversion; E_FAIL for a
// store that needs none; E_POINTER without an engine; else the failure of the open, of the engine
// (0x80041600 for a store without records, 0x80041701 for one without a last id) or of writing the
// counter file.
HRESULT MaintainStore(const CActionLogStore& store);

// Before the first id is handed out where there is no counter file: converts a store of the older
// form that could not be converted until now, so that its ids do not begin anew. Takes the same
// locks, and none where there is a counter file or no database. S_OK when ids may be handed out;
// else the failure of looking at the store, E_POINTER without an engine, or that of the conversion.
// What is no database has no ids.
HRESULT ConvertBeforeFirstId(const CActionLogStore& store);

} // namespace tsl
