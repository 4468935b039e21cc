#include "store/RecordIdCounter.h"

#include "files/DataFolders.h"
#include "files/TextActionLog.h"

namespace tsl {

void RaiseCounterForFirstId(const CActionLogStore& store, UINT32 firstId) {
    const CMutexGuard lock(store.LogIdLock(), kLogIdTimeoutMilliseconds);
    const std::wstring path = DbFolder() + kCounterFileName;
    UINT32 counter = 1;
    ReadCounter(path, counter);
    if (counter < firstId) RaiseCounter(path, firstId - 1);
}

HRESULT SeedCounter(const CActionLogStore& store, UINT32 counter) {
    const CMutexGuard lock(store.LogIdLock(), kLogIdTimeoutMilliseconds);
    const std::wstring path = DbFolder() + kCounterFileName;
    UINT32 present = 0;
    // Others may have begun to hand out ids.
    if (SUCCEEDED(ReadCounter(path, present)) && present >= counter) return S_OK;
    return WriteCounterAtOnce(path, counter);
}

} // namespace tsl
