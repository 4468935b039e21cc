// A look at a file of the store that disturbs nobody and changes nothing.
#pragma once

#include <windows.h>

#include <optional>
#include <string>
#include <vector>

#include "upkeep/doctor/Finding.h"

namespace tsl {

enum class Presence { There, Missing, Folder, Unreadable };

struct FileLook {
    Presence presence = Presence::Missing;
    DWORD error = ERROR_SUCCESS; // why it cannot be read, or written
    bool writable = false;       // by this user
    UINT64 size = 0;
    std::vector<unsigned char> bytes; // the first of them
};

// Reads up to this many bytes. A file that another program has for itself is waited for, half a
// second at most.
FileLook LookAtFile(const std::wstring& path, size_t mostBytes);

// What bars the component from a file: a folder in its place, rights, another program. Nothing when
// nothing does, or when there is no file.
std::optional<Finding> WhatBars(const FileLook& file, const std::string& subject,
                                const std::wstring& path);

} // namespace tsl
