// How a machine-wide lock was found.
#pragma once

#include "upkeep/Finding.h"
#include "upkeep/StoreLock.h"

namespace tsl {

Finding TellLock(const CStoreLock& lock, const std::string& subject);

} // namespace tsl
