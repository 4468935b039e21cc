// Whether the record-id counter can be read and fits the records.
#pragma once

#include "upkeep/doctor/DatabaseCheck.h"
#include "upkeep/doctor/Finding.h"

namespace tsl {

// Changes nothing. REQUIRES: the LogId lock is held or its wait has timed out.
void CheckCounter(const std::wstring& path, const KnownIds& ids, Findings& findings);

// Whether the file holds something else than a number, though it is read as this one. False when
// there is no such file.
bool IsSpoiledCounter(const std::wstring& path, UINT32 counter);

} // namespace tsl
