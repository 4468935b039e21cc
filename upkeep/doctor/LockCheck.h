// How a machine-wide lock was found.
#pragma once

#include "upkeep/StoreLock.h"
#include "upkeep/doctor/Finding.h"

namespace tsl {

Finding TellLock(const CStoreLock& lock, const std::string& subject);

} // namespace tsl
