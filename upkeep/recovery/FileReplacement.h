// Puts a file into the place of another and keeps that one aside.
#pragma once

#include <windows.h>

#include <string>

#include "console/NewFile.h"

namespace tsl {

// "ualog.damaged-20261121-153000.db" for "ualog.db", with a number behind it where that is taken.
std::wstring NameForKeeping(const std::wstring& path, const SYSTEMTIME& time);

// Keeps what lies at the path under the other name, with what belongs to it, and moves the new file
// there. A process that ends between the two leaves both, and none at the path. A failure, which is
// a CFailure, leaves all as it was: Locked where another program has one of them open, Denied for a
// link.
void ReplaceFileKeeping(const std::wstring& path, CNewFile& made, const std::wstring& kept);

} // namespace tsl
