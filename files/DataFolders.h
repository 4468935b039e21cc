// Where the component's data lives, for all users of the machine. Callable from any thread.
#pragma once

#include <string>

namespace tsl {

// Of the databases. Part of every installation: not to be changed.
inline constexpr wchar_t kActionLogFileName[] = L"ualog.db";
inline constexpr wchar_t kReplayFileName[] = L"uareplay.db";

// The folder of the databases and the counter file, with a trailing backslash. It is created when
// missing and opened to everyone on every call; a failure to do so, or a link in its place, shows
// when a file in it is opened. Where the shell knows no folder it is the current directory, whose
// rights are left alone.
std::wstring DbFolder();

// The folder of the user id list, with a trailing backslash. It is not created.
std::wstring UserIdFolder();

} // namespace tsl
