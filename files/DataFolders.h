// Where the component's data lives, for all users of the machine. Callable from any thread.
#pragma once

#include <string>

namespace tsl {

// The folder of the databases and the counter file, with a trailing backslash. It is created when
// missing and opened to everyone on every call; a failure to do so shows when a file in it is
// opened.
std::wstring DbFolder();

// The folder of the user id list, with a trailing backslash. It is not created.
std::wstring UserIdFolder();

} // namespace tsl
