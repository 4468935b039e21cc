// The ids that a statement finds.
#pragma once

#include <vector>

#include "store/Database.h"
#include "store/Schema.h"

namespace tsl {

// Runs a prepared and bound statement and collects its first column. Returns the engine's result.
template <class Id>
int CollectIds(CStatement& statement, std::vector<Id>& ids) {
    return statement.ForEachRow(
        [&] { ids.push_back(static_cast<Id>(statement.ColumnInt64(kActionLogIdIndex))); });
}

} // namespace tsl
