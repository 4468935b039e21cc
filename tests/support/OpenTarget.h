// Opens what an operation works on, for tests that look at it with statements of their own.
#pragma once

#include "store/ActionLogStore.h"
#include "store/Target.h"

namespace tsl::test {

// Opens the target's file and makes its table where that is missing; the result is that of the
// store's opening.
inline HRESULT OpenTarget(const CActionLogStore& store, const Target& target, CDatabase* database) {
    return store.Open(target.fileName, kTablePrefix, target.tableName, database, TableShape::Action,
                      /*create=*/true);
}

} // namespace tsl::test
