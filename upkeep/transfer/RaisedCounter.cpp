#include "upkeep/transfer/RaisedCounter.h"

#include "console/Failure.h"
#include "files/TextActionLog.h"
#include "upkeep/StoreLock.h"

namespace tsl {

void RaiseCounterTo(const std::wstring& counterFile, UINT32 id) {
    const CStoreLocks locks;
    UINT32 counter = 0;
    HRESULT read = ReadCounter(counterFile, counter);
    if (SUCCEEDED(read) && counter >= id) return;
    RaiseCounter(counterFile, id);
    // That it could not is not told.
    read = ReadCounter(counterFile, counter);
    if (FAILED(read)) throw CFailure("cannot raise the counter in", counterFile, read);
    if (counter < id) {
        throw CFailure("cannot raise the counter in", counterFile,
                       HRESULT_FROM_WIN32(ERROR_WRITE_FAULT));
    }
}

} // namespace tsl
