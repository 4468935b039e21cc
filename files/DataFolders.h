// Where the component's data lives, for all users of the machine. Callable from any thread.
#pragma once

#include <windows.h>

#include <string>

namespace tsl {

// Of the databases. Part of every installation: not to be changed.
inline constexpr wchar_t kActionLogFileName[] = L"ualog.db";
inline constexpr wchar_t kReplayFileName[] = L"uareplay.db";

struct DataFolder {
    std::wstring path;     // with a trailing backslash
    std::wstring resolved; // the same with the links followed that may be followed
    HRESULT status = S_OK; // why nothing in it is to be opened: a link, for one
};

// The folder of the databases and the counter file. It is created when missing and opened to
// everyone on every call. Where the shell knows no folder it is the current directory, whose rights
// are left alone.
DataFolder OpenDbFolder();

// Its path, for files that are checked when they are opened; a failure shows then.
std::wstring DbFolder();

// The folder of the user id list, with a trailing backslash. It is not created.
std::wstring UserIdFolder();

} // namespace tsl
