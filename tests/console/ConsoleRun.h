// Runs tslhost as a user does: a process of its own with its streams in pipes.
#pragma once

#include <filesystem>
#include <string>

namespace tsl::test {

struct ConsoleResult {
    int exitCode = -1;
    std::string output;
    std::string errors;
};

// The arguments as they are typed, without the program. Throws std::runtime_error when the program
// cannot be run or does not end within a minute.
ConsoleResult RunConsole(const std::wstring& arguments, const std::string& input = {});

// The same with a copy of the program that lies elsewhere.
ConsoleResult RunConsoleAt(const std::filesystem::path& program, const std::wstring& arguments,
                           const std::string& input = {});

} // namespace tsl::test
