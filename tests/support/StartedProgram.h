// A program that a test has started.
#pragma once

#include <filesystem>
#include <string>

#include "base/Handle.h"

namespace tsl::test {

struct StartedProgram {
    CHandle process;
    DWORD id = 0;
};

// Starts it with the arguments as they stand. Streams are those of startup, if there are any. Wine
// now and then fails to start a program, so a failure is tried once more. Throws
// std::runtime_error, which names the program and the error.
StartedProgram StartProgram(const std::filesystem::path& program, const std::wstring& arguments,
                            const STARTUPINFOW* startup = nullptr, DWORD creationFlags = 0);

} // namespace tsl::test
