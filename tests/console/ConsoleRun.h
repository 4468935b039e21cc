// Runs tslhost as a user does: a process of its own with its streams in pipes.
#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include "base/Handle.h"

namespace tsl::test {

struct ConsoleResult {
    int exitCode = -1;
    std::string output;
    std::string errors;
};

// One that runs beside the test. It is ended when this goes.
class RunningConsole {
public:
    // Throws std::runtime_error when the program cannot be started.
    explicit RunningConsole(const std::wstring& arguments, const std::string& input = {},
                            DWORD creationFlags = 0);
    RunningConsole(const std::filesystem::path& program, const std::wstring& arguments,
                   const std::string& input = {}, DWORD creationFlags = 0);
    RunningConsole(const RunningConsole&) = delete;
    RunningConsole& operator=(const RunningConsole&) = delete;
    ~RunningConsole();

    DWORD ProcessId() const { return m_processId; }
    bool IsRunning() const;
    // What it has written until now.
    std::string Output() const;

    // Ends it without giving it time for anything.
    void Kill();
    // Throws std::runtime_error when it does not end within a minute, or ten in the full form.
    ConsoleResult WaitForEnd();

private:
    struct Streams;

    std::unique_ptr<Streams> m_streams;
    CHandle m_process;
    DWORD m_processId = 0;
};

// The arguments as they are typed, without the program. Throws std::runtime_error when the program
// cannot be run or does not end within a minute.
ConsoleResult RunConsole(const std::wstring& arguments, const std::string& input = {});

// The same with a copy of the program that lies elsewhere.
ConsoleResult RunConsoleAt(const std::filesystem::path& program, const std::wstring& arguments,
                           const std::string& input = {});

} // namespace tsl::test
