// Puts a file into the place of another and keeps that one aside.
#pragma once

#include <windows.h>

#include <string>

namespace tsl {

// "ualog.damaged-20261121-153000.db" for "ualog.db", with a number behind it where that is taken.
std::wstring NameForKeeping(const std::wstring& path, const SYSTEMTIME& time);

// The name of the new database while it is not whole yet, in the same folder.
std::wstring NameWhileMade(const std::wstring& path);

// Keeps what lies at the path under the other name, with what belongs to it, and moves the new file
// there. A process that ends meanwhile leaves both, the old one under one of its names; a failure,
// which is a CFailure, leaves all as it was.
void ReplaceFileKeeping(const std::wstring& path, const std::wstring& made,
                        const std::wstring& kept);

} // namespace tsl
