// A container that notes, for each key that is read, whether another thread could have the lock of
// the databases.
#pragma once

#include <map>

#include "tests/support/ForwardingContainer.h"
#include "tests/support/StoreChecks.h"

namespace tsl::test {

class LockWatchingContainer final : public ForwardingContainer {
public:
    using ForwardingContainer::ForwardingContainer;

    std::map<UINT64, bool> lockWasFree;

    HRESULT STDMETHODCALLTYPE GetValue(UINT64 key, VARIANT* value) override {
        lockWasFree[key] = MutexIsFree(kSqliteAccessLock);
        return ForwardingContainer::GetValue(key, value);
    }
};

} // namespace tsl::test
