// Recovers one database of a store.
#pragma once

#include "upkeep/recovery/Recovery.h"

namespace tsl {

struct RecoveryContext {
    const RecoverOptions& options;
    UINT32 handedOut; // the highest id that the counter knows of
    bool hasCounter;  // without one, a store may be of the older form
};

// As RecoverStore.
DatabaseReport RecoverDatabase(const std::wstring& path, const DatabaseTables& tables,
                               const RecoveryContext& context);

} // namespace tsl
