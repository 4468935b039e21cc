// Whether the component and its engine are where a host finds them.
#pragma once

#include "upkeep/doctor/Finding.h"

namespace tsl {

// The component at the path; where that is empty, the one beside the program, else the registered
// one.
void CheckInstallation(const std::wstring& pluginPath, Findings& findings);

} // namespace tsl
