// What a file or folder grants to Everyone.
#pragma once

#include <windows.h>

#include <string>

namespace tsl::test {

// Whether any entry of the file's or folder's access list names Everyone. Throws when the list
// cannot be read.
bool NamesEveryone(const std::wstring& path);

// The access mask of the first entry that grants Everyone something; 0 without such an entry.
DWORD MaskOfEveryone(const std::wstring& path);

} // namespace tsl::test
