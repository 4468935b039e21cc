// The record-id counter, read and raised under its lock.
#pragma once

#include "store/ActionLogStore.h"

namespace tsl {

// Reads the counter, 1 where there is none, taking the LogId lock. The lock is released afterwards
// even when the caller held it. Returns the failure of reading the file.
HRESULT ReadCounterUnderLock(CActionLogStore& store, UINT32& counter);

// Makes sure that ids handed out from now on are not below the id given: raises a lower counter to
// the id before it. A counter file that is missing, or cannot be read, stays as it is. The counter
// never goes back: it is read again before it is written.
void RaiseCounterForFirstId(CActionLogStore& store, UINT32 firstId);

// Writes the counter that an older store is converted with, taking the LogId lock; the file is
// there either with the whole counter or not at all. A counter file that is as high already stays.
// S_OK, or the Win32 error of the write.
HRESULT SeedCounter(CActionLogStore& store, UINT32 counter);

} // namespace tsl
