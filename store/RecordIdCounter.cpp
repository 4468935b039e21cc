#include "store/RecordIdCounter.h"

#include "files/DataFolders.h"
#include "files/TextActionLog.h"

namespace tsl {

HRESULT ReadCounterUnderLock(CActionLogStore& store, UINT32& counter) {
    counter = 1;
    const CMutexGuard lock(store.LogIdLock(), kLogIdTimeoutMilliseconds);
    return ReadCounter(DbFolder() + kCounterFileName, counter);
}

void RaiseCounterForFirstId(CActionLogStore& store, UINT32 firstId) {
    UINT32 counter = 0;
    ReadCounterUnderLock(store, counter);
    if (counter >= firstId) return;

    const CMutexGuard lock(store.LogIdLock(), kLogIdTimeoutMilliseconds);
    RaiseCounter(DbFolder() + kCounterFileName, firstId - 1);
}

HRESULT SeedCounter(CActionLogStore& store, UINT32 counter) {
    const CMutexGuard lock(store.LogIdLock(), kLogIdTimeoutMilliseconds);
    const std::wstring path = DbFolder() + kCounterFileName;
    UINT32 present = 0;
    // Others may have begun to hand out ids.
    if (SUCCEEDED(ReadCounter(path, present)) && present >= counter) return S_OK;
    return WriteCounterAtOnce(path, counter);
}

} // namespace tsl
