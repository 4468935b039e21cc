// Examines the component, its locks and a store, and says what it found. Changes nothing: the locks
// are waited for as long as the component waits and given back, files are only read.
#pragma once

#include "upkeep/StorePaths.h"
#include "upkeep/doctor/Finding.h"

namespace tsl {

// The component at the path is looked at; where that is empty, the one beside the program, else the
// registered one. Throws nothing: what cannot be examined is a finding too.
Findings Examine(const StorePaths& store, const std::wstring& pluginPath = {});

// Whether anything has to be mended.
bool HasDamage(const Findings& findings) noexcept;

} // namespace tsl
