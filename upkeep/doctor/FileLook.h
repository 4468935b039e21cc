// A look at a file of the store that disturbs nobody and changes nothing.
#pragma once

#include <windows.h>

#include <optional>
#include <string>
#include <vector>

#include "upkeep/doctor/Finding.h"

namespace tsl {

// A link, or a file with a second name, is looked at no further.
enum class Presence { There, Missing, Folder, Link, Unreadable };

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

// Names of files that were made to be moved to the path, by a program that is at work or was ended.
std::vector<std::wstring> MadeButNotMoved(const std::wstring& path);

// What is to be done about a link in the place of the file or folder, which hosts refuse.
Finding TellLink(const std::string& subject, const std::wstring& path);

// What bars the component from a file: a folder or a link in its place, rights, another program.
// Nothing when nothing does, or when there is no file.
std::optional<Finding> WhatBars(const FileLook& file, const std::string& subject,
                                const std::wstring& path);

} // namespace tsl
