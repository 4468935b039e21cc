// Whether the user id list can be read and gives every user one id of his own.
#pragma once

#include "upkeep/doctor/Finding.h"

namespace tsl {

// Changes nothing. REQUIRES: the LoginInfo lock is held or its wait has timed out.
void CheckUserList(const std::wstring& path, Findings& findings);

} // namespace tsl
