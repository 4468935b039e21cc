// Whether a folder of the component is there and open to every user of the machine.
#pragma once

#include "upkeep/doctor/Finding.h"

namespace tsl {

// Only looks: unlike the component it neither makes the folder nor grants anything.
void CheckFolder(const std::wstring& folder, const std::string& subject, Findings& findings);

} // namespace tsl
