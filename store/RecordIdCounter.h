// The record-id counter, raised and seeded under its lock.
#pragma once

#include "store/ActionLogStore.h"

namespace tsl {

// Makes sure that ids handed out from now on are not below the id given: raises a lower counter to
// the id before it. Takes the LogId lock, once. A counter file that is missing, or cannot be read,
// stays as it is; the counter never goes back.
void RaiseCounterForFirstId(const CActionLogStore& store, UINT32 firstId);

// Writes the counter that an older store is converted with, taking the LogId lock; the file is
// there either with the whole counter or not at all. A counter file that is as high already stays.
// S_OK, or the Win32 error of the write.
HRESULT SeedCounter(const CActionLogStore& store, UINT32 counter);

} // namespace tsl
