// Keeps one row per record id in a table, the latest, although the tables have no key.
//
// Searching a table for an id reads all of it. So the highest id ever written to a file's main
// table is kept in the file's header (its user version): an id above this mark cannot be there, and
// nothing is searched. The mark costs nothing, as each write rewrites the header's page anyway.
#pragma once

#include "store/Database.h"
#include "store/Target.h"

namespace tsl {

// Removes the rows of the id from the target's table and raises the mark to the id. Returns
// the engine's result. REQUIRES: an open transaction on the database; when the row is not written
// after all, that transaction is rolled back.
int RemoveOlderRows(const Target& target, const CDatabase& database, UINT32 recordId);

} // namespace tsl
